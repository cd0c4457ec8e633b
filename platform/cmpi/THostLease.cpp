// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/THostLease.h"

namespace NZEPQEL20::cmpi {

THostLease::THostLease(const CMPIBroker* mb) noexcept : m_broker(TBroker::Find(mb)) {
  if (m_broker == nullptr) return;
  const std::lock_guard<std::mutex> lock(m_broker->m_mutex);
  m_host = m_broker->m_host;
  if (m_host != nullptr) ++m_broker->m_leases;
}

THostLease::~THostLease() {
  if (m_host == nullptr) return;
  const std::lock_guard<std::mutex> lock(m_broker->m_mutex);
  --m_broker->m_leases;
  if (m_broker->m_leases == 0) m_broker->m_idle.notify_all();
}

IBrokerHost& THostLease::Require() const {
  if (m_host == nullptr) throw TBrokerFault(CMPI_RC_ERR_FAILED, "the broker has shut down");
  return *m_host;
}

}  // namespace NZEPQEL20::cmpi
