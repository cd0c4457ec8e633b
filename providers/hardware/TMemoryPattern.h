// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <string_view>

#include "providers/hardware/IDiagnosticTest.h"
#include "providers/hardware/TTestTools.h"

namespace hardware {

/// Writes patterns into a bounded part of the free memory and reads them back (memtester).
class TMemoryPattern : public IDiagnosticTest {
 public:
  /// The extended form tests more memory and takes minutes instead of seconds.
  TMemoryPattern(TTestTools& tools, bool isExtended);

  const TService& GetService() const override { return m_service; }
  TAvailability Check(const TDevice& device) const override;
  TVerdict Run(const TDevice& device, const TRunControl& control) const override;

  /// The verdict on a run of `loops` passes.
  static TVerdict Judge(const TProcessOutcome& outcome, std::uint32_t loops);

  /// How far a run of `loops` passes is, by what it has written so far; 0..100.
  static unsigned int EstimatePercent(std::string_view output, std::uint32_t loops);

 private:
  std::uint32_t ChooseMib() const;

  TTestTools& m_tools;
  TService m_service;
  std::uint32_t m_mib;
  std::uint32_t m_loops;
  std::chrono::seconds m_deadline;
};

}  // namespace hardware
