// SPDX-License-Identifier: Apache-2.0
//
// Tests that announce their duration are called on a thread of the runner's, and what goes wrong
// there has nobody to be told to but the user.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "tests/host/TServerFixture.h"

namespace host {
namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr char kTimed[] = "TestTimed,tst0,Test device";
constexpr char kPlainToo[] = "TestFail,tst0,Test device";
constexpr char kPlain[] = "TestPass,tst0,Test device";

struct TFault {
  const char* name;
  std::vector<std::string> server;
  const char* reason;
};
void PrintTo(const TFault& row, std::ostream* out) {
  *out << row.name;
}

class ServerTimedTest : public TServerFixture, public ::testing::WithParamInterface<TFault> {
 protected:
  ServerTimedTest() { StartServer(GetParam().server, DIAGSTEST_ROOT); }

  // Where a core file would be left, when the system leaves one.
  TFinished RunInFolder(const std::vector<std::string>& arguments) const {
    TProgram program = MakeServerCommand(arguments);
    program.arguments.insert(
        program.arguments.begin(),
        {"/bin/sh", "-c", "cd \"$0\"; ulimit -S -c \"$(ulimit -H -c)\"; \"$@\"", GetFolder()});
    return RunToEnd(program);
  }

  bool HasCoreFile() const {
    for (const auto& entry : std::filesystem::directory_iterator(GetFolder())) {
      if (entry.path().filename().string().rfind("core", 0) == 0) return true;
    }
    return false;
  }
};

TEST_P(ServerTimedTest, AFailedCallIsOneLineAndStatus2) {
  const TFinished finished = RunInFolder({"run", kTimed});
  EXPECT_EQ(finished.status, 2);
  EXPECT_THAT(finished.err, StartsWith("diagsrun: "));
  EXPECT_THAT(finished.err, AllOf(HasSubstr(GetUrl() + ": "), HasSubstr(GetParam().reason)));
  EXPECT_THAT(finished.err, EndsWith("; the test's outcome is not known\n"));
  EXPECT_EQ(finished.err.find('\n'), finished.err.size() - 1) << finished.err;
  EXPECT_THAT(finished.out, AllOf(HasSubstr(GetParam().reason), Not(HasSubstr("Pass"))));
  EXPECT_THAT(finished.out,
              EndsWith("0 passed, 0 failed, 1 could not run or finish, 0 not started\n"));
  EXPECT_FALSE(HasCoreFile());
}

TEST_P(ServerTimedTest, TheDocumentIsWholeWhereTheProgressGoes) {
  const TFinished finished = RunInFolder({"run", "--json", "--progress", "always", kTimed});
  EXPECT_EQ(finished.status, 2);
  const json document = json::parse(finished.out);
  EXPECT_EQ(document["status"], 2);
  EXPECT_EQ(document["tests"][0]["outcome"], "error");
  EXPECT_THAT(document["tests"][0]["answer"], HasSubstr(GetParam().reason));
  // The progress of the main thread may still come behind it.
  EXPECT_THAT(finished.err, HasSubstr("; the test's outcome is not known\n"));
}

TEST_P(ServerTimedTest, ATestWithoutADurationHasTheSameFaultInItsReport) {
  const TFinished finished = RunInFolder({"run", kPlain});
  EXPECT_EQ(finished.status, 2);
  EXPECT_THAT(finished.err, HasSubstr("could not run or did not finish"));
  EXPECT_THAT(finished.out, HasSubstr("0 passed, 0 failed, 1 could not run or finish"));
}

INSTANTIATE_TEST_SUITE_P(
    All, ServerTimedTest,
    ::testing::Values(
        TFault{"ServerIsKilled", {"--die-at-method", "RunDiagnostic"}, "the connection was lost"},
        TFault{"PegasusAnswersWithAnError",
               {"--fail-method", "RunDiagnostic", "--style", "pegasus"},
               "the provider is gone"},
        TFault{"SfcbAnswersWithAnError",
               {"--fail-method", "RunDiagnostic", "--style", "sfcb"},
               "the provider is gone"}),
    [](const auto& row) { return row.param.name; });

class ServerTimedOrderTest : public TServerFixture {};

TEST_F(ServerTimedOrderTest, WhatWasReportedBeforeStaysAndTheRestIsNotStarted) {
  StartServer({}, DIAGSTEST_ROOT);
  const TFinished finished =
      RunOnServer({"run", "--json", kPlain, kTimed, kPlainToo, "--method-timeout", "0.1"});
  EXPECT_EQ(finished.status, 2);
  const json tests = json::parse(finished.out)["tests"];
  ASSERT_EQ(tests.size(), 3U);
  EXPECT_EQ(tests[0]["outcome"], "passed");
  EXPECT_EQ(tests[0]["record"]["completionState"], "OK");
  EXPECT_EQ(tests[1]["outcome"], "error");
  EXPECT_GT(tests[1]["seconds"], 0.05);
  EXPECT_EQ(tests[2]["outcome"], "not run");
}

TEST_F(ServerTimedOrderTest, WhatWasWrittenBeforeStays) {
  StartServer({}, DIAGSTEST_ROOT);
  TSubprocess command(MakeServerCommand({"run", kPlain, kTimed, "--method-timeout", "0.1"}));
  EXPECT_EQ(command.Wait(), 2);
  EXPECT_THAT(command.GetOut(), AllOf(HasSubstr("      Pass ("), HasSubstr("[2/2]")));
  EXPECT_THAT(command.GetErr(), HasSubstr("no complete answer within"));
  EXPECT_THAT(command.GetErr(), EndsWith("; the test's outcome is not known\n"));
}

}  // namespace
}  // namespace host
