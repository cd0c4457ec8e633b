// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "providers/hardware/IDiagnosticTest.h"
#include "providers/hardware/Json.h"
#include "providers/hardware/TProcessRunner.h"

namespace hardware {

/// Follows a self-test that a drive makes by itself: starts it, looks at it from time to time, and
/// has it judged when it is over. A stop or the deadline aborts it in the drive, too.
class TSelfTestWatch {
 public:
  /// How long a question or a start may take, and giving up.
  static constexpr std::chrono::seconds kCommandTime{30};
  static constexpr std::chrono::seconds kAbortTime{5};

  /// What differs between one kind of drive and another.
  struct TSteps {
    /// Asks the drive for its state, as JSON on standard output.
    std::function<TProcessOutcome(const TStopSignal& stop)> query;
    /// Has the drive begin.
    std::function<TProcessOutcome(const TStopSignal& stop)> start;
    /// Has the drive give up; takes a few seconds at most.
    std::function<void()> abort;
    /// Why an answer is no good; empty when it is. The program has ended by itself.
    std::function<std::string(const TProcessOutcome& answer)> findRefusal;
    std::function<bool(const nlohmann::json& state)> isRunning;
    std::function<unsigned int(const nlohmann::json& state)> getPercent;
    /// The verdict by the states before and after; `wasSeen`: it was seen under way.
    std::function<TVerdict(const nlohmann::json& before, const nlohmann::json& after, bool wasSeen)>
        judge;
  };

  /// Looks every `interval`, for `deadline` at most.
  TSelfTestWatch(TSteps steps, std::chrono::seconds interval, std::chrono::seconds deadline)
      : m_steps(std::move(steps)), m_interval(interval), m_deadline(deadline) {}

  TVerdict Run(const TRunControl& control) const;

 private:
  bool TryAnswer(const TProcessOutcome& answer, TVerdict& verdict) const;
  TVerdict Follow(const nlohmann::json& before, const TProcessOutcome& started,
                  const TRunControl& control) const;

  TSteps m_steps;
  std::chrono::seconds m_interval;
  std::chrono::seconds m_deadline;
};

}  // namespace hardware
