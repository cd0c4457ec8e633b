// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>

#include "providers/hardware/IDiagnosticTest.h"
#include "providers/hardware/TTestTools.h"

namespace hardware {

/// Computes on one processor for a while and compares every result (stress-ng).
class TProcessorStress : public IDiagnosticTest {
 public:
  /// The extended form takes minutes instead of seconds.
  TProcessorStress(TTestTools& tools, bool isExtended);

  const TService& GetService() const override { return m_service; }
  TAvailability Check(const TDevice& device) const override;
  TVerdict Run(const TDevice& device, const TRunControl& control) const override;

  /// The verdict on a run that was to last `requested`.
  static TVerdict Judge(const TProcessOutcome& outcome, std::chrono::seconds requested);

 private:
  TTestTools& m_tools;
  TService m_service;
  std::chrono::seconds m_length;
  std::chrono::seconds m_deadline;
};

}  // namespace hardware
