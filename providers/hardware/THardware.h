// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "providers/hardware/IDiagnosticTest.h"
#include "providers/hardware/TJobTable.h"
#include "providers/hardware/TTestTools.h"

namespace hardware {

/// The devices of this machine, the tests that each of them supports, and the runs of these tests.
///
/// Threads: any.
class THardware {
 public:
  /// A test that can run on a device.
  struct TOffer {
    const IDiagnosticTest* test = nullptr;
    TDevice device;
  };
  /// A test that is missing for want of a program or a right.
  struct TUnoffered {
    std::string id;  ///< "DRH:" and a text that stays the same as long as the reason does.
    std::string serviceName;
    std::string deviceNames;  ///< The devices concerned; of many, the first and their number.
    std::string reason;
    std::string remedy;
  };
  /// What was found at one moment.
  struct TView {
    std::vector<TDevice> devices;
    std::vector<TOffer> offers;
    std::vector<TUnoffered> unoffered;
  };

  THardware(TConfig config, THostFiles files, TCallerRights rights, TToolFinder finder);

  /// Looks at the machine anew. Devices that are not known yet may be asked what they support.
  std::shared_ptr<const TView> Refresh();

  /// What the last look showed; looks for the first time when there was none.
  std::shared_ptr<const TView> GetView();

  /// The kinds of tests that at least one device of the last look supports.
  std::vector<const IDiagnosticTest*> GetTests();

  /// The device with this id in the last look; null handle when there is none.
  std::shared_ptr<const TDevice> FindDevice(const std::string& id);

  /// The offer of the test named `serviceName` for a device in the last look; null when there is
  /// none.
  std::shared_ptr<const TOffer> FindOffer(const std::string& serviceName,
                                          const std::string& deviceId);

  TJobTable& GetJobs() { return m_jobs; }

 private:
  void MakeTests();

  TTestTools m_tools;
  std::vector<std::unique_ptr<IDiagnosticTest>> m_tests;
  std::mutex m_mutex;
  std::shared_ptr<const TView> m_view;
  TJobTable m_jobs;  // Last: its threads use the tests.
};

}  // namespace hardware
