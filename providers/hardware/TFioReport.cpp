// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TFioReport.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include "providers/hardware/Json.h"
#include "providers/hardware/Text.h"

namespace hardware {
namespace {

constexpr std::size_t kErrorBytes = 1000;

// The errors with which the kernel reports that a device could not deliver its data. All others
// are about the way to it: no right, no such file, busy.
bool IsDeviceError(std::uint64_t error) {
  static constexpr std::array<std::uint64_t, 6> kErrors = {EIO,       EILSEQ,  ENODATA,
                                                           EREMOTEIO, ENOLINK, ETIMEDOUT};
  return std::find(kErrors.begin(), kErrors.end(), error) != kErrors.end();
}

std::string DescribeError(std::uint64_t error) {
  return error < 4096 ? std::generic_category().message(static_cast<int>(error))
                      : "error " + std::to_string(error);
}

}  // namespace

TFioReport ReadFioReport(std::string_view output) {
  const nlohmann::json document = ParseLastDocument(output);
  const nlohmann::json& jobs = FindMember(document, {"jobs"});
  TFioReport report;
  report.version = ToText(FindMember(document, {"fio version"}));
  if (!jobs.is_array() || jobs.empty()) return report;
  report.isPresent = true;
  for (const nlohmann::json& job : jobs) {
    const std::optional<std::uint64_t> error = ToUnsigned(FindMember(job, {"error"}));
    const std::optional<std::uint64_t> bytes = ToUnsigned(FindMember(job, {"read", "io_bytes"}));
    if (!error || !bytes) return {};
    report.error = std::max(report.error, *error);
    report.readBytes += *bytes;
    report.writtenBytes += ToUnsigned(FindMember(job, {"write", "io_bytes"})).value_or(0);
    report.runtimeMs =
        std::max(report.runtimeMs, ToUnsigned(FindMember(job, {"read", "runtime"})).value_or(0));
  }
  return report;
}

std::optional<TVerdict> JudgeFioErrors(const TFioReport& report, const TProcessOutcome& outcome) {
  if (!report.isPresent) {
    return MakeVerdict(ECompletion::kIncomplete, "fio gave no readable report");
  }
  if (IsDeviceError(report.error)) {
    return MakeVerdict(ECompletion::kFailed, "reading failed after " +
                                                 DescribeBytes(report.readBytes) + ": " +
                                                 DescribeError(report.error));
  }
  if (report.error != 0) {
    return MakeVerdict(ECompletion::kIncomplete,
                       "fio could not read: " + DescribeError(report.error));
  }
  if (outcome.exitStatus != 0 || Contains(outcome.output, "terminating on signal")) {
    return MakeVerdict(ECompletion::kIncomplete, "fio ended before its work was done");
  }
  return std::nullopt;
}

std::string ExcerptFioRun(const TFioReport& report, const TProcessOutcome& outcome) {
  const std::string errors = Excerpt(outcome.errors, kErrorBytes);
  return "error " + std::to_string(report.error) + ", read " + std::to_string(report.readBytes) +
         " bytes, written " + std::to_string(report.writtenBytes) + " bytes" +
         (errors.empty() ? "" : "\n" + errors);
}

unsigned int EstimateFioPercent(std::string_view output, std::uint64_t bytes,
                                std::chrono::seconds time, std::chrono::milliseconds elapsed) {
  const auto readBytes = static_cast<double>(ReadFioReport(output).readBytes);
  const double byBytes = bytes == 0 ? 0 : 100.0 * readBytes / static_cast<double>(bytes);
  const std::chrono::duration<double> seconds = elapsed;
  const double byTime =
      time.count() == 0 ? 0 : 100.0 * seconds.count() / static_cast<double>(time.count());
  return static_cast<unsigned int>(std::min(100.0, std::max(byBytes, byTime)));
}

}  // namespace hardware
