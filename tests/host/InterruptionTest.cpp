// SPDX-License-Identifier: Apache-2.0
//
// Ctrl-C and its like: no process of a test outlives the command.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <ostream>
#include <thread>

#include "tests/host/THostFixture.h"

namespace host {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class InterruptionTest : public THostFixture {
 protected:
  // Waits until the tool of the running test has been started, with `count` processes below the
  // command, and answers with those.
  std::vector<pid_t> WaitForProcesses(const TSubprocess& command, std::size_t count) const {
    const auto deadline = std::chrono::steady_clock::now() + TSubprocess::kPatience;
    std::vector<pid_t> found;
    do {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      found = FindDescendants(command.GetPid());
    } while (found.size() < count && std::chrono::steady_clock::now() < deadline);
    return found;
  }

  static std::vector<pid_t> GetRunning(std::vector<pid_t> processes) {
    const auto isGone = [](pid_t pid) { return !IsRunning(pid); };
    processes.erase(std::remove_if(processes.begin(), processes.end(), isGone), processes.end());
    return processes;
  }
};

struct TEnding {
  const char* name;
  int signal;
  const char* test;
};
void PrintTo(const TEnding& row, std::ostream* out) {
  *out << row.name;
}

class EndingSignalTest : public InterruptionTest, public ::testing::WithParamInterface<TEnding> {};

TEST_P(EndingSignalTest, EndsTheRunningTestAndStartsNoOther) {
  AddEndlessStress();
  const std::vector<std::string> ids = FindTests(GetParam().test);
  ASSERT_EQ(ids.size(), 1U);
  TSubprocess command(MakeCommand({"run", ids[0], ids[0]}));
  const std::vector<pid_t> started = WaitForProcesses(command, 2);
  ASSERT_GE(started.size(), 2U);
  command.Signal(GetParam().signal);
  EXPECT_EQ(command.Wait(), 2);
  EXPECT_THAT(command.GetOut(), HasSubstr("      Aborted ("));
  EXPECT_THAT(command.GetOut(), Not(HasSubstr("[2/2]")));
  EXPECT_THAT(command.GetOut(), HasSubstr("1 not started (interrupted)"));
  EXPECT_THAT(command.GetErr(), HasSubstr("interrupted: ending the running test"));
  EXPECT_THAT(GetRunning(started), IsEmpty());
}
INSTANTIATE_TEST_SUITE_P(
    All, EndingSignalTest,
    ::testing::Values(TEnding{"Interrupt", SIGINT, "Processor Short Stress,cpu0,"},
                      TEnding{"Terminate", SIGTERM, "Processor Short Stress,cpu0,"},
                      TEnding{"HangUp", SIGHUP, "Processor Short Stress,cpu0,"},
                      TEnding{"BlockingTest", SIGINT, "Processor Extended Stress,cpu0,"}),
    [](const auto& row) { return row.param.name; });

TEST_F(InterruptionTest, TheRealStressIsEndedWithItsWorkers) {
  Write("hardware.conf", "processor_seconds = 300\n");
  const std::vector<std::string> ids = FindTests("Processor Short Stress,cpu0,");
  if (ids.empty()) GTEST_SKIP() << "stress-ng is not installed";
  TSubprocess command(MakeCommand({"run", ids[0], "--json"}));
  const std::vector<pid_t> started = WaitForProcesses(command, 2);
  ASSERT_GE(started.size(), 2U);
  command.Signal(SIGINT);
  EXPECT_EQ(command.Wait(), 2);
  EXPECT_THAT(GetRunning(started), IsEmpty());
  const auto document = nlohmann::json::parse(command.GetOut());
  EXPECT_EQ(document["interrupted"], true);
  EXPECT_EQ(document["tests"][0]["answer"], "Aborted");
}

TEST_F(InterruptionTest, ASecondSignalEndsTheCommandAndItsTestAtOnce) {
  AddEndlessStress();
  // The real command: its pause between two looks at the job is long enough to be cut short.
  TProgram program = MakeCommand({"run", FindTests("Processor Short Stress,cpu0,").at(0)});
  program.arguments[0] = DIAGSRUN;
  TSubprocess command(program);
  const std::vector<pid_t> started = WaitForProcesses(command, 2);
  ASSERT_GE(started.size(), 2U);
  command.Signal(SIGINT);
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  command.Signal(SIGTERM);
  EXPECT_EQ(command.Wait(), 128 + SIGTERM);
  EXPECT_THAT(GetRunning(started), IsEmpty());
}

TEST_F(InterruptionTest, AnIgnoredSignalStaysIgnored) {
  AddStress(kGoodStress, 0);
  TProgram program = MakeCommand({"run", FindTests("Processor Short Stress,cpu0,").at(0)});
  program.arguments.insert(program.arguments.begin(),
                           {"/bin/sh", "-c", "trap '' HUP; exec \"$@\"", "sh"});
  TSubprocess command(program);
  ASSERT_TRUE(command.WaitForOutput("[1/1]"));
  command.Signal(SIGHUP);
  EXPECT_EQ(command.Wait(), 0);
  EXPECT_THAT(command.GetErr(), IsEmpty());
}

}  // namespace
}  // namespace host
