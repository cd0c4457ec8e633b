// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TProcessorStress.h"

#include <optional>
#include <string>
#include <vector>

#include "providers/hardware/TMemoryErrors.h"
#include "providers/hardware/Text.h"

namespace hardware {
namespace {

// Short of the requested time by no more than the rounding of its own figures.
constexpr double kToleranceSeconds = 0.1;

/// What stress-ng says in its lines.
struct TStressReport {
  std::optional<double> operations;
  std::optional<double> seconds;
  bool isComplete = false;
  bool isSkipped = false;
  std::string failure;  ///< First line that reports a wrong result.
  std::string fault;    ///< First line that reports trouble of the program's own.
};

// A stressor that was killed leaves counters that do not fit together; stress-ng reports them as
// failures though nothing was computed wrongly.
bool IsOwnTrouble(std::string_view line) {
  return Contains(line, "bogo-ops counter") || Contains(line, "metrics-check") ||
         Contains(line, "metrics corrupted");
}

// "stress-ng: metrc: [pid] cpu 2601 2.00 2.00 0.00 1297.38 1297.51"; older versions call it "info:"
void ReadMetrics(const std::vector<std::string_view>& words, TStressReport& report) {
  for (std::size_t i = 0; i + 2 < words.size(); ++i) {
    if (words[i] != "cpu") continue;
    const std::optional<double> operations = ParseDecimal(words[i + 1]);
    const std::optional<double> seconds = ParseDecimal(words[i + 2]);
    if (!operations || !seconds) continue;
    report.operations = operations;
    report.seconds = seconds;
  }
}

TStressReport ReadReport(const TProcessOutcome& outcome) {
  TStressReport report;
  for (const std::string* text : {&outcome.output, &outcome.errors}) {
    for (const std::string_view line : SplitLines(*text)) {
      ReadMetrics(SplitWords(line), report);
      if (Contains(line, "unsuccessful run completed")) continue;
      if (Contains(line, "successful run completed")) report.isComplete = true;
      if (Contains(line, "will be skipped") || Contains(line, "No stress workers invoked")) {
        report.isSkipped = true;
      }
      if (!Contains(line, "stress-ng: fail:")) continue;
      std::string& kind = IsOwnTrouble(line) ? report.fault : report.failure;
      if (kind.empty()) kind = Excerpt(line, 300);
    }
  }
  return report;
}

std::string DescribeStatus(int status) {
  switch (status) {
    case 1:
      return "it was called wrongly or met a fatal problem of its own";
    case 2:
      return "it reports a failed stressor, but no wrong result";
    case 3:
      return "it lacked resources";
    case 4:
      return "this system does not support it";
    case 5:
      return "its worker was ended by a signal";
    case 6:
      return "its worker ended unexpectedly";
    case 7:
      return "its counters cannot be trusted";
    default:
      return "exit status " + std::to_string(status) + " has no known meaning";
  }
}

// Why a run that claims to be good is none; empty when it is.
std::string FindShortfall(const TStressReport& report, const TProcessOutcome& outcome,
                          std::chrono::seconds requested) {
  const double seconds = static_cast<double>(requested.count()) - kToleranceSeconds;
  const std::chrono::duration<double> duration = outcome.duration;
  if (report.isSkipped) return "the stress was skipped";
  if (!report.isComplete) return "the program does not say that its run was completed";
  if (!report.operations || !report.seconds) return "the program shows no counters";
  if (!(*report.operations > 0)) return "nothing was computed";
  if (*report.seconds < seconds || duration.count() < seconds) return "the run was cut short";
  return {};
}

}  // namespace

TProcessorStress::TProcessorStress(TTestTools& tools, bool isExtended) : m_tools(tools) {
  const TConfig& config = tools.GetConfig();
  m_service.testTypes = {3};
  if (isExtended) {
    m_length = std::chrono::minutes(config.processorExtendedMinutes);
    m_deadline = GetExtendedDeadline(config, m_length);
    m_service.name = "Processor Extended Stress";
    m_service.durationUnit = 4;
    m_service.durationCount = config.processorExtendedMinutes;
    m_service.isBlocking = true;
    m_service.characteristics = {8};
  } else {
    m_length = std::chrono::seconds(config.processorSeconds);
    m_deadline = GetShortDeadline(config, m_length);
    m_service.name = "Processor Short Stress";
    m_service.durationCount = config.processorSeconds + 1;
  }
  m_service.description = "Computes on one processor for " + std::to_string(m_length.count()) +
                          " seconds and verifies the results.";
}

TAvailability TProcessorStress::Check(const TDevice& device) const {
  if (device.kind != EDeviceKind::kProcessor) return {};
  return m_tools.CheckTool("stress-ng", "stress-ng");
}

TVerdict TProcessorStress::Run(const TDevice& device, const TRunControl& control) const {
  const std::string version = m_tools.GetVersion("stress-ng", "--version", control.stop);
  const TMemoryErrors before = TMemoryErrors::Read(m_tools.GetFiles());
  const std::chrono::milliseconds length = m_length;
  const TProcessOutcome outcome =
      m_tools.Run({"stress-ng", "--cpu", "1", "--cpu-method", "all", "--taskset",
                   std::to_string(device.number), "--verify", "--metrics-brief", "--timeout",
                   std::to_string(m_length.count()) + "s", "--temp-path", "/tmp"},
                  m_deadline, control.stop,
                  [&control, length](const std::string&, std::chrono::milliseconds elapsed) {
                    control.setPercent(static_cast<unsigned int>(100 * elapsed / length));
                  });
  TVerdict verdict = Judge(outcome, m_length);
  ApplyMemoryErrors(before, TMemoryErrors::Read(m_tools.GetFiles()), verdict);
  verdict.tool = version;
  return verdict;
}

TVerdict TProcessorStress::Judge(const TProcessOutcome& outcome, std::chrono::seconds requested) {
  const TStressReport report = ReadReport(outcome);
  const std::optional<TVerdict> ending = JudgeEnding(outcome);
  TVerdict verdict;
  if (ending) {
    verdict = *ending;
  } else if (!report.failure.empty()) {
    // Whatever the exit status: a wrong result was seen.
    verdict = MakeVerdict(ECompletion::kFailed, "a computation went wrong: " + report.failure);
  } else if (outcome.exitStatus != 0 || !report.fault.empty()) {
    verdict =
        MakeVerdict(ECompletion::kIncomplete,
                    "stress-ng could not test: " +
                        (report.fault.empty() ? DescribeStatus(outcome.exitStatus) : report.fault));
  } else {
    const std::string shortfall = FindShortfall(report, outcome, requested);
    verdict = shortfall.empty()
                  ? MakeVerdict(ECompletion::kOk, "all computations gave the right results")
                  : MakeVerdict(ECompletion::kIncomplete, "no full run: " + shortfall);
  }
  if (report.operations && report.seconds) {
    verdict.covered = std::to_string(static_cast<std::uint64_t>(*report.operations)) +
                      " rounds of verified operations in " +
                      std::to_string(static_cast<std::uint64_t>(*report.seconds)) + " of " +
                      std::to_string(requested.count()) + " seconds";
  }
  DescribeRun(outcome, verdict);
  return verdict;
}

}  // namespace hardware
