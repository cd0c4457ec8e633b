// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "providers/hardware/IDiagnosticTest.h"
#include "providers/hardware/TTestTools.h"

namespace hardware {

/// Reads a bounded part of a disk past the page cache (fio); never writes. Offered where none of
/// the self-tests is.
class TDiskReadVerify : public IDiagnosticTest {
 public:
  /// What a run is to read: it ends at the bytes or at the seconds, whichever is reached first.
  struct TPlan {
    std::uint64_t bytes = 0;
    std::chrono::seconds time{0};
    std::uint64_t diskBytes = 0;
  };

  /// `selfTests`: the tests that take this one's place; they outlive it.
  TDiskReadVerify(TTestTools& tools, std::vector<const IDiagnosticTest*> selfTests);

  const TService& GetService() const override { return m_service; }
  TAvailability Check(const TDevice& device) const override;
  TVerdict Run(const TDevice& device, const TRunControl& control) const override;

  /// The verdict on a run of `plan`.
  static TVerdict Judge(const TProcessOutcome& outcome, const TPlan& plan);

  /// How far the run is, by the reports it has written so far; 0..100.
  static unsigned int EstimatePercent(std::string_view output, const TPlan& plan,
                                      std::chrono::milliseconds elapsed);

 private:
  TPlan MakePlan(const TDevice& device) const;

  TTestTools& m_tools;
  std::vector<const IDiagnosticTest*> m_selfTests;
  TService m_service;
  std::chrono::seconds m_deadline;
};

}  // namespace hardware
