// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "host/TCallWatch.h"

namespace host {
namespace {

using NZEPQEL20::TProviderCallUnderWay;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const TProviderCallUnderWay kEnumeration{7, "Acme", "/libacme.so", "enumerateInstances"};
const TProviderCallUnderWay kCleanup{8, "Acme", "/libacme.so", "cleanup"};
constexpr char kEnumerationLine[] =
    "waiting for provider Acme of /libacme.so (enumerateInstances) since 10 s; Ctrl-C leaves";
constexpr char kCleanupLine[] =
    "waiting for provider Acme of /libacme.so (cleanup) since 10 s; Ctrl-C leaves";
constexpr char kLeftLine[] =
    "provider Acme of /libacme.so has not come back from cleanup within 30 s after the end of the "
    "command; it is left; see rule R9";

class CallWatchTest : public ::testing::Test {
 protected:
  // `seconds` looks at `calls`, one second apart.
  void Look(unsigned int seconds, std::vector<TProviderCallUnderWay> calls) {
    m_calls = std::move(calls);
    for (unsigned int i = 0; i < seconds; ++i) EXPECT_TRUE(m_watch.Look());
  }

  std::vector<TProviderCallUnderWay> m_calls;
  std::vector<std::string> m_lines;
  std::vector<EExitStatus> m_left;
  TCallWatch m_watch{{[this] { return m_calls; }, [] {},
                      [this](const std::string& line) { m_lines.push_back(line); },
                      [this](EExitStatus status) { m_left.push_back(status); }}};
};

TEST_F(CallWatchTest, ACallIsToldOnceWhenItHasTakenTenSeconds) {
  Look(10, {kEnumeration});
  EXPECT_THAT(m_lines, IsEmpty());
  Look(1, {kEnumeration});
  EXPECT_THAT(m_lines, ElementsAre(kEnumerationLine));
  Look(100, {kEnumeration});
  EXPECT_EQ(m_lines.size(), 1U);
  EXPECT_THAT(m_left, IsEmpty());
}

TEST_F(CallWatchTest, ManyShortCallsAreNone) {
  TProviderCallUnderWay call = kEnumeration;
  for (; call.number < 40; ++call.number) Look(5, {call});
  EXPECT_THAT(m_lines, IsEmpty());
}

TEST_F(CallWatchTest, ALibraryThatIsBeingLoadedIsTold) {
  Look(11, {{1, "", "/libacme.so", "dlopen"}});
  EXPECT_THAT(m_lines, ElementsAre("waiting for library /libacme.so (dlopen) since 10 s; Ctrl-C "
                                   "leaves"));
}

TEST_F(CallWatchTest, TestsTakeTheirTime) {
  m_watch.BeginTests();
  Look(1000, {kEnumeration});
  EXPECT_THAT(m_lines, IsEmpty());
  EXPECT_THAT(m_left, IsEmpty());
}

TEST_F(CallWatchTest, AtTheEndACallIsLeftAfterThirtySeconds) {
  m_watch.BeginTests();
  Look(100, {kEnumeration});
  m_watch.BeginEnd(EExitStatus::kTestFailed);
  Look(29, {kCleanup});
  EXPECT_THAT(m_lines, ElementsAre(kCleanupLine));
  EXPECT_THAT(m_left, IsEmpty());
  Look(1, {kCleanup});
  EXPECT_THAT(m_lines, ElementsAre(kCleanupLine, kLeftLine));
  EXPECT_THAT(m_left, ElementsAre(EExitStatus::kTestFailed));
}

TEST_F(CallWatchTest, TheReasonForWhichTheCommandFailedIsSaidBeforeItIsLeft) {
  m_watch.BeginEnd(EExitStatus::kNotFinished, "no disk");
  Look(30, {kCleanup});
  EXPECT_THAT(m_lines, ElementsAre(kCleanupLine, "no disk", kLeftLine));
  EXPECT_THAT(m_left, ElementsAre(EExitStatus::kNotFinished));
}

TEST_F(CallWatchTest, AnEndWithoutCallsIsWaitedFor) {
  m_watch.BeginEnd(EExitStatus::kAllPassed);
  Look(100, {});
  EXPECT_THAT(m_lines, IsEmpty());
  EXPECT_THAT(m_left, IsEmpty());
}

TEST_F(CallWatchTest, LooksNoMoreOnceItIsStopped) {
  m_watch.Stop();
  m_calls = {kEnumeration};
  EXPECT_FALSE(m_watch.Look());
}

// The signal comes while every thread blocks it.
TEST(CallWatchThreadTest, ASignalEndsAProcessThatWaitsForTheLastCall) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto wait = [] {
    sigset_t set;
    ::sigemptyset(&set);
    ::sigaddset(&set, SIGINT);
    ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
    const TCallWatchThread watch({[] { return std::vector<TProviderCallUnderWay>{kCleanup}; },
                                  [] { ::usleep(100); },
                                  [](const std::string& line) {
                                    std::cerr << line << "\n";
                                    ::kill(::getpid(), SIGINT);
                                  },
                                  [](EExitStatus) { ::_exit(99); }});
    watch.Get().BeginEnd(EExitStatus::kAllPassed);
    for (;;) ::pause();
  };
  EXPECT_EXIT(wait(), ::testing::KilledBySignal(SIGINT), "^waiting for provider Acme [^\n]*\n$");
}

}  // namespace
}  // namespace host
