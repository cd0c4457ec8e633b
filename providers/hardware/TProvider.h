// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "platform/cmpi/abi/cmpi.h"
#include "providers/hardware/TCimModel.h"
#include "providers/hardware/THardware.h"

namespace hardware {

/// The one provider of this process, shared by its three function tables: it comes with the first
/// table that is created and goes, with all its jobs, with the last one that is cleaned up.
class TProvider {
 public:
  /// The three kinds of function tables.
  enum class ETable { kInstance, kAssociation, kMethod };

  /// Notes that a table is in use. Reads the settings the first time and reports what is wrong
  /// with them to the broker's log.
  static void Acquire(ETable table, const CMPIBroker* broker);

  /// Notes that a table is no longer in use. Ends all jobs at once when `isTerminating`.
  /// Returns false, and keeps the table, when it may stay and jobs still run.
  static bool Release(ETable table, bool isTerminating);

  /// The provider, for the time of one call; throws TCimError when no table is in use.
  static std::shared_ptr<TProvider> Get();

  TCimModel& GetModel() { return m_model; }
  const CMPIBroker* GetBroker() const { return m_broker; }

  TProvider(const CMPIBroker* broker, const TConfig& config, const THostFiles& files);

 private:
  bool HasRunningJobs();

  const CMPIBroker* m_broker;
  THardware m_hardware;
  TCimModel m_model;
};

}  // namespace hardware
