// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/CMPINSPInstanceRegistry.h"
#include "tests/support/TFaultPlan.h"

namespace NZEPQEL20 {

CMPINSPInstanceRegistry& CMPINSPInstanceRegistry::GetRegistrySingleton() {
  static CMPINSPInstanceRegistry registry;
  return registry;
}

void CMPINSPInstanceRegistry::Register(std::shared_ptr<const void> instance) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_instances.push_back(std::move(instance));
}

void CMPINSPInstanceRegistry::ClearInstances() {
  if (!scripted::TFaultPlan::Get().Enter("clear", "")) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_instances.clear();
  }
}

std::size_t CMPINSPInstanceRegistry::GetCount() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_instances.size();
}

}  // namespace NZEPQEL20
