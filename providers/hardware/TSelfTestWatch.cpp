// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TSelfTestWatch.h"

#include <optional>

namespace hardware {
namespace {

using TClock = std::chrono::steady_clock;

// A drive may show nothing of a self-test for a moment after it was told to begin, and a look may
// fail while it is busy.
constexpr int kPatience = 3;

TVerdict MakeStopped(EStop stop) {
  return stop == EStop::kKill ? MakeVerdict(ECompletion::kAborted, "killed on request")
                              : MakeVerdict(ECompletion::kStopped, "stopped on request");
}

}  // namespace

// Whether the answer can be used; when it cannot, `verdict` says why.
bool TSelfTestWatch::TryAnswer(const TProcessOutcome& answer, TVerdict& verdict) const {
  const std::optional<TVerdict> ending = JudgeEnding(answer);
  const std::string refusal = ending ? std::string() : m_steps.findRefusal(answer);
  if (!ending && refusal.empty()) return true;
  verdict = ending ? *ending : MakeVerdict(ECompletion::kIncomplete, refusal);
  // A question that took too long is not the test's own deadline.
  if (answer.end == EProcessEnd::kDeadline) {
    verdict = MakeVerdict(ECompletion::kIncomplete, "the drive did not answer in time");
  }
  DescribeRun(answer, verdict);
  return false;
}

TVerdict TSelfTestWatch::Run(const TRunControl& control) const {
  TVerdict verdict;
  const TProcessOutcome before = m_steps.query(control.stop);
  if (!TryAnswer(before, verdict)) return verdict;
  const nlohmann::json state = ParseJson(before.output);
  if (m_steps.isRunning(state)) {
    return MakeVerdict(ECompletion::kIncomplete,
                       "the drive is busy with a self-test that somebody else began");
  }
  const TProcessOutcome started = m_steps.start(control.stop);
  if (!TryAnswer(started, verdict)) {
    // It may have begun all the same, as when the program was ended in the middle.
    if (started.end != EProcessEnd::kNotStarted) m_steps.abort();
    return verdict;
  }
  verdict = Follow(state, started, control);
  if (verdict.command.empty()) {
    const std::string excerpt = verdict.excerpt;
    DescribeRun(started, verdict);
    if (!excerpt.empty()) verdict.excerpt = excerpt;
  }
  return verdict;
}

TVerdict TSelfTestWatch::Follow(const nlohmann::json& before, const TProcessOutcome& started,
                                const TRunControl& control) const {
  const TClock::time_point end = TClock::now() + m_deadline - started.duration;
  bool wasSeen = false;
  int misses = 0;
  while (TClock::now() < end) {
    if (control.stop.WaitFor(m_interval)) {
      m_steps.abort();
      return MakeStopped(control.stop.Get());
    }
    TVerdict trouble;
    const TProcessOutcome answer = m_steps.query(control.stop);
    if (!TryAnswer(answer, trouble)) {
      if (++misses < kPatience && control.stop.Get() == EStop::kNone) continue;
      m_steps.abort();
      return trouble;
    }
    const nlohmann::json state = ParseJson(answer.output);
    if (m_steps.isRunning(state)) {
      wasSeen = true;
      misses = 0;
      control.setPercent(m_steps.getPercent(state));
      continue;
    }
    TVerdict verdict = m_steps.judge(before, state, wasSeen);
    if (wasSeen || verdict.state != ECompletion::kIncomplete || ++misses >= kPatience) {
      return verdict;
    }
  }
  m_steps.abort();
  return MakeVerdict(ECompletion::kAborted, "ended at its deadline");
}

}  // namespace hardware
