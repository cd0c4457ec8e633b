// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

#include "providers/hardware/IDiagnosticTest.h"
#include "providers/hardware/TTestTools.h"

namespace hardware {

/// Watches a network port's link and error counters for a short time. Offered where the driver has
/// no self-test.
class TNetworkLinkCheck : public IDiagnosticTest {
 public:
  /// What a port shows at one time.
  struct TPortState {
    bool hasCounters = false;
    bool isUp = false;  ///< It is switched on; only then a link can be expected.
    bool hasCarrier = false;
    std::uint64_t carrierChanges = 0;
    std::string operState;
    std::map<std::string, std::uint64_t> errors;  ///< By counter.
  };

  /// `driverTest`: the test that takes this one's place; it outlives it.
  TNetworkLinkCheck(TTestTools& tools, const IDiagnosticTest& driverTest);

  const TService& GetService() const override { return m_service; }
  TAvailability Check(const TDevice& device) const override;
  TVerdict Run(const TDevice& device, const TRunControl& control) const override;

  /// The verdict on a time between two states.
  static TVerdict Judge(const TPortState& before, const TPortState& after);

  /// Reads what the port `kernelName` shows now.
  static TPortState ReadState(const THostFiles& files, const std::string& kernelName);

 private:
  TTestTools& m_tools;
  const IDiagnosticTest& m_driverTest;
  TService m_service;
  std::chrono::seconds m_length;
};

}  // namespace hardware
