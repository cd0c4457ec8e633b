// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>

#include "providers/hardware/IDiagnosticTest.h"
#include "providers/hardware/TTestTools.h"

namespace hardware {

/// Lets a network port's driver make its self-test while the port stays in use (ethtool).
class TNetworkDriverTest : public IDiagnosticTest {
 public:
  explicit TNetworkDriverTest(TTestTools& tools);

  const TService& GetService() const override { return m_service; }
  TAvailability Check(const TDevice& device) const override;
  TVerdict Run(const TDevice& device, const TRunControl& control) const override;

  /// The verdict on a run; `hasLink`: the port had a link when it ended.
  static TVerdict Judge(const TProcessOutcome& outcome, bool hasLink);

 private:
  TTestTools& m_tools;
  TService m_service;
  std::chrono::seconds m_deadline;
};

}  // namespace hardware
