// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <ostream>

#include "host/ExitStatus.h"

namespace host {
namespace {

constexpr EOutcome kPassed = EOutcome::kPassed;
constexpr EOutcome kFailed = EOutcome::kFailed;
constexpr EOutcome kError = EOutcome::kError;
constexpr EOutcome kNotRun = EOutcome::kNotRun;

struct TOutcomes {
  const char* name;
  std::vector<EOutcome> outcomes;
  int status;
};
void PrintTo(const TOutcomes& row, std::ostream* out) {
  *out << row.name;
}

class ExitStatusTest : public ::testing::TestWithParam<TOutcomes> {};

TEST_P(ExitStatusTest, LetsAnErrorOutrankAFailure) {
  EXPECT_EQ(static_cast<int>(GetExitStatus(GetParam().outcomes)), GetParam().status);
}
INSTANTIATE_TEST_SUITE_P(All, ExitStatusTest,
                         ::testing::Values(TOutcomes{"Nothing", {}, 2},
                                           TOutcomes{"Passed", {kPassed}, 0},
                                           TOutcomes{"AllPassed", {kPassed, kPassed}, 0},
                                           TOutcomes{"Failed", {kPassed, kFailed, kPassed}, 1},
                                           TOutcomes{"Error", {kPassed, kError}, 2},
                                           TOutcomes{"NotRun", {kPassed, kNotRun}, 2},
                                           TOutcomes{"FailedThenError", {kFailed, kError}, 2},
                                           TOutcomes{"ErrorThenFailed", {kError, kFailed}, 2}),
                         [](const auto& row) { return row.param.name; });

struct TAnswer {
  const char* name;
  const char* answer;
  EOutcome outcome;
};
void PrintTo(const TAnswer& row, std::ostream* out) {
  *out << row.name;
}

class AnswerTest : public ::testing::TestWithParam<TAnswer> {};

TEST_P(AnswerTest, IsPassedOrFailedOnlyByItsVeryWord) {
  EXPECT_EQ(JudgeAnswer(GetParam().answer), GetParam().outcome);
}
INSTANTIATE_TEST_SUITE_P(
    All, AnswerTest,
    ::testing::Values(
        TAnswer{"Pass", "Pass", kPassed}, TAnswer{"Fail", "Fail", kFailed},
        TAnswer{"Aborted", "Aborted", kError}, TAnswer{"Incomplete", "Incomplete", kError},
        TAnswer{"NoStatus", "No Status\n", kError}, TAnswer{"NoResults", "No Results.\n", kError},
        TAnswer{"NoMatch", "No matching diagnostic test or device found.\n", kError},
        TAnswer{"NoMatchWithBlank", " No matching diagnostic test or device found.\n", kError},
        TAnswer{"Empty", "", kError}, TAnswer{"Bypass", "Bypass", kError},
        TAnswer{"PassWithMore", "Pass\n", kError}, TAnswer{"LowerCase", "pass", kError}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace host
