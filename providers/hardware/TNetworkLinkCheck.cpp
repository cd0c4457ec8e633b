// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TNetworkLinkCheck.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "providers/hardware/Text.h"

namespace hardware {
namespace {

constexpr std::array<const char*, 9> kErrorCounters = {
    "rx_errors",         "tx_errors",         "rx_crc_errors",
    "rx_frame_errors",   "rx_length_errors",  "rx_fifo_errors",
    "tx_carrier_errors", "tx_aborted_errors", "tx_fifo_errors"};
constexpr unsigned int kUpFlag = 1;  // IFF_UP

// The interface flags are shown in hexadecimal: "0x1003".
bool IsUp(const std::string& flags) {
  unsigned int bits = 0;
  if (!StartsWith(flags, "0x")) return false;
  const char* const end = flags.data() + flags.size();
  const auto [stop, error] = std::from_chars(flags.data() + 2, end, bits, 16);
  return error == std::errc() && stop == end && (bits & kUpFlag) != 0;
}

std::string DescribeNewErrors(const TNetworkLinkCheck::TPortState& before,
                              const TNetworkLinkCheck::TPortState& after) {
  std::string text;
  for (const auto& [name, count] : after.errors) {
    const auto old = before.errors.find(name);
    if (old == before.errors.end() || count <= old->second) continue;
    text += (text.empty() ? "" : ", ") + name + " +" + std::to_string(count - old->second);
  }
  return text;
}

}  // namespace

TNetworkLinkCheck::TNetworkLinkCheck(TTestTools& tools, const IDiagnosticTest& driverTest)
    : m_tools(tools), m_driverTest(driverTest), m_length(tools.GetConfig().networkSeconds) {
  m_service.name = "Network Link Check";
  m_service.description = "Watches the port's link and error counters for " +
                          std::to_string(m_length.count()) + " seconds.";
  m_service.durationCount = tools.GetConfig().networkSeconds + 1;
  m_service.testTypes = {4};
}

TAvailability TNetworkLinkCheck::Check(const TDevice& device) const {
  if (device.kind != EDeviceKind::kNetworkPort ||
      m_driverTest.Check(device).answer == EAvailability::kOffered) {
    return {};
  }
  return {EAvailability::kOffered, "", ""};
}

TNetworkLinkCheck::TPortState TNetworkLinkCheck::ReadState(const THostFiles& files,
                                                           const std::string& kernelName) {
  const std::string folder = "/sys/class/net/" + kernelName;
  TPortState state;
  state.isUp = IsUp(files.ReadText(folder + "/flags").value_or(""));
  // A port that is switched off refuses this read.
  state.hasCarrier = files.ReadNumber(folder + "/carrier").value_or(0) == 1;
  state.carrierChanges = files.ReadNumber(folder + "/carrier_changes").value_or(0);
  state.operState = CleanName(files.ReadText(folder + "/operstate").value_or(""));
  for (const char* const name : kErrorCounters) {
    const auto count = files.ReadNumber(folder + "/statistics/" + name);
    if (count) state.errors[name] = *count;
  }
  state.hasCounters = !state.errors.empty();
  return state;
}

TVerdict TNetworkLinkCheck::Run(const TDevice& device, const TRunControl& control) const {
  const TPortState before = ReadState(m_tools.GetFiles(), device.kernelName);
  constexpr int kSteps = 20;
  for (int step = 0; step < kSteps; ++step) {
    control.setPercent(static_cast<unsigned int>(step * 100 / kSteps));
    const std::chrono::milliseconds length = m_length;
    if (!control.stop.WaitFor(length / kSteps)) continue;
    return control.stop.Get() == EStop::kKill
               ? MakeVerdict(ECompletion::kAborted, "killed on request")
               : MakeVerdict(ECompletion::kStopped, "stopped on request");
  }
  TVerdict verdict = Judge(before, ReadState(m_tools.GetFiles(), device.kernelName));
  if (verdict.state != ECompletion::kIncomplete) {
    verdict.covered = "link and " + std::to_string(before.errors.size()) + " error counters for " +
                      std::to_string(m_length.count()) + " seconds";
  }
  return verdict;
}

TVerdict TNetworkLinkCheck::Judge(const TPortState& before, const TPortState& after) {
  TVerdict verdict;
  const std::string errors = DescribeNewErrors(before, after);
  if (!before.hasCounters || !after.hasCounters) {
    verdict = MakeVerdict(ECompletion::kIncomplete, "the port shows no counters");
  } else if (!before.isUp || !after.isUp) {
    verdict = MakeVerdict(ECompletion::kIncomplete, "the port is switched off");
  } else if (!after.hasCarrier) {
    verdict = MakeVerdict(ECompletion::kFailed, "no link: check cable, transceiver and switch");
  } else if (!before.hasCarrier || before.carrierChanges != after.carrierChanges) {
    verdict = MakeVerdict(ECompletion::kFailed, "the link came and went while it was watched");
  } else if (!errors.empty()) {
    verdict = MakeVerdict(ECompletion::kWarning, "the link is up, but errors came up: " + errors);
  } else {
    verdict = MakeVerdict(ECompletion::kOk, "the link was up all the time, without new errors");
  }
  verdict.excerpt = "operational state " + (after.operState.empty() ? "?" : after.operState) +
                    ", carrier changes " + std::to_string(after.carrierChanges);
  verdict.tool = "kernel counters";
  return verdict;
}

}  // namespace hardware
