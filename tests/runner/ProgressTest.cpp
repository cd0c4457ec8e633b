// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "platform/contract/TQELException.h"
#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

using NZEPQEL20::TCIMValue;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

class ProgressTest : public TRunnerTest {
 protected:
  /// Draws the progress of `minutes`, the clock showing `seconds` after the start, one for each
  /// pass; the flag is set in the last pass.
  TLines Draw(unsigned int minutes, std::vector<std::time_t> seconds) {
    DiagsRunner& runner = Start();
    const std::size_t last = seconds.size();
    for (std::time_t& second : seconds) {
      second += kStart;
    }
    seconds.insert(seconds.begin(), kStart);
    m_system.ScriptClock(seconds, {{last, [&runner] { TAccess::SetThreadDone(runner, true); }}});
    TAccess::PrintStatus(runner, minutes);
    return Only({"out", "flush", "sleep"});
  }
  /// The whole output of the same.
  std::string DrawText(unsigned int minutes, const std::vector<std::time_t>& seconds) {
    Draw(minutes, seconds);
    return Output();
  }

  static constexpr std::time_t kStart = 1000000;
};

const char kBlanked[] = "\\b\\b\\b\\b    ";

TEST_F(ProgressTest, OnlyBlanksWhenTheFlagIsAlreadySet) {
  DiagsRunner& runner = Start();
  TAccess::SetThreadDone(runner, true);
  TAccess::PrintStatus(runner, 5);
  EXPECT_THAT(Only({"out", "flush", "sleep"}),
              ElementsAre("out \\b\\b\\b\\b", "flush", "out     ", "flush"));
}

TEST_F(ProgressTest, ACallThatEndsAtOnceStillCountsUpFromNothing) {
  TLines expected;
  for (int percent = 10; percent <= 100; percent += 10) {
    const std::string back = percent == 100 ? "\\b\\b\\b\\b" : "\\b\\b\\b";
    expected.push_back("out " + std::to_string(percent) + "%");
    expected.insert(expected.end(), {"flush", "out " + back, "flush", "sleep 1"});
  }
  expected.insert(expected.end(), {"out \\b\\b\\b\\b", "flush", "out     ", "flush"});
  EXPECT_THAT(Draw(1, {0}), ElementsAreArray(expected));
}

TEST_F(ProgressTest, WritesEachFigureAndTakesTheCursorBack) {
  EXPECT_THAT(
      Draw(10, {6, 12, 60, 594}),
      ElementsAre("out 1%", "flush", "out \\b\\b", "flush", "out 2%", "flush", "out \\b\\b",
                  "flush", "out 10%", "flush", "out \\b\\b\\b", "flush", "out \\b\\b\\b\\b",
                  "flush", "out 99%", "flush", "out \\b\\b\\b\\b", "flush", "out     ", "flush"));
}

TEST_F(ProgressTest, CountsUpFromTheLastFigureInTens) {
  EXPECT_EQ(DrawText(100, {2220}),
            "37%\\b\\b\\b47%\\b\\b\\b57%\\b\\b\\b67%\\b\\b\\b77%\\b\\b\\b"
            "87%\\b\\b\\b97%\\b\\b\\b" +
                std::string(kBlanked));
  EXPECT_EQ(Count("sleep 1"), 6U);
}

TEST_F(ProgressTest, CountsUpOnceFromNinety) {
  EXPECT_EQ(DrawText(1, {54}), "90%\\b\\b\\b100%\\b\\b\\b\\b" + std::string(kBlanked));
  EXPECT_EQ(Count("sleep"), 1U);
}

TEST_F(ProgressTest, StopsCountingUpBelowAHundredThatIsNotAWholeTenAway) {
  EXPECT_EQ(DrawText(5, {285}), "95%\\b\\b\\b" + std::string(kBlanked));
  EXPECT_EQ(Count("sleep"), 0U);
}

TEST_F(ProgressTest, CountsUpFromTheLastPassEvenWhenItWroteNothing) {
  EXPECT_EQ(DrawText(10, {540, 480}),
            "90%\\b\\b\\b90%\\b\\b\\b100%\\b\\b\\b\\b" + std::string(kBlanked));
}

TEST_F(ProgressTest, WritesAFigureOnlyWhenItGrowsFromPassToPass) {
  EXPECT_EQ(DrawText(10, {300, 301, 305, 306, 576}),
            "50%\\b\\b\\b51%\\b\\b\\b96%\\b\\b\\b" + std::string(kBlanked));
}

TEST_F(ProgressTest, ShowsNinetyEightAsAFigureAndNinetyNineOnce) {
  EXPECT_EQ(DrawText(100, {5880, 5939, 5940, 6000, 7000, 90000}),
            "98%\\b\\b\\b\\b\\b\\b\\b99%" + std::string(kBlanked));
  EXPECT_EQ(Count("sleep"), 0U);
}

TEST_F(ProgressTest, ACallThatOutlastsItsAnnouncementShowsNinetyNineOnly) {
  EXPECT_EQ(DrawText(1, {120, 180}), "\\b\\b\\b\\b99%" + std::string(kBlanked));
}

TEST_F(ProgressTest, DrawsNothingBelowOnePercent) {
  EXPECT_THAT(DrawText(10, {0, 1, 5, 570}), ::testing::StartsWith("95%\\b\\b\\b"));
}

TEST_F(ProgressTest, ComputesInSinglePrecision) {
  // 87/300 in double precision times 100 is just below 29.
  EXPECT_THAT(DrawText(5, {87}), ::testing::StartsWith("29%\\b\\b\\b"));
}

TEST_F(ProgressTest, DrawsNothingForADurationOfNoMinutesUntilTheFlagIsSet) {
  EXPECT_THAT(DrawText(0, {0, 0, 0}), ::testing::EndsWith(kBlanked));
  EXPECT_EQ(Output().find("99%"), std::string::npos);
}

TEST_F(ProgressTest, ADurationTooLongForItsSecondsIsNoCrash) {
  EXPECT_THAT(DrawText(0xFFFFFFFFU, {1, 60}), ::testing::EndsWith(kBlanked));
}

TEST_F(ProgressTest, AClockThatIsSetBackDrawsNothing) {
  EXPECT_EQ(DrawText(1, {-3600, 58}), "96%\\b\\b\\b" + std::string(kBlanked));
}

TEST_F(ProgressTest, TheBackgroundCallLeavesItsOutParametersAndSetsTheFlag) {
  const TTest test = m_world.AddTest("A", "d", "e");
  const TObjectPtr job = m_world.AddJob("j", {{0, 4}});
  m_world.LetRun(test, job);
  DiagsRunner& runner = Start();
  TAccess::RunInstance(runner) = m_world.MakeInstance(test.service);
  TAccess::RunArgs(runner) = {{"ManagedElement", TCIMValue("x")}};
  EXPECT_EQ(TAccess::ExecuteInThread(), nullptr);
  EXPECT_TRUE(TAccess::IsThreadDone(runner));
  EXPECT_EQ(Count("invoke root/cimv2:Test_Service.Id=\"1\" RunDiagnostic {ManagedElement=x}"), 1U);
  ASSERT_EQ(TAccess::RunArgs(runner).count("Job"), 1U);
  EXPECT_EQ(TAccess::RunArgs(runner).at("Job").ToString(10), job->GetPath().GetPath());
}

TEST_F(ProgressTest, WhatTheBackgroundCallThrowsLeavesItAndTheFlagStaysClear) {
  const TTest test = m_world.AddTest("A", "d", "e");
  test.service->SetMethod("RunDiagnostic", {});
  DiagsRunner& runner = Start();
  TAccess::RunInstance(runner) = m_world.MakeInstance(test.service);
  m_faults.When("invoke", EFault::kQELException, 1);
  EXPECT_THROW(TAccess::ExecuteInThread(), NZEPQEL20::TQELException);
  m_faults.When("invoke", EFault::kStdException, 1);
  EXPECT_THROW(TAccess::ExecuteInThread(), std::runtime_error);
  EXPECT_FALSE(TAccess::IsThreadDone(runner));
}

TEST_F(ProgressTest, BlanksAreTheLastBytesWithOneFlushEach) {
  const TLines lines = Draw(1, {58});
  ASSERT_GE(lines.size(), 4U);
  EXPECT_EQ(TLines(lines.end() - 4, lines.end()),
            (TLines{"out \\b\\b\\b\\b", "flush", "out     ", "flush"}));
  EXPECT_EQ(Count("sleep"), 0U);
}

}  // namespace
}  // namespace scripted
