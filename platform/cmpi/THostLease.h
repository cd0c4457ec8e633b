// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/cmpi/IBrokerHost.h"
#include "platform/cmpi/TBroker.h"

namespace NZEPQEL20::cmpi {

/// Holds the host of a broker for the time of one request.
class THostLease {
 public:
  /// As TBroker::Find().
  explicit THostLease(const CMPIBroker* mb) noexcept;
  ~THostLease();
  THostLease(const THostLease&) = delete;
  THostLease& operator=(const THostLease&) = delete;

  /// Null when no host is served.
  IBrokerHost* Get() const { return m_host; }
  /// Errors: TBrokerFault when no host is served.
  IBrokerHost& Require() const;

 private:
  TBroker* m_broker;
  IBrokerHost* m_host = nullptr;
};

}  // namespace NZEPQEL20::cmpi
