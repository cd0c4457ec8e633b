// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "platform/setup/ChildRun.h"

namespace NZEPQEL20::setup {
namespace {

using std::chrono::milliseconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr milliseconds kLong(20'000);

TEST(ChildRunTest, HandsTheRecordsOverInTheirOrder) {
  const TChildOutcome outcome = RunInChild(
      [](const TTell& tell) {
        tell("one");
        tell("");
        tell(std::string(100'000, 'x'));
      },
      kLong);
  EXPECT_THAT(outcome.records, ElementsAre("one", "", std::string(100'000, 'x')));
  EXPECT_EQ(outcome.ending, "");
}

// Many short steps, so that a slow machine comes through each of them in time.
constexpr std::size_t kSteps = 30;
constexpr milliseconds kStepLimit(500);
constexpr useconds_t kStepTime = 20'000;  ///< All together are longer than the limit.

TEST(ChildRunTest, EachStepHasTheLimitAndNoMoreStepsThanAnnouncedHave) {
  const auto work = [](const TTell& tell) {
    for (std::size_t step = 0; step < kSteps; ++step) {
      tell(std::string(1, kStepMark) + "step");
      ::usleep(kStepTime);
    }
  };
  EXPECT_EQ(RunInChild(work, kStepLimit, kSteps + 1).ending, "");
  EXPECT_EQ(RunInChild(work, kStepLimit, 1).ending, "did not come back within 500 milliseconds");
}

TEST(ChildRunTest, WhatAStepTellsTakesNoTimeFromTheOthers) {
  const auto work = [](const TTell& tell) {
    // With a step for each record none would be left for these.
    for (std::size_t step = 0; step < kSteps; ++step) {
      tell(std::string(1, kStepMark) + "step");
      for (std::size_t finding = 0; finding < kSteps; ++finding) tell("finding");
      ::usleep(kStepTime);
    }
  };
  const TChildOutcome outcome = RunInChild(work, kStepLimit, kSteps + 1);
  EXPECT_EQ(outcome.ending, "");
  EXPECT_EQ(outcome.records.size(), kSteps * (kSteps + 1));
}

struct TEnding {
  const char* name;
  void (*work)(const TTell&);
  milliseconds limit;
  const char* ending;
  bool isLate;
};
void PrintTo(const TEnding& row, std::ostream* out) {
  *out << row.name;
}

class ChildEndingTest : public testing::TestWithParam<TEnding> {};

TEST_P(ChildEndingTest, IsSaidAndWhatWasToldBeforeIsKept) {
  const TChildOutcome outcome = RunInChild(
      [](const TTell& tell) {
        tell("before");
        GetParam().work(tell);
      },
      GetParam().limit);
  EXPECT_THAT(outcome.records, ElementsAre("before"));
  EXPECT_EQ(outcome.ending, GetParam().ending);
  EXPECT_EQ(outcome.isLate, GetParam().isLate);
}

INSTANTIATE_TEST_SUITE_P(
    Endings, ChildEndingTest,
    testing::Values(TEnding{"Signal", [](const TTell&) { ::raise(SIGSEGV); }, kLong,
                            "ended by signal 11 (Segmentation fault)", false},
                    TEnding{"Exit", [](const TTell&) { ::_exit(7); }, kLong,
                            "ended the process with exit status 7", false},
                    TEnding{"ExitOk", [](const TTell&) { ::_exit(0); }, kLong,
                            "ended the process with exit status 0", false},
                    TEnding{"Throw", [](const TTell&) { throw std::runtime_error("x"); }, kLong,
                            "ended the process with exit status 1", false},
                    TEnding{"Hang",
                            [](const TTell&) {
                              for (;;) ::pause();
                            },
                            milliseconds(900), "did not come back within 900 milliseconds", true}),
    [](const auto& row) { return row.param.name; });

TEST(ChildRunTest, AChildReadsNothingAndWritesNowhere) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const TChildOutcome outcome = RunInChild(
      [](const TTell& tell) {
        char byte = 0;
        tell(::read(0, &byte, 1) == 0 ? "nothing to read" : "something to read");
        tell(::write(1, "out", 3) == 3 && ::write(2, "err", 3) == 3 ? "written" : "not written");
      },
      kLong);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_THAT(outcome.records, ElementsAre("nothing to read", "written"));
}

TEST(ChildRunTest, WhatTheChildStartedEndsWithIt) {
  const TChildOutcome outcome = RunInChild(
      [](const TTell& tell) {
        const pid_t grandchild = ::fork();
        if (grandchild == 0) {
          for (;;) ::pause();
        }
        tell(std::to_string(grandchild));
      },
      kLong);
  ASSERT_EQ(outcome.records.size(), 1U);
  const pid_t grandchild = std::atoi(outcome.records[0].c_str());
  // Its new parent buries it when it comes round to it; a dead process may be seen until then.
  std::string state = "R";
  for (int i = 0; i < 500 && ::kill(grandchild, 0) == 0 && state != "Z"; ++i) {
    std::string path = "/proc/" + outcome.records[0] + "/stat";
    if (FILE* file = std::fopen(path.c_str(), "r")) {
      char text[256] = {};
      const std::size_t count = std::fread(text, 1, sizeof text - 1, file);
      std::fclose(file);
      const std::string stat(text, count);
      const std::size_t place = stat.rfind(") ");
      if (place != std::string::npos) state = stat.substr(place + 2, 1);
    }
    ::usleep(1000);
  }
  EXPECT_TRUE(::kill(grandchild, 0) != 0 || state == "Z") << state;
}

TEST(ChildRunTest, AChildThatWritesWithoutEndIsBounded) {
  const TChildOutcome outcome = RunInChild(
      [](const TTell& tell) {
        for (;;) tell(std::string(65'536, 'x'));
      },
      milliseconds(900));
  EXPECT_THAT(outcome.records.size(), testing::Le(17U));
  EXPECT_EQ(outcome.ending, "did not come back within 900 milliseconds");
}

}  // namespace
}  // namespace NZEPQEL20::setup
