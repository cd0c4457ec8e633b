// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/CMPINSPInstanceRegistry.h"

#include <utility>

namespace NZEPQEL20 {

CMPINSPInstanceRegistry& CMPINSPInstanceRegistry::GetRegistrySingleton() {
  // Never destroyed: a detached thread may still register while the process ends.
  static auto* const registry = new CMPINSPInstanceRegistry();
  return *registry;
}

void CMPINSPInstanceRegistry::Register(std::shared_ptr<const void> instance) {
  if (!instance) return;
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_instances.push_back(std::move(instance));
}

void CMPINSPInstanceRegistry::ClearInstances() {
  std::vector<std::shared_ptr<const void>> gone;
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    gone.swap(m_instances);
  }
  // The instances die here, outside the lock: what they own may register in turn.
}

std::size_t CMPINSPInstanceRegistry::GetCount() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_instances.size();
}

}  // namespace NZEPQEL20
