// SPDX-License-Identifier: Apache-2.0
#include "host/ExitStatus.h"

#include <algorithm>

namespace host {

const std::vector<TExitStatusText>& GetExitStatusTexts() {
  static const std::vector<TExitStatusText> texts = {
      {EExitStatus::kAllPassed, "every test passed, or the command did what was asked"},
      {EExitStatus::kTestFailed, "a test failed"},
      {EExitStatus::kNotFinished,
       "a test could not run or did not finish, nothing was found, a provider was found faulty, or "
       "the command itself failed"},
      {EExitStatus::kWrongUsage, "wrong usage; nothing was run"},
  };
  return texts;
}

const char* GetOutcomeText(EOutcome outcome) {
  switch (outcome) {
    case EOutcome::kPassed:
      return "passed";
    case EOutcome::kFailed:
      return "failed";
    case EOutcome::kError:
      return "error";
    case EOutcome::kNotRun:
      return "not run";
  }
  return "error";
}

EOutcome JudgeAnswer(const std::string& answer) {
  if (answer == "Pass") return EOutcome::kPassed;
  if (answer == "Fail") return EOutcome::kFailed;
  return EOutcome::kError;
}

EExitStatus GetExitStatus(const std::vector<EOutcome>& outcomes) {
  const auto isError = [](EOutcome outcome) {
    return outcome != EOutcome::kPassed && outcome != EOutcome::kFailed;
  };
  if (outcomes.empty() || std::any_of(outcomes.begin(), outcomes.end(), isError)) {
    return EExitStatus::kNotFinished;
  }
  const bool hasFailure =
      std::find(outcomes.begin(), outcomes.end(), EOutcome::kFailed) != outcomes.end();
  return hasFailure ? EExitStatus::kTestFailed : EExitStatus::kAllPassed;
}

}  // namespace host
