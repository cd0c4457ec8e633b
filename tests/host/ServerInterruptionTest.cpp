// SPDX-License-Identifier: Apache-2.0
//
// Tests behind a CIM server that are ended from here, and servers that end first.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>

#include "tests/host/TServerFixture.h"

namespace host {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

class ServerInterruptionTest : public TServerFixture {
 protected:
  ServerInterruptionTest() {
    AddSleepingStress();
    StartServer({});
  }
};

TEST_F(ServerInterruptionTest, CtrlCEndsTheTestOnTheServer) {
  TSubprocess command(MakeServerCommand({"run", FindTests("Processor Short Stress,cpu0,").at(0)}));
  EXPECT_THAT(WaitForSleepers(1), SizeIs(1));
  command.Signal(SIGINT);
  EXPECT_EQ(command.Wait(), 2);
  EXPECT_THAT(command.GetOut(), HasSubstr("      Aborted ("));
  EXPECT_THAT(command.GetErr(), HasSubstr("interrupted: ending the running test"));
  EXPECT_THAT(WaitForSleepers(0), IsEmpty());
}

// Which job it is the server tells at the end of the call only, so there is nothing to end.
TEST_F(ServerInterruptionTest, ASecondSignalLeavesATestThatRunsInsideItsMethodCall) {
  TSubprocess command(
      MakeServerCommand({"run", FindTests("Processor Extended Stress,cpu0,").at(0)}));
  const std::vector<pid_t> processes = WaitForSleepers(1);
  EXPECT_THAT(processes, SizeIs(1));
  command.Signal(SIGINT);
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  command.Signal(SIGINT);
  EXPECT_EQ(command.Wait(), 128 + SIGINT);
  // The server waits for its calls when it ends.
  EXPECT_TRUE(std::all_of(processes.begin(), processes.end(), &IsRunning));
  for (const pid_t process : processes) ::kill(process, SIGKILL);
}

TEST_F(ServerInterruptionTest, CtrlCLeavesTheTestsOfOthersAlone) {
  const std::vector<std::string> other = FindTests("Processor Short Stress,cpu1,");
  if (other.empty()) GTEST_SKIP() << "there is one processor only";
  TSubprocess others(MakeServerCommand({"run", other[0]}));
  const std::vector<pid_t> theirs = WaitForSleepers(1);
  ASSERT_THAT(theirs, SizeIs(1));
  TSubprocess mine(MakeServerCommand({"run", FindTests("Processor Short Stress,cpu0,").at(0)}));
  ASSERT_THAT(WaitForSleepers(2), SizeIs(2));
  mine.Signal(SIGINT);
  EXPECT_EQ(mine.Wait(), 2);
  EXPECT_TRUE(std::all_of(theirs.begin(), theirs.end(), &IsRunning));
  others.Signal(SIGINT);
  EXPECT_EQ(others.Wait(), 2);
}

TEST_F(ServerInterruptionTest, AServerThatEndsInTheMiddleIsAnErrorAndNeverAPass) {
  const std::string id = FindTests("Processor Short Stress,cpu0,").at(0);
  TSubprocess command(MakeServerCommand({"run", id, id}));
  const std::vector<pid_t> processes = WaitForSleepers(1);
  ASSERT_THAT(processes, SizeIs(1));
  KillServer();
  EXPECT_EQ(command.Wait(), 2);
  EXPECT_THAT(command.GetOut(), HasSubstr(": 0 passed, 0 failed, 2 could not run or finish"));
  EXPECT_THAT(command.GetErr(), HasSubstr(": could not run or did not finish: "));
  EXPECT_THAT(command.GetErr(), HasSubstr(GetUrl() + ": "));
  // The test that follows has a reason of its own.
  EXPECT_THAT(command.GetErr(),
              HasSubstr(GetUrl() + ": no connection: Failed to connect to 127.0.0.1"));
  EXPECT_THAT(command.GetErr(), HasSubstr("; the test may still be going on at the server"));
  EXPECT_THAT(command.GetOut() + command.GetErr(), Not(HasSubstr("No matching")));
  for (const pid_t process : processes) ::kill(process, SIGKILL);
}

}  // namespace
}  // namespace host
