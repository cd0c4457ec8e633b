// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "providers/hardware/IDiagnosticTest.h"
#include "providers/hardware/TDiskMounts.h"
#include "providers/hardware/TFileFinder.h"
#include "providers/hardware/TTestTools.h"

namespace hardware {

/// Reads files that lie on a disk past the page cache (fio); never writes. Offered where the disk
/// itself cannot be opened, but a file system on it is in use.
class TDiskFileReadVerify : public IDiagnosticTest {
 public:
  /// What a run is to read: all of the bytes, before the time is up.
  struct TPlan {
    std::uint64_t bytes = 0;
    std::chrono::seconds time{0};
    std::vector<std::string> files;  ///< Their names, for people.
    std::string fileSystem;          ///< "the ext4 file system on /"
    std::uint64_t diskBytes = 0;
  };

  explicit TDiskFileReadVerify(TTestTools& tools);

  const TService& GetService() const override { return m_service; }
  TAvailability Check(const TDevice& device) const override;
  TVerdict Run(const TDevice& device, const TRunControl& control) const override;

  /// The verdict on a run of `plan`: no pass unless every planned byte was read.
  static TVerdict Judge(const TProcessOutcome& outcome, const TPlan& plan);

 private:
  TFileFinder MakeFinder(const TMount& mount) const;
  std::vector<std::string> MakeCommand(const std::vector<TChosenFile>& files) const;
  TVerdict Read(const TPlan& plan, const std::vector<TChosenFile>& files,
                const TRunControl& control) const;

  TTestTools& m_tools;
  TService m_service;
  std::chrono::seconds m_deadline;
};

}  // namespace hardware
