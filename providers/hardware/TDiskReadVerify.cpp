// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TDiskReadVerify.h"

#include <algorithm>
#include <optional>
#include <string>

#include "providers/hardware/TFioReport.h"
#include "providers/hardware/Text.h"
#include "providers/hardware/Units.h"

namespace hardware {
namespace {

// Direct reads must be whole blocks; no disk in use has larger ones.
constexpr std::uint64_t kBlockBytes = 4096;

// The verdict on a run without errors.
TVerdict JudgeBytes(const TFioReport& report, const TDiskReadVerify::TPlan& plan) {
  // The time is a bound of the plan's own, not a cut: some milliseconds are left to fio's rounding.
  const auto timeMs = static_cast<std::uint64_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(plan.time).count());
  const bool isTimeUp = report.runtimeMs + 100 >= timeMs;
  if (report.readBytes == 0 || (report.readBytes < plan.bytes && !isTimeUp)) {
    return MakeVerdict(ECompletion::kIncomplete, "the run was cut short");
  }
  return MakeVerdict(ECompletion::kOk, "everything read came without an error");
}

std::string DescribeCoverage(const TFioReport& report, const TDiskReadVerify::TPlan& plan) {
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
  const TFioReport report = ReadFioReport(outcome.output);
  std::optional<TVerdict> judged = JudgeEnding(outcome);
  if (!judged) judged = JudgeFioErrors(report, outcome);
  TVerdict verdict = judged ? *judged : JudgeBytes(report, plan);
  if (report.isPresent) {
    verdict.covered = DescribeCoverage(report, plan);
    verdict.excerpt = ExcerptFioRun(report, outcome);
  }
  verdict.tool = report.version.empty() ? "fio" : report.version;
  DescribeRun(outcome, verdict);
  return verdict;
}

unsigned int TDiskReadVerify::EstimatePercent(std::string_view output, const TPlan& plan,
                                              std::chrono::milliseconds elapsed) {
  return EstimateFioPercent(output, plan.bytes, plan.time, elapsed);
}

}  // namespace hardware
