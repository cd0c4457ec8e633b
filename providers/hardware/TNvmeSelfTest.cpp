// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TNvmeSelfTest.h"

#include <algorithm>
#include <optional>

#include "providers/hardware/TSelfTestWatch.h"
#include "providers/hardware/Text.h"

namespace hardware {
namespace {

constexpr std::uint64_t kSelfTestSupport = 16;  // Bit 4 of the optional admin commands.
constexpr std::uint64_t kShortTest = 1;
constexpr std::uint64_t kUnusedEntry = 15;

const nlohmann::json& GetReports(const nlohmann::json& log) {
  return FindMember(log, {"List of Valid Reports"});
}

// The newest entry of the log; null when there is none.
const nlohmann::json& GetNewest(const nlohmann::json& log) {
  static const nlohmann::json none;
  const nlohmann::json& reports = GetReports(log);
  return reports.is_array() && !reports.empty() ? reports[0] : none;
}

std::string DescribeResult(std::uint64_t result) {
  switch (result) {
    case 1:
      return "the self-test was aborted by a command";
    case 2:
      return "the self-test was aborted by a controller reset";
    case 3:
      return "the self-test was aborted because a namespace was removed";
    case 4:
      return "the self-test was aborted because a namespace was formatted";
    case 5:
      return "the self-test met a fatal or unknown error";
    case 6:
      return "an unknown segment of the self-test failed";
    case 7:
      return "a segment of the self-test failed";
    case 8:
      return "the self-test was aborted for an unknown reason";
    case 9:
      return "the self-test was aborted by a sanitize operation";
    default:
      return "the self-test ended with the unknown result " + std::to_string(result);
  }
}

std::string DescribeEntry(const nlohmann::json& entry) {
  std::string text;
  for (const char* const name : {"Self test result", "Self test code", "Segment number",
                                 "Power on hours", "Namespace Identifier", "Failing LBA"}) {
    const std::optional<std::uint64_t> value = ToUnsigned(FindMember(entry, {name}));
    if (value)
      text += (text.empty() ? "" : ", ") + std::string(name) + " " + std::to_string(*value);
  }
  return text;
}

}  // namespace

TNvmeSelfTest::TNvmeSelfTest(TTestTools& tools)
    : m_tools(tools), m_deadline(std::chrono::minutes(tools.GetConfig().selfTestDeadlineMinutes)) {
  m_service.name = "DiskDefault NVMe Self-Test";
  m_service.description = "Lets the drive make its own short self-test.";
  m_service.durationCount = 120;
  m_service.testTypes = {2};
}

TAvailability TNvmeSelfTest::Check(const TDevice& device) const {
  if (device.kind != EDeviceKind::kDisk || device.controllerNode.empty()) return {};
  TAvailability disk = m_tools.CheckDisk(device);
  if (disk.answer != EAvailability::kOffered) return disk;
  TAvailability tool = m_tools.CheckTool("nvme", "nvme-cli");
  if (tool.answer != EAvailability::kOffered) return tool;
  const TProcessOutcome answer = m_tools.Ask(
      {"nvme", "id-ctrl", m_tools.GetFiles().Locate(device.controllerNode), "-o", "json"}, device);
  if (answer.exitStatus != 0 && Contains(answer.errors, "ermi")) {
    // "Permission denied", "Operation not permitted": reading is allowed, commands are not.
    return {EAvailability::kWithheld, "nvme: " + Excerpt(answer.errors, 200), "run as root"};
  }
  const std::optional<std::uint64_t> commands =
      ToUnsigned(FindMember(ParseJson(answer.output), {"oacs"}));
  return commands && (*commands & kSelfTestSupport) != 0 ? tool : TAvailability();
}

bool TNvmeSelfTest::IsRunning(const nlohmann::json& log) {
  return ToUnsigned(FindMember(log, {"Current Device Self-Test Operation"})).value_or(0) != 0;
}

unsigned int TNvmeSelfTest::GetPercent(const nlohmann::json& log) {
  if (!IsRunning(log)) return 0;
  const std::uint64_t done =
      ToUnsigned(FindMember(log, {"Current Device Self-Test Completion"})).value_or(0);
  return static_cast<unsigned int>(std::min<std::uint64_t>(done, 100));
}

TVerdict TNvmeSelfTest::Run(const TDevice& device, const TRunControl& control) const {
  const std::string node = m_tools.GetFiles().Locate(device.controllerNode);
  const std::string allNamespaces = "0xffffffff";
  TSelfTestWatch::TSteps steps;
  steps.query = [this, node](const TStopSignal& stop) {
    return m_tools.Run({"nvme", "self-test-log", node, "-o", "json"}, TSelfTestWatch::kCommandTime,
                       stop);
  };
  steps.start = [this, node, allNamespaces](const TStopSignal& stop) {
    return m_tools.Run({"nvme", "device-self-test", node, "-n", allNamespaces, "-s", "1"},
                       TSelfTestWatch::kCommandTime, stop);
  };
  steps.abort = [this, node, allNamespaces] {
    m_tools.Run({"nvme", "device-self-test", node, "-n", allNamespaces, "-s", "0xf"},
                TSelfTestWatch::kAbortTime, TStopSignal());
  };
  steps.findRefusal = [](const TProcessOutcome& answer) {
    if (answer.exitStatus == 0) return std::string();
    return "nvme: " + Excerpt(answer.errors.empty() ? answer.output : answer.errors, 300);
  };
  steps.isRunning = IsRunning;
  steps.getPercent = GetPercent;
  steps.judge = Judge;
  TVerdict verdict =
      TSelfTestWatch(steps, std::chrono::seconds(m_tools.GetConfig().selfTestPollSeconds),
                     m_deadline)
          .Run(control);
  verdict.tool = m_tools.GetVersion("nvme", "version", control.stop);
  return verdict;
}

TVerdict TNvmeSelfTest::Judge(const nlohmann::json& before, const nlohmann::json& after,
                              bool wasSeen) {
  const nlohmann::json& entry = GetNewest(after);
  const std::optional<std::uint64_t> field = ToUnsigned(FindMember(entry, {"Self test result"}));
  const std::optional<std::uint64_t> code = ToUnsigned(FindMember(entry, {"Self test code"}));
  // The result is the low half of a byte that some versions show whole, with the code above it.
  const std::uint64_t result = field.value_or(kUnusedEntry) & 15U;
  TVerdict verdict;
  if (!wasSeen && GetReports(before) == GetReports(after)) {
    verdict = MakeVerdict(ECompletion::kIncomplete, "the drive shows no trace of the self-test");
  } else if (!field || result == kUnusedEntry) {
    verdict = MakeVerdict(ECompletion::kIncomplete, "the drive logged no result");
  } else if (code.value_or(kShortTest) != kShortTest) {
    verdict = MakeVerdict(ECompletion::kIncomplete, "the newest result is of another self-test");
  } else if (result == 0) {
    verdict = MakeVerdict(ECompletion::kOk, "the drive's self-test passed");
    verdict.covered = "what the drive's short self-test covers";
  } else {
    const bool blamesDrive = result >= 5 && result <= 7;
    verdict = MakeVerdict(blamesDrive ? ECompletion::kFailed : ECompletion::kIncomplete,
                          DescribeResult(result));
  }
  verdict.excerpt = DescribeEntry(entry);
  return verdict;
}

}  // namespace hardware
