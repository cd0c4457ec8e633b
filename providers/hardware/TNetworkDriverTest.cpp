// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TNetworkDriverTest.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string>
#include <vector>

#include "providers/hardware/Text.h"

namespace hardware {
namespace {

// A guess: drivers take from a moment to some ten seconds, and none of them tells.
constexpr std::chrono::seconds kUsualTime{10};

/// What "ethtool -t" prints.
struct TDriverReport {
  bool isPass = false;
  bool isFail = false;
  std::vector<std::string> failedParts;  ///< Parts of the test with a result other than 0.
  std::size_t parts = 0;
};

TDriverReport ReadReport(std::string_view output) {
  TDriverReport report;
  bool isInParts = false;
  for (const std::string_view line : SplitLines(output)) {
    if (StartsWith(line, "The test result is PASS")) report.isPass = true;
    if (StartsWith(line, "The test result is FAIL")) report.isFail = true;
    if (StartsWith(line, "The test extra info:")) {
      isInParts = true;
      continue;
    }
    const std::vector<std::string_view> words = SplitWords(line);
    if (!isInParts || words.size() < 2) continue;
    ++report.parts;
    if (ParseUnsigned(words.back()).value_or(1) != 0) report.failedParts.push_back(CleanText(line));
  }
  return report;
}

// Whether nothing but the test of the link itself failed.
bool IsOnlyLink(const std::vector<std::string>& parts) {
  return !parts.empty() && std::all_of(parts.begin(), parts.end(), [](std::string part) {
    std::transform(part.begin(), part.end(), part.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return Contains(part, "link");
  });
}

}  // namespace

TNetworkDriverTest::TNetworkDriverTest(TTestTools& tools)
    : m_tools(tools), m_deadline(GetShortDeadline(tools.GetConfig(), kUsualTime)) {
  m_service.name = "Network Driver Self-Test";
  m_service.description = "Lets the driver test the port while it stays in use.";
  m_service.durationCount = static_cast<std::uint32_t>(kUsualTime.count());
  m_service.testTypes = {2};
}

TAvailability TNetworkDriverTest::Check(const TDevice& device) const {
  if (device.kind != EDeviceKind::kNetworkPort) return {};
  TAvailability tool = m_tools.CheckTool("ethtool", "ethtool");
  if (tool.answer != EAvailability::kOffered) return tool;
  const TProcessOutcome answer = m_tools.Ask({"ethtool", "-i", device.kernelName}, device);
  if (answer.exitStatus != 0 || !Contains(answer.output, "supports-test: yes")) return {};
  if (!m_tools.GetRights().canAdministerNet) {
    return {EAvailability::kWithheld, "the right to administer the network is missing",
            "run as root"};
  }
  return tool;
}

TVerdict TNetworkDriverTest::Run(const TDevice& device, const TRunControl& control) const {
  const std::string version = m_tools.GetVersion("ethtool", "--version", control.stop);
  // The mode is always named: the default would take the port out of use.
  const TProcessOutcome outcome = m_tools.Run(
      {"ethtool", "-t", device.kernelName, "online"}, m_deadline, control.stop,
      [&control](const std::string&, std::chrono::milliseconds elapsed) {
        control.setPercent(static_cast<unsigned int>(
            100 * elapsed / std::chrono::duration_cast<std::chrono::milliseconds>(kUsualTime)));
      });
  const std::string carrier = "/sys/class/net/" + device.kernelName + "/carrier";
  TVerdict verdict = Judge(outcome, m_tools.GetFiles().ReadNumber(carrier).value_or(0) == 1);
  verdict.tool = version;
  return verdict;
}

TVerdict TNetworkDriverTest::Judge(const TProcessOutcome& outcome, bool hasLink) {
  const TDriverReport report = ReadReport(outcome.output);
  const std::optional<TVerdict> ending = JudgeEnding(outcome);
  TVerdict verdict;
  if (ending) {
    verdict = *ending;
  } else if (report.isFail && !hasLink && IsOnlyLink(report.failedParts)) {
    verdict =
        MakeVerdict(ECompletion::kWarning, "the driver's self-test failed for want of a link only");
  } else if (report.isFail) {
    verdict = MakeVerdict(ECompletion::kFailed, "the driver's self-test failed: " +
                                                    Excerpt(Join(report.failedParts, "; "), 300));
  } else if (report.isPass && outcome.exitStatus == 0 && report.failedParts.empty()) {
    verdict = MakeVerdict(ECompletion::kOk, "the driver's self-test passed");
  } else if (report.isPass) {
    verdict = MakeVerdict(ECompletion::kIncomplete,
                          "ethtool says PASS, but its status or its details say otherwise");
  } else if (Contains(outcome.errors + outcome.output, "not supported")) {
    verdict = MakeVerdict(ECompletion::kIncomplete, "skipped: the driver has no self-test");
  } else {
    verdict = MakeVerdict(ECompletion::kIncomplete, "ethtool gave no test result");
  }
  if (report.parts > 0) verdict.covered = std::to_string(report.parts) + " parts, port in use";
  DescribeRun(outcome, verdict);
  return verdict;
}

}  // namespace hardware
