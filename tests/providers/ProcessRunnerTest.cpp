// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <cerrno>
#include <filesystem>
#include <thread>

#include "providers/hardware/THostFiles.h"
#include "providers/hardware/TProcessRunner.h"
#include "providers/hardware/TToolFinder.h"
#include "tests/providers/TFakeMachine.h"

namespace hardware {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::HasSubstr;
using ::testing::StartsWith;

std::size_t CountOpenFiles() {
  const std::filesystem::directory_iterator files("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

bool HasChildren() {
  return ::waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD;
}

// A killed process takes a moment to go; one that is a zombie, waiting for init, has ended as well.
bool HasEnded(const std::string& pid) {
  for (int i = 0; i < 100; ++i) {
    const std::string stat = THostFiles("").ReadText("/proc/" + pid + "/stat").value_or("");
    if (stat.empty() || stat.find(") Z") != std::string::npos) return true;
    std::this_thread::sleep_for(milliseconds(10));
  }
  return false;
}

class ProcessRunnerTest : public ::testing::Test {
 protected:
  ~ProcessRunnerTest() override {
    EXPECT_FALSE(HasChildren()) << "a child was left";
    EXPECT_EQ(CountOpenFiles(), m_openFiles) << "a file was left open";
  }

  TProcessOutcome RunShell(const std::string& script, milliseconds deadline = seconds(10)) {
    return m_runner.Run({"/bin/sh", "-c", script}, deadline, m_stop, m_watcher);
  }

  TStopSignal m_stop;
  TProcessRunner m_runner{milliseconds(200)};
  TProcessRunner::TWatcher m_watcher;
  std::size_t m_openFiles = CountOpenFiles();
};

TEST_F(ProcessRunnerTest, KeepsTheTwoOutputsAndTheStatusApart) {
  const TProcessOutcome outcome = RunShell("echo out; echo err >&2; exit 7");
  EXPECT_EQ(outcome.end, EProcessEnd::kExited);
  EXPECT_EQ(outcome.exitStatus, 7);
  EXPECT_EQ(outcome.output, "out\n");
  EXPECT_EQ(outcome.errors, "err\n");
  EXPECT_EQ(outcome.arguments.front(), "/bin/sh");
}

TEST_F(ProcessRunnerTest, GivesAPlainSurrounding) {
  ::setenv("LANG", "de_DE.UTF-8", 1);
  ::setenv("MEMTESTER_TEST_MASK", "0x1", 1);
  const TProcessOutcome outcome = RunShell(
      "echo \"$LC_ALL,$LANG,$MEMTESTER_TEST_MASK\"; pwd; readlink /proc/self/fd/0; "
      "[ $(cut -d' ' -f5 /proc/$$/stat) = $$ ] && echo own group");
  ::unsetenv("LANG");
  ::unsetenv("MEMTESTER_TEST_MASK");
  EXPECT_EQ(outcome.output, "C,,\n/tmp\n/dev/null\nown group\n");
}

TEST_F(ProcessRunnerTest, HandsNoOpenFileOn) {
  const int leak = ::dup(2);  // Inheritable, as hosts leave theirs.
  const TProcessOutcome outcome = RunShell("ls /proc/self/fd | tr '\\n' ' '");
  ::close(leak);
  EXPECT_EQ(outcome.output, "0 1 2 3 ");  // 3 is the folder that ls itself reads.
}

TEST_F(ProcessRunnerTest, RestoresSignalsThatTheHostIgnoresOrBlocks) {
  ::signal(SIGPIPE, SIG_IGN);
  sigset_t blocked;
  sigset_t before;
  ::sigemptyset(&blocked);
  ::sigaddset(&blocked, SIGTERM);
  ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
  const TProcessOutcome outcome = RunShell("grep -E 'SigBlk|SigIgn' /proc/self/status");
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  ::signal(SIGPIPE, SIG_DFL);
  EXPECT_EQ(outcome.output, "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
}

TEST_F(ProcessRunnerTest, TellsThatAProgramIsMissing) {
  const TProcessOutcome outcome = m_runner.Run({"/nowhere/tool"}, seconds(1), m_stop);
  EXPECT_EQ(outcome.end, EProcessEnd::kNotStarted);
  EXPECT_EQ(outcome.startError, "/nowhere/tool: No such file or directory");
}

TEST_F(ProcessRunnerTest, TellsThatAFileIsNoProgram) {
  const TFakeMachine machine;
  machine.AddTool("tool", "");
  machine.Write("/tools/tool",
                "\x7F"
                "ELF broken");
  const TProcessOutcome outcome =
      m_runner.Run({machine.GetToolFolder() + "/tool"}, seconds(1), m_stop);
  EXPECT_EQ(outcome.end, EProcessEnd::kNotStarted);
  EXPECT_THAT(outcome.startError, HasSubstr("Exec format error"));
}

TEST_F(ProcessRunnerTest, TellsWhichSignalEndedAProgram) {
  const TProcessOutcome outcome = RunShell("kill -BUS $$");
  EXPECT_EQ(outcome.end, EProcessEnd::kSignalled);
  EXPECT_EQ(outcome.signal, SIGBUS);
}

TEST_F(ProcessRunnerTest, EndsAProgramAtItsDeadline) {
  const TProcessOutcome outcome = RunShell("echo begun; exec sleep 30", milliseconds(1000));
  EXPECT_EQ(outcome.end, EProcessEnd::kDeadline);
  EXPECT_EQ(outcome.signal, SIGTERM);
  EXPECT_EQ(outcome.output, "begun\n");
  EXPECT_LT(outcome.duration, seconds(5));
}

TEST_F(ProcessRunnerTest, EndsGrandchildrenThatIgnoreTheRequest) {
  const TProcessOutcome outcome = RunShell(
      "trap '' TERM; (trap '' TERM; sleep 30) & echo $!; wait; sleep 30", milliseconds(1000));
  EXPECT_EQ(outcome.end, EProcessEnd::kDeadline);
  EXPECT_EQ(outcome.signal, SIGKILL);
  ASSERT_FALSE(outcome.output.empty());
  EXPECT_TRUE(HasEnded(outcome.output.substr(0, outcome.output.find('\n'))));
}

TEST_F(ProcessRunnerTest, EndsWhatAProgramLeavesBehindInItsGroup) {
  const TProcessOutcome outcome = RunShell("sleep 30 & echo $!");
  EXPECT_EQ(outcome.end, EProcessEnd::kExited);
  EXPECT_LT(outcome.duration, seconds(5));
  EXPECT_TRUE(HasEnded(outcome.output.substr(0, outcome.output.find('\n'))));
}

TEST_F(ProcessRunnerTest, BoundsAFloodOfOutput) {
  const TProcessOutcome outcome =
      RunShell("echo first; head -c 3000000 /dev/zero | tr '\\0' x; echo; echo last");
  EXPECT_EQ(outcome.end, EProcessEnd::kExited);
  EXPECT_LT(outcome.output.size(), 600000U);
  EXPECT_THAT(outcome.output, StartsWith("first\n"));
  EXPECT_THAT(outcome.output, ::testing::EndsWith("\nlast\n"));
}

TEST_F(ProcessRunnerTest, AFloodDoesNotOutrunTheDeadline) {
  const TProcessOutcome outcome = RunShell("exec yes", milliseconds(200));
  EXPECT_EQ(outcome.end, EProcessEnd::kDeadline);
  EXPECT_LT(outcome.duration, seconds(5));
}

struct TStopRow {
  EStop stop;
  EProcessEnd end;
  int signal;
};
class ProcessStopTest : public ProcessRunnerTest, public ::testing::WithParamInterface<TStopRow> {};

TEST_P(ProcessStopTest, EndsTheProgramFromAnotherThread) {
  m_watcher = [this](const std::string& output, milliseconds) {
    if (!output.empty()) m_stop.Request(GetParam().stop);
  };
  const TProcessOutcome outcome = RunShell("echo begun; exec sleep 30");
  EXPECT_EQ(outcome.end, GetParam().end);
  EXPECT_EQ(outcome.signal, GetParam().signal);
}
INSTANTIATE_TEST_SUITE_P(All, ProcessStopTest,
                         ::testing::Values(TStopRow{EStop::kTerminate, EProcessEnd::kTerminated,
                                                    SIGTERM},
                                           TStopRow{EStop::kKill, EProcessEnd::kKilled, SIGKILL}));

TEST_F(ProcessRunnerTest, AKillOutranksATerminationUnderWay) {
  TProcessRunner patient(seconds(30));
  m_watcher = [this](const std::string&, milliseconds elapsed) {
    m_stop.Request(elapsed < milliseconds(400) ? EStop::kTerminate : EStop::kKill);
  };
  const TProcessOutcome outcome = patient.Run({"/bin/sh", "-c", "trap '' TERM; sleep 30; sleep 30"},
                                              seconds(30), m_stop, m_watcher);
  EXPECT_EQ(outcome.end, EProcessEnd::kKilled);
  EXPECT_LT(outcome.duration, seconds(10));
}

TEST_F(ProcessRunnerTest, AStopBeforeTheStartEndsTheProgramAtOnce) {
  m_stop.Request(EStop::kKill);
  EXPECT_EQ(RunShell("sleep 30").end, EProcessEnd::kKilled);
}

TEST_F(ProcessRunnerTest, SurvivesAHostThatIgnoresItsChildrenAndSaysSo) {
  for (const int flags : {0, SA_NOCLDWAIT}) {
    struct sigaction ignoring {};
    ignoring.sa_handler = flags == 0 ? SIG_IGN : SIG_DFL;
    ignoring.sa_flags = flags;
    ::sigaction(SIGCHLD, &ignoring, nullptr);
    const TProcessOutcome outcome = RunShell("echo out");
    ::signal(SIGCHLD, SIG_DFL);
    EXPECT_EQ(outcome.end, EProcessEnd::kLost);
    EXPECT_TRUE(outcome.isIgnored);
    EXPECT_EQ(outcome.output, "out\n");
  }
}

TEST_F(ProcessRunnerTest, AProgramThatEndsAsItShouldIsNotIgnored) {
  EXPECT_FALSE(RunShell("true").isIgnored);
}

TEST(StopSignalTest, KeepsTheStrongestRequest) {
  TStopSignal stop;
  EXPECT_FALSE(stop.WaitFor(milliseconds(1)));
  stop.Request(EStop::kKill);
  stop.Request(EStop::kTerminate);
  EXPECT_EQ(stop.Get(), EStop::kKill);
  EXPECT_TRUE(stop.WaitFor(seconds(30)));
}

TEST(ToolFinderTest, LooksInTheFoldersOfTheAdministratorToo) {
  EXPECT_EQ(TToolFinder("").Find("init").substr(0, 1), "/");
  EXPECT_EQ(TToolFinder("").Find("no-such-program"), "");
}

TEST(ToolFinderTest, PassesOverWhatCannotBeExecuted) {
  const TFakeMachine machine;
  machine.Write("/tools/plain", "text");
  machine.Write("/tools/folder/file", "");
  const TToolFinder finder(machine.GetToolFolder());
  EXPECT_EQ(finder.Find("plain"), "");
  EXPECT_EQ(finder.Find("folder"), "");
}

TEST(ToolFinderTest, NeverLooksInTheWorkingDirectory) {
  const TFakeMachine machine;
  machine.AddTool("here", "");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(machine.GetToolFolder());
  EXPECT_EQ(TToolFinder(".:").Find("here"), "");
  std::filesystem::current_path(before);
}

}  // namespace
}  // namespace hardware
