// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TSmartSelfTest.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "providers/hardware/TSelfTestWatch.h"
#include "providers/hardware/Text.h"

namespace hardware {
namespace {

// Bits of smartctl's exit status.
constexpr std::uint64_t kCommandLine = 1U;
constexpr std::uint64_t kOpenFailed = 2U;
constexpr std::uint64_t kFailing = 8U;
constexpr std::uint64_t kPrefail = 16U;
constexpr std::uint64_t kOldPrefail = 32U;
constexpr std::uint64_t kErrorLog = 64U;
constexpr std::uint64_t kSelfTestLog = 128U;

std::uint64_t GetStatus(const nlohmann::json& report) {
  return ToUnsigned(FindMember(report, {"ata_smart_data", "self_test", "status", "value"}))
      .value_or(0);
}

const nlohmann::json& GetLog(const nlohmann::json& report) {
  return FindMember(report, {"ata_smart_self_test_log"});
}

std::string DescribeStatus(std::uint64_t kind) {
  switch (kind) {
    case 1:
      return "the self-test was aborted by another program";
    case 2:
      return "the self-test was interrupted by a reset";
    case 3:
      return "the drive could not complete its self-test";
    case 4:
      return "the self-test failed in an unknown element";
    case 5:
      return "the self-test failed in the electrical part";
    case 6:
      return "the self-test failed in the servo or seek part";
    case 7:
      return "the self-test failed to read";
    case 8:
      return "the self-test found handling damage";
    default:
      return "the self-test ended with the unknown state " + std::to_string(kind);
  }
}

// What the drive's health says beside a passed self-test.
TVerdict JudgeHealth(const nlohmann::json& report) {
  const std::uint64_t exit =
      ToUnsigned(FindMember(report, {"smartctl", "exit_status"})).value_or(0);
  if (IsFalse(FindMember(report, {"smart_status", "passed"})) || (exit & kFailing) != 0) {
    return MakeVerdict(ECompletion::kFailed,
                       "the self-test passed, but the drive predicts its failure");
  }
  if ((exit & kPrefail) != 0) {
    return MakeVerdict(ECompletion::kFailed,
                       "the self-test passed, but a health attribute is below its threshold");
  }
  std::vector<std::string> notes;
  if ((exit & kOldPrefail) != 0) notes.emplace_back("an attribute was below its threshold before");
  if ((exit & kErrorLog) != 0) notes.emplace_back("the error log has entries");
  if ((exit & kSelfTestLog) != 0) notes.emplace_back("the self-test log has failed tests");
  if (notes.empty()) return MakeVerdict(ECompletion::kOk, "the drive's self-test passed");
  return MakeVerdict(ECompletion::kWarning, "the self-test passed, but " + Join(notes, "; "));
}

std::string FindMessages(const nlohmann::json& report) {
  const nlohmann::json& messages = FindMember(report, {"smartctl", "messages"});
  std::vector<std::string> texts;
  if (messages.is_array()) {
    for (const nlohmann::json& message : messages) {
      texts.push_back(ToText(FindMember(message, {"string"})));
    }
  }
  return Excerpt(Join(texts, "; "), 500);
}

bool IsRefused(const nlohmann::json& report) {
  const auto exit = ToUnsigned(FindMember(report, {"smartctl", "exit_status"}));
  return !exit || (*exit & (kCommandLine | kOpenFailed)) != 0;
}

std::string DescribeTool(const nlohmann::json& report) {
  const nlohmann::json& version = FindMember(report, {"smartctl", "version"});
  if (!version.is_array() || version.size() < 2) return "smartctl";
  return "smartctl " + version[0].dump() + "." + version[1].dump();
}

}  // namespace

TSmartSelfTest::TSmartSelfTest(TTestTools& tools)
    : m_tools(tools), m_deadline(std::chrono::minutes(tools.GetConfig().selfTestDeadlineMinutes)) {
  m_service.name = "DiskDefault SMART Self-Test";
  m_service.description = "Lets the drive make its own short self-test.";
  m_service.durationCount = 120;
  m_service.testTypes = {2};
}

TAvailability TSmartSelfTest::Check(const TDevice& device) const {
  // Only drives behind the SCSI layer can be ATA drives.
  if (device.kind != EDeviceKind::kDisk || !StartsWith(device.kernelName, "sd")) return {};
  TAvailability disk = m_tools.CheckDisk(device);
  if (disk.answer != EAvailability::kOffered) return disk;
  TAvailability tool = m_tools.CheckTool("smartctl", "smartmontools");
  if (tool.answer != EAvailability::kOffered) return tool;
  const TProcessOutcome answer =
      m_tools.Ask({"smartctl", "-j", "-i", "-c", m_tools.GetFiles().Locate(device.node)}, device);
  const nlohmann::json report = ParseJson(answer.output);
  if (IsRefused(report) && Contains(FindMessages(report), "ermi")) {
    // "Permission denied", "Operation not permitted": reading is allowed, commands are not.
    return {EAvailability::kWithheld, "smartctl: " + FindMessages(report), "run as root"};
  }
  const bool isSupported =
      IsTrue(FindMember(report, {"ata_smart_data", "capabilities", "self_tests_supported"}));
  return isSupported ? tool : TAvailability();
}

TProcessOutcome TSmartSelfTest::Query(const TDevice& device, const TStopSignal& stop) const {
  return m_tools.Run({"smartctl", "-j", "-H", "-c", "-l", "selftest", "-l", "error", "-A",
                      m_tools.GetFiles().Locate(device.node)},
                     TSelfTestWatch::kCommandTime, stop);
}

bool TSmartSelfTest::IsRunning(const nlohmann::json& report) {
  return GetStatus(report) >> 4U == 15;
}

unsigned int TSmartSelfTest::GetPercent(const nlohmann::json& report) {
  const std::uint64_t left =
      ToUnsigned(FindMember(report, {"ata_smart_data", "self_test", "status", "remaining_percent"}))
          .value_or(100);
  return static_cast<unsigned int>(100 - std::min<std::uint64_t>(left, 100));
}

TVerdict TSmartSelfTest::Run(const TDevice& device, const TRunControl& control) const {
  const std::string node = m_tools.GetFiles().Locate(device.node);
  TSelfTestWatch::TSteps steps;
  steps.query = [this, &device](const TStopSignal& stop) { return Query(device, stop); };
  steps.start = [this, node](const TStopSignal& stop) {
    return m_tools.Run({"smartctl", "-j", "-t", "short", node}, TSelfTestWatch::kCommandTime, stop);
  };
  steps.abort = [this, node] {
    m_tools.Run({"smartctl", "-j", "-X", node}, TSelfTestWatch::kAbortTime, TStopSignal());
  };
  steps.findRefusal = [](const TProcessOutcome& answer) {
    const nlohmann::json report = ParseJson(answer.output);
    return IsRefused(report) ? "smartctl: " + FindMessages(report) : std::string();
  };
  steps.isRunning = IsRunning;
  steps.getPercent = GetPercent;
  steps.judge = Judge;
  const TSelfTestWatch watch(steps, std::chrono::seconds(m_tools.GetConfig().selfTestPollSeconds),
                             m_deadline);
  return watch.Run(control);
}

TVerdict TSmartSelfTest::Judge(const nlohmann::json& before, const nlohmann::json& after,
                               bool wasSeen) {
  TVerdict verdict;
  const std::uint64_t kind = GetStatus(after) >> 4U;
  const nlohmann::json& status = FindMember(after, {"ata_smart_data", "self_test", "status"});
  if (!ToUnsigned(FindMember(status, {"value"}))) {
    verdict = MakeVerdict(ECompletion::kIncomplete, "the drive shows no self-test state");
  } else if (!wasSeen && GetLog(before) == GetLog(after)) {
    // The state shown is that of an older self-test.
    verdict = MakeVerdict(ECompletion::kIncomplete, "the drive shows no trace of the self-test");
  } else if (kind == 0) {
    verdict = JudgeHealth(after);
  } else {
    const bool blamesDrive = kind >= 4 && kind <= 8;
    verdict = MakeVerdict(blamesDrive ? ECompletion::kFailed : ECompletion::kIncomplete,
                          DescribeStatus(kind));
  }
  verdict.tool = DescribeTool(after);
  verdict.excerpt = ToText(FindMember(status, {"string"}));
  const nlohmann::json& table = FindMember(GetLog(after), {"standard", "table"});
  if (table.is_array() && !table.empty()) {
    const std::optional<std::uint64_t> lba = ToUnsigned(FindMember(table[0], {"lba"}));
    if (lba && kind == 7) verdict.excerpt += "; first failed block " + std::to_string(*lba);
  }
  if (wasSeen || kind == 0) verdict.covered = "what the drive's short self-test covers";
  return verdict;
}

}  // namespace hardware
