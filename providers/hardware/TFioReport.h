// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "providers/hardware/TProcessRunner.h"
#include "providers/hardware/TVerdict.h"

namespace hardware {

/// What fio's last report says of all its jobs together.
struct TFioReport {
  bool isPresent = false;   ///< There is a report, and it tells errors and bytes of every job.
  std::uint64_t error = 0;  ///< An errno value; 0: no job met an error.
  std::uint64_t readBytes = 0;
  std::uint64_t writtenBytes = 0;
  std::uint64_t runtimeMs = 0;  ///< The longest of the jobs.
  std::string version;          ///< Told even by a report without jobs.
};

/// Finds the last complete report in what fio printed as JSON.
TFioReport ReadFioReport(std::string_view output);

/// The verdict that errors alone give, on a run that ended by itself; nothing when there were none
/// and the bytes are to be judged.
std::optional<TVerdict> JudgeFioErrors(const TFioReport& report, const TProcessOutcome& outcome);

/// The figures of a report that is present, with the end of what fio said about errors.
std::string ExcerptFioRun(const TFioReport& report, const TProcessOutcome& outcome);

/// How far a run is that ends at `bytes` or `time`, by the reports written so far; 0..100.
unsigned int EstimateFioPercent(std::string_view output, std::uint64_t bytes,
                                std::chrono::seconds time, std::chrono::milliseconds elapsed);

}  // namespace hardware
