// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <string>

#include "providers/hardware/IDiagnosticTest.h"
#include "providers/hardware/Json.h"
#include "providers/hardware/TTestTools.h"

namespace hardware {

/// Lets an NVMe drive make its short self-test and reads what it found (nvme).
class TNvmeSelfTest : public IDiagnosticTest {
 public:
  explicit TNvmeSelfTest(TTestTools& tools);

  const TService& GetService() const override { return m_service; }
  TAvailability Check(const TDevice& device) const override;
  TVerdict Run(const TDevice& device, const TRunControl& control) const override;

  /// Whether the log says that a self-test is under way.
  static bool IsRunning(const nlohmann::json& log);

  /// How much of the self-test is done by the log; 0 when none is under way.
  static unsigned int GetPercent(const nlohmann::json& log);

  /// The verdict on a self-test by the logs before it and after it. `wasSeen`: it was seen under
  /// way.
  static TVerdict Judge(const nlohmann::json& before, const nlohmann::json& after, bool wasSeen);

 private:
  TTestTools& m_tools;
  TService m_service;
  std::chrono::seconds m_deadline;
};

}  // namespace hardware
