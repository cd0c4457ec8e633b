// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TMemoryPattern.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "providers/hardware/TMemoryErrors.h"
#include "providers/hardware/Text.h"
#include "providers/hardware/Units.h"

namespace hardware {
namespace {

/// One stage of a pass: its share of the time, and how many rounds it counts (0: it does not).
struct TStage {
  std::string_view name;
  unsigned int percent;
  unsigned int rounds;
};

// Shares as measured; in the order in which memtester works.
constexpr std::array<TStage, 17> kStages = {{{"Stuck Address", 3, 16},
                                             {"Random Value", 2, 0},
                                             {"Compare XOR", 0, 0},
                                             {"Compare SUB", 0, 0},
                                             {"Compare MUL", 0, 0},
                                             {"Compare DIV", 1, 0},
                                             {"Compare OR", 0, 0},
                                             {"Compare AND", 0, 0},
                                             {"Sequential Increment", 0, 0},
                                             {"Solid Bits", 5, 64},
                                             {"Block Sequential", 18, 256},
                                             {"Checkerboard", 4, 64},
                                             {"Bit Spread", 9, 128},
                                             {"Bit Flip", 35, 512},
                                             {"Walking Ones", 9, 128},
                                             {"Walking Zeroes", 8, 128},
                                             {"8-bit Writes", 3, 0}}};

// The number after the last `word` in `text`.
std::optional<std::uint64_t> FindLastNumber(std::string_view text, std::string_view word) {
  const std::size_t place = text.rfind(word);
  if (place == std::string_view::npos) return std::nullopt;
  const std::string_view rest = Trim(text.substr(place + word.size()));
  return ParseUnsigned(rest.substr(0, rest.find_first_not_of("0123456789")));
}

// The number of bytes in the last line that begins with `word`: "got  16MB (16777216 bytes), ..."
std::optional<std::uint64_t> FindBytes(std::string_view text, std::string_view word) {
  std::optional<std::uint64_t> bytes;
  for (const std::string_view line : SplitLines(text)) {
    if (!StartsWith(line, word)) continue;
    const std::optional<std::uint64_t> found = FindLastNumber(line, "(");
    if (found) bytes = found;
  }
  return bytes;
}

/// What memtester says in its lines.
struct TMemoryReport {
  std::optional<std::uint64_t> wantedBytes;
  std::optional<std::uint64_t> testedBytes;
  bool isDone = false;
  bool isLocked = false;
  std::size_t failures = 0;
  std::string firstFailure;
};

TMemoryReport ReadReport(const TProcessOutcome& outcome, std::uint32_t loops) {
  TMemoryReport report;
  report.wantedBytes = FindBytes(outcome.output, "want ");
  report.testedBytes = FindBytes(outcome.output, "got ");
  report.isLocked = Contains(outcome.output, "...locked.");
  const std::string pass = std::to_string(loops);
  report.isDone = Contains(outcome.output, "Loop " + pass + "/" + pass + ":") &&
                  Contains(outcome.output, "\nDone.");
  for (const std::string* text : {&outcome.output, &outcome.errors}) {
    for (const std::string_view line : SplitLines(*text)) {
      const std::size_t place = line.find("FAILURE:");
      if (place == std::string_view::npos) continue;
      ++report.failures;
      if (report.firstFailure.empty()) report.firstFailure = Excerpt(line.substr(place), 200);
    }
  }
  return report;
}

// The verdict on a run that ended by itself and reported no failure.
TVerdict JudgeClean(const TMemoryReport& report, int status) {
  if (status != 0) {
    return MakeVerdict(
        ECompletion::kIncomplete,
        (status & 1) != 0
            ? "memtester could not get or lock the memory, or was called wrongly"
            : "memtester returned " + std::to_string(status) + " without naming a failed address");
  }
  if (!report.isDone || !report.wantedBytes || !report.testedBytes) {
    return MakeVerdict(ECompletion::kIncomplete, "memtester ended before its last pass was done");
  }
  if (*report.testedBytes < *report.wantedBytes) {
    return MakeVerdict(ECompletion::kWarning,
                       "no failure, but less memory could be locked than was asked for");
  }
  if (!report.isLocked) {
    return MakeVerdict(ECompletion::kWarning,
                       "no failure, but the memory could not be locked, which makes the test "
                       "less reliable");
  }
  return MakeVerdict(ECompletion::kOk, "all patterns were read back as they were written");
}

}  // namespace

TMemoryPattern::TMemoryPattern(TTestTools& tools, bool isExtended) : m_tools(tools) {
  const TConfig& config = tools.GetConfig();
  m_mib = isExtended ? config.memoryExtendedMib : config.memoryMib;
  m_loops = isExtended ? config.memoryExtendedLoops : 1;
  // Half a second per MiB and pass, as measured; twice that for slower machines.
  const std::chrono::seconds planned(std::uint64_t{m_mib} * m_loops + 1);
  m_service.characteristics = {2};
  m_service.testTypes = {isExtended ? std::uint16_t{3} : std::uint16_t{2}};
  if (isExtended) {
    m_deadline = GetExtendedDeadline(config, planned);
    m_service.name = "Memory Extended Pattern";
    m_service.durationUnit = 4;
    m_service.durationCount = config.memoryExtendedMinutes;
    m_service.isBlocking = true;
    m_service.characteristics.push_back(8);
  } else {
    m_deadline = GetShortDeadline(config, planned);
    m_service.name = "Memory Short Pattern";
    m_service.durationCount = m_mib / 2 + 1;
  }
  m_service.description =
      "Writes patterns to " + std::to_string(m_mib) + " MiB of free memory and reads them back.";
}

TAvailability TMemoryPattern::Check(const TDevice& device) const {
  if (device.kind != EDeviceKind::kMemory) return {};
  const TCallerRights& rights = m_tools.GetRights();
  if (!rights.canLockAnyMemory && rights.lockableBytes < m_mib * kMib) {
    return {EAvailability::kWithheld, "the limit for locked memory is too low",
            "run as root, or raise the limit (ulimit -l) to " + std::to_string(m_mib * 1024ULL)};
  }
  return m_tools.CheckTool("memtester", "memtester");
}

// memtester never returns when it is asked for more memory than there is.
std::uint32_t TMemoryPattern::ChooseMib() const {
  const std::string text = m_tools.GetFiles().ReadText("/proc/meminfo").value_or("");
  const std::uint64_t availableKib = FindLastNumber(text, "MemAvailable:").value_or(0);
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(m_mib, availableKib / 2 / 1024));
}

TVerdict TMemoryPattern::Run(const TDevice& device, const TRunControl& control) const {
  const std::uint32_t mib = ChooseMib();
  if (mib == 0) {
    return MakeVerdict(ECompletion::kIncomplete, "too little memory is available for a test");
  }
  const TMemoryErrors before = TMemoryErrors::Read(m_tools.GetFiles());
  const TProcessOutcome outcome =
      m_tools.Run({"memtester", std::to_string(mib) + "M", std::to_string(m_loops)}, m_deadline,
                  control.stop, [&control, this](const std::string& output, auto) {
                    control.setPercent(EstimatePercent(output, m_loops));
                  });
  TVerdict verdict = Judge(outcome, m_loops);
  if (!verdict.covered.empty()) verdict.covered += " of " + DescribeBytes(device.bytes);
  ApplyMemoryErrors(before, TMemoryErrors::Read(m_tools.GetFiles()), verdict);
  return verdict;
}

TVerdict TMemoryPattern::Judge(const TProcessOutcome& outcome, std::uint32_t loops) {
  const TMemoryReport report = ReadReport(outcome, loops);
  const std::optional<TVerdict> ending = JudgeEnding(outcome);
  TVerdict verdict;
  if (ending) {
    verdict = *ending;
  } else if (report.failures > 0) {
    verdict = MakeVerdict(ECompletion::kFailed,
                          "memory gave back other data than was written, in at least " +
                              std::to_string(report.failures) + " places; " + report.firstFailure);
  } else {
    verdict = JudgeClean(report, outcome.exitStatus);
  }
  if (report.testedBytes) {
    verdict.covered =
        DescribeBytes(*report.testedBytes) + " in " +
        (report.isDone ? "" : std::to_string(EstimatePercent(outcome.output, loops)) + " % of ") +
        std::to_string(loops) + (loops == 1 ? " pass" : " passes");
  }
  const std::vector<std::string_view> lines = SplitLines(outcome.output);
  verdict.tool = !lines.empty() && StartsWith(lines.front(), "memtester version")
                     ? Excerpt(lines.front(), 100)
                     : "memtester";
  DescribeRun(outcome, verdict);
  return verdict;
}

unsigned int TMemoryPattern::EstimatePercent(std::string_view output, std::uint32_t loops) {
  const std::size_t start = output.rfind("Loop ");
  if (start == std::string_view::npos || loops == 0) return 0;
  const std::string_view pass = output.substr(start);
  const std::uint64_t loop = FindLastNumber(pass, "Loop ").value_or(1);
  double percent = 0;
  double stageDone = 0;
  for (const TStage& stage : kStages) {
    const std::size_t place = pass.find(stage.name);
    if (place == std::string_view::npos) break;
    percent += stageDone;
    const std::string_view progress = pass.substr(place);
    const std::uint64_t round = FindLastNumber(progress, "ing ").value_or(0);
    stageDone = stage.percent;
    const bool isLast = !Contains(progress.substr(0, progress.find('\n')), "ok");
    if (isLast && stage.rounds > 0) {
      stageDone = stage.percent * std::min(1.0, static_cast<double>(round) / stage.rounds);
    } else if (isLast) {
      stageDone = 0;
    }
  }
  percent += stageDone;
  const double passes =
      static_cast<double>(std::min<std::uint64_t>(std::max<std::uint64_t>(loop, 1), loops) - 1);
  return static_cast<unsigned int>(std::min(100.0, (passes * 100 + percent) / loops));
}

}  // namespace hardware
