// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TVerdict.h"

#include <cstring>

#include "providers/hardware/Text.h"

namespace hardware {
namespace {

constexpr std::size_t kExcerptBytes = 1500;

std::string DescribeSignal(int signal) {
  const char* const name = ::sigabbrev_np(signal);
  return "signal " + std::to_string(signal) +
         (name != nullptr ? " (SIG" + std::string(name) + ")" : "");
}

std::string DescribeEnd(const TProcessOutcome& outcome) {
  switch (outcome.end) {
    case EProcessEnd::kNotStarted:
      return "not started";
    case EProcessEnd::kLost:
      return outcome.isIgnored ? "unknown: this process ignores SIGCHLD"
                               : "unknown: its status was taken by another part of this process";
    case EProcessEnd::kExited:
      return "exit status " + std::to_string(outcome.exitStatus);
    default:
      return outcome.signal > 0 ? DescribeSignal(outcome.signal)
                                : "exit status " + std::to_string(outcome.exitStatus) +
                                      " after it was asked to end";
  }
}

// Why nobody knows how the program ended, and what would mend it.
std::string DescribeLoss(const TProcessOutcome& outcome) {
  const std::string lost = "the test program's exit status was lost";
  if (!outcome.isIgnored) return lost + " to another part of this process";
  return lost +
         ": this process ignores SIGCHLD, be it by another provider's library or by the program "
         "that started it; repeating the test helps only when that is mended";
}

}  // namespace

TVerdict MakeVerdict(ECompletion state, std::string summary) {
  TVerdict verdict;
  verdict.state = state;
  verdict.summary = std::move(summary);
  return verdict;
}

std::optional<TVerdict> JudgeEnding(const TProcessOutcome& outcome) {
  TVerdict verdict;
  switch (outcome.end) {
    case EProcessEnd::kExited:
      return std::nullopt;
    case EProcessEnd::kSignalled:
      verdict = MakeVerdict(ECompletion::kIncomplete,
                            "the test program was ended by " + DescribeSignal(outcome.signal));
      verdict.isBroken = true;
      return verdict;
    case EProcessEnd::kNotStarted:
      verdict = MakeVerdict(ECompletion::kIncomplete,
                            "the test program could not be started: " + outcome.startError);
      verdict.isBroken = true;
      return verdict;
    case EProcessEnd::kLost:
      verdict = MakeVerdict(ECompletion::kIncomplete, DescribeLoss(outcome));
      verdict.isBroken = true;
      return verdict;
    case EProcessEnd::kDeadline:
      return MakeVerdict(ECompletion::kAborted, "ended at its deadline");
    case EProcessEnd::kKilled:
      return MakeVerdict(ECompletion::kAborted, "killed on request");
    case EProcessEnd::kTerminated:
      return MakeVerdict(ECompletion::kStopped, "stopped on request");
  }
  return std::nullopt;
}

void DescribeRun(const TProcessOutcome& outcome, TVerdict& verdict) {
  verdict.command = Join(outcome.arguments, " ");
  verdict.exit = DescribeEnd(outcome);
  if (!verdict.excerpt.empty()) return;
  const std::string errors = Excerpt(RenderTerminal(outcome.errors), kExcerptBytes);
  const std::string output = Excerpt(RenderTerminal(outcome.output), kExcerptBytes);
  verdict.excerpt = output + (output.empty() || errors.empty() ? "" : "\n") + errors;
}

}  // namespace hardware
