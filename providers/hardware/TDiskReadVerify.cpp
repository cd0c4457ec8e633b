// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TDiskReadVerify.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <string>
#include <system_error>

#include "providers/hardware/Json.h"
#include "providers/hardware/Text.h"

namespace hardware {
namespace {

constexpr std::uint64_t kMib = std::uint64_t{1024} * 1024;
// Direct reads must be whole blocks; no disk in use has larger ones.
constexpr std::uint64_t kBlockBytes = 4096;

/// What fio's last report says of all its jobs.
struct TReadReport {
  bool isPresent = false;
  std::uint64_t error = 0;
  std::uint64_t readBytes = 0;
  std::uint64_t writtenBytes = 0;
  std::uint64_t runtimeMs = 0;
  std::string version;
};

TReadReport ReadReport(std::string_view output) {
  const nlohmann::json document = ParseLastDocument(output);
  const nlohmann::json& jobs = FindMember(document, {"jobs"});
  TReadReport report;
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

TVerdict JudgeReport(const TReadReport& report, const TProcessOutcome& outcome,
                     const TDiskReadVerify::TPlan& plan) {
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
  // The time is a bound of the plan's own, not a cut: some milliseconds are left to fio's rounding.
  const auto timeMs = static_cast<std::uint64_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(plan.time).count());
  const bool isTimeUp = report.runtimeMs + 100 >= timeMs;
  if (report.readBytes == 0 || (report.readBytes < plan.bytes && !isTimeUp)) {
    return MakeVerdict(ECompletion::kIncomplete, "the run was cut short");
  }
  return MakeVerdict(ECompletion::kOk, "everything read came without an error");
}

std::string DescribeCoverage(const TReadReport& report, const TDiskReadVerify::TPlan& plan) {
  return DescribeBytes(report.readBytes) + " read of " + DescribeBytes(plan.bytes) +
         " planned, from the start of a disk of " + DescribeBytes(plan.diskBytes) + ", in " +
         std::to_string(report.runtimeMs) + " ms";
}

}  // namespace

TDiskReadVerify::TDiskReadVerify(TTestTools& tools, std::vector<const IDiagnosticTest*> selfTests)
    : m_tools(tools), m_selfTests(std::move(selfTests)) {
  const TConfig& config = tools.GetConfig();
  const std::chrono::seconds planned(config.diskSeconds);
  m_deadline = GetShortDeadline(config, planned);
  m_service.name = "DiskDefault Read Verify";
  m_service.description = "Reads up to " + std::to_string(config.diskMib) + " MiB in at most " +
                          std::to_string(config.diskSeconds) +
                          " seconds from the start of the disk; writes nothing.";
  m_service.durationCount = config.diskSeconds + 1;
  m_service.testTypes = {6};
}

TAvailability TDiskReadVerify::Check(const TDevice& device) const {
  if (device.kind != EDeviceKind::kDisk) return {};
  for (const IDiagnosticTest* test : m_selfTests) {
    if (test->Check(device).answer == EAvailability::kOffered) return {};
  }
  TAvailability tool = m_tools.CheckTool("fio", "fio");
  return tool.answer == EAvailability::kOffered ? m_tools.CheckDisk(device) : tool;
}

TDiskReadVerify::TPlan TDiskReadVerify::MakePlan(const TDevice& device) const {
  TPlan plan;
  plan.diskBytes = device.bytes;
  plan.time = std::chrono::seconds(m_tools.GetConfig().diskSeconds);
  plan.bytes = std::min(m_tools.GetConfig().diskMib * kMib, device.bytes);
  plan.bytes -= plan.bytes % (plan.bytes >= kMib ? kMib : kBlockBytes);
  return plan;
}

TVerdict TDiskReadVerify::Run(const TDevice& device, const TRunControl& control) const {
  const TPlan plan = MakePlan(device);
  if (plan.bytes == 0) return MakeVerdict(ECompletion::kIncomplete, "the disk is too small");
  const TProcessOutcome outcome = m_tools.Run(
      {"fio", "--name=verify", "--filename=" + m_tools.GetFiles().Locate(device.node), "--readonly",
       "--rw=read", "--allow_file_create=0", "--direct=1", "--ioengine=psync",
       plan.bytes >= kMib ? "--bs=1M" : "--bs=4k", "--size=" + std::to_string(plan.bytes),
       "--runtime=" + std::to_string(plan.time.count()), "--output-format=json",
       "--status-interval=1", "--eta=never"},
      m_deadline, control.stop,
      [&control, &plan](const std::string& output, std::chrono::milliseconds elapsed) {
        control.setPercent(EstimatePercent(output, plan, elapsed));
      });
  return Judge(outcome, plan);
}

TVerdict TDiskReadVerify::Judge(const TProcessOutcome& outcome, const TPlan& plan) {
  const TReadReport report = ReadReport(outcome.output);
  const std::optional<TVerdict> ending = JudgeEnding(outcome);
  TVerdict verdict = ending ? *ending : JudgeReport(report, outcome, plan);
  if (report.isPresent) {
    verdict.covered = DescribeCoverage(report, plan);
    verdict.excerpt = "error " + std::to_string(report.error) + ", read " +
                      std::to_string(report.readBytes) + " bytes, written " +
                      std::to_string(report.writtenBytes) + " bytes";
    const std::string errors = Excerpt(outcome.errors, 1000);
    if (!errors.empty()) verdict.excerpt += "\n" + errors;
  }
  verdict.tool = report.version.empty() ? "fio" : report.version;
  DescribeRun(outcome, verdict);
  return verdict;
}

unsigned int TDiskReadVerify::EstimatePercent(std::string_view output, const TPlan& plan,
                                              std::chrono::milliseconds elapsed) {
  const TReadReport report = ReadReport(output);
  const double byBytes = plan.bytes == 0 ? 0
                                         : 100.0 * static_cast<double>(report.readBytes) /
                                               static_cast<double>(plan.bytes);
  const std::chrono::duration<double> seconds = elapsed;
  const double byTime =
      plan.time.count() == 0 ? 0 : 100.0 * seconds.count() / static_cast<double>(plan.time.count());
  return static_cast<unsigned int>(std::min(100.0, std::max(byBytes, byTime)));
}

}  // namespace hardware
