// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "tests/support/TSubprocess.h"

namespace programs {
namespace {

TProgram MakeShell(const std::string& script) {
  TProgram program;
  program.arguments = {"/bin/sh", "-c", script};
  return program;
}

TEST(SubprocessTest, KeepsTheTwoOutputsAndTheStatusApart) {
  const TFinished finished = RunToEnd(MakeShell("echo out; echo err >&2; exit 3"));
  EXPECT_EQ(finished.status, 3);
  EXPECT_EQ(finished.out, "out\n");
  EXPECT_EQ(finished.err, "err\n");
}

TEST(SubprocessTest, AddsToTheEnvironment) {
  TProgram program = MakeShell("echo $SUBPROCESS_TEST");
  program.environment["SUBPROCESS_TEST"] = "there";
  EXPECT_EQ(RunToEnd(program).out, "there\n");
}

TEST(SubprocessTest, GivesATerminalWhenAskedTo) {
  TProgram program = MakeShell("test -t 1 && echo terminal || echo pipe");
  EXPECT_EQ(RunToEnd(program).out, "pipe\n");
  program.hasTerminal = true;
  EXPECT_EQ(RunToEnd(program).out, "terminal\r\n");
}

TEST(SubprocessTest, ClosesTheReadersSideWhenAskedTo) {
  TProgram program = MakeShell("trap '' PIPE; echo x 2>/dev/null || exit 9");
  program.isOutputClosed = true;
  EXPECT_EQ(RunToEnd(program).status, 9);
}

TEST(SubprocessTest, WaitsForOutputAndDeliversSignals) {
  TSubprocess process(MakeShell("echo ready; exec sleep 30"));
  ASSERT_TRUE(process.WaitForOutput("ready"));
  process.Signal(SIGTERM);
  EXPECT_EQ(process.Wait(), 128 + SIGTERM);
  EXPECT_FALSE(process.WaitForOutput("never"));
}

TEST(SubprocessTest, FailsVisiblyWhenTheProgramIsMissing) {
  TProgram program;
  program.arguments = {"/no/such/program"};
  EXPECT_EQ(RunToEnd(program).status, 127);
}

TEST(SubprocessTest, FindsWhatAProcessHasStartedUntilItIsGone) {
  TSubprocess process(MakeShell("sh -c 'echo ready; kill -STOP $$'; true"));
  ASSERT_TRUE(process.WaitForOutput("ready"));
  const std::vector<pid_t> started = FindDescendants(process.GetPid());
  ASSERT_EQ(started.size(), 1U);
  EXPECT_TRUE(IsRunning(started[0]));
  ::kill(started[0], SIGKILL);
  process.Wait();
  EXPECT_FALSE(IsRunning(started[0]));
}

TEST(SubprocessTest, KeepsTheInputOpenUntilItIsClosed) {
  TProgram program = MakeShell("echo ready; cat; echo end");
  program.hasInput = true;
  TSubprocess process(program);
  ASSERT_TRUE(process.WaitForOutput("ready"));
  process.CloseInput();
  EXPECT_EQ(process.Wait(), 0);
  EXPECT_EQ(process.GetOut(), "ready\nend\n");
}

}  // namespace
}  // namespace programs
