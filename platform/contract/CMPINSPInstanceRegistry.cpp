// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/CMPINSPInstanceRegistry.h"

#include <utility>

namespace NZEPQEL20 {

CMPINSPInstanceRegistry& CMPINSPInstanceRegistry::GetRegistrySingleton() {
  static CMPINSPInstanceRegistry registry;
  return registry;
}

void CMPINSPInstanceRegistry::Register(std::shared_ptr<const void> instance) {
  if (!instance) {
    return;
  }
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_instances.push_back(std::move(instance));
}

void CMPINSPInstanceRegistry::ClearInstances() {
  std::vector<std::shared_ptr<const void>> released;
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    released.swap(m_instances);
  }
  // Provider code may run while the last owners go; it must be free to register again.
}

std::size_t CMPINSPInstanceRegistry::GetCount() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_instances.size();
}

}  // namespace NZEPQEL20
