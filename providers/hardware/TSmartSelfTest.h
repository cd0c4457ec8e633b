// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>

#include "providers/hardware/IDiagnosticTest.h"
#include "providers/hardware/Json.h"
#include "providers/hardware/TTestTools.h"

namespace hardware {

/// Lets an ATA drive make its short self-test and reads what it found (smartctl).
class TSmartSelfTest : public IDiagnosticTest {
 public:
  explicit TSmartSelfTest(TTestTools& tools);

  const TService& GetService() const override { return m_service; }
  TAvailability Check(const TDevice& device) const override;
  TVerdict Run(const TDevice& device, const TRunControl& control) const override;

  /// Whether the report's drive says that a self-test is under way.
  static bool IsRunning(const nlohmann::json& report);

  /// How much of the self-test is done by the report; 0..100.
  static unsigned int GetPercent(const nlohmann::json& report);

  /// The verdict on a self-test by the reports before it and after it. `wasSeen`: it was seen
  /// under way.
  static TVerdict Judge(const nlohmann::json& before, const nlohmann::json& after, bool wasSeen);

 private:
  TProcessOutcome Query(const TDevice& device, const TStopSignal& stop) const;

  TTestTools& m_tools;
  TService m_service;
  std::chrono::seconds m_deadline;
};

}  // namespace hardware
