// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace host {

/// What `diagsrun` exits with. An error outranks a failure.
enum class EExitStatus {
  kAllPassed = 0,
  kTestFailed = 1,
  kNotFinished = 2,
  kWrongUsage = 3,
};

/// One exit status in words, as the help, the manual page and the completion show it.
struct TExitStatusText {
  EExitStatus status;
  const char* meaning;
};

/// Every exit status, in ascending order.
const std::vector<TExitStatusText>& GetExitStatusTexts();

/// How one test ended, seen from the exit status.
enum class EOutcome {
  kPassed,
  kFailed,
  kError,   ///< Could not run, was aborted, or left no usable result.
  kNotRun,  ///< Was selected and never started.
};

/// The outcome as a lower-case word: "passed", "failed", "error", "not run".
const char* GetOutcomeText(EOutcome outcome);

/// Judges the runner's answer. Only exactly "Pass" passes and only exactly "Fail" fails.
EOutcome JudgeAnswer(const std::string& answer);

/// The exit status of a run. No outcomes at all are an error: nothing was tested.
EExitStatus GetExitStatus(const std::vector<EOutcome>& outcomes);

}  // namespace host
