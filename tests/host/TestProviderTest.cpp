// SPDX-License-Identifier: Apache-2.0
//
// The real command over a provider whose tests end in every way.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/host/THostFixture.h"
#include "tests/host/TestEndings.h"

namespace host {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

class TestProviderTest : public THostFixture {
 protected:
  TProgram MakeRun(const std::vector<std::string>& arguments) const {
    TProgram program = MakeCommand(arguments);
    program.environment["DIAGSRUNNER_ROOT"] = DIAGSTEST_ROOT;
    return program;
  }
};

class TestEndingTest : public TestProviderTest, public ::testing::WithParamInterface<TEndingRow> {};

TEST_P(TestEndingTest, HasItsWordItsOutcomeAndItsStatus) {
  const TFinished finished =
      RunToEnd(MakeRun({"run", "--json", std::string(GetParam().service) + kEndingDevice}));
  EXPECT_EQ(finished.status, GetParam().status) << finished.err;
  const json document = json::parse(finished.out);
  EXPECT_EQ(document["status"], GetParam().status);
  ASSERT_EQ(document["tests"].size(), 1U);
  EXPECT_EQ(document["tests"][0]["answer"], GetParam().answer);
  EXPECT_EQ(document["tests"][0]["outcome"], GetParam().outcome);
}
INSTANTIATE_TEST_SUITE_P(All, TestEndingTest, EveryEnding(),
                         [](const auto& row) { return row.param.service; });

TEST_F(TestProviderTest, ListsEveryTestOfTheProviderOnce) {
  const TFinished finished = RunToEnd(MakeRun({"list", "--json"}));
  EXPECT_EQ(finished.status, 0) << finished.err;
  const json document = json::parse(finished.out);
  EXPECT_EQ(document["tests"].size(), 11U);
  EXPECT_EQ(document["problems"], json::array());
  EXPECT_EQ(document["unoffered"], json::array());
}

TEST_F(TestProviderTest, AnErrorOutranksAFailureInOneRun) {
  const auto getStatus = [this](const std::vector<std::string>& services) {
    std::vector<std::string> arguments = {"run"};
    for (const std::string& service : services) arguments.push_back(service + kEndingDevice);
    return RunToEnd(MakeRun(arguments)).status;
  };
  EXPECT_EQ(getStatus({"TestPass", "TestService"}), 0);
  EXPECT_EQ(getStatus({"TestPass", "TestFail", "TestPass"}), 1);
  EXPECT_EQ(getStatus({"TestAborted", "TestFail"}), 2);
  EXPECT_EQ(getStatus({"TestFail", "TestNone"}), 2);
}

TEST_F(TestProviderTest, ProgressGrowsOnATerminal) {
  TProgram program = MakeRun({"run", std::string("TestPolls") + kEndingDevice});
  program.hasTerminal = true;
  const TFinished finished = RunToEnd(program);
  EXPECT_EQ(finished.status, 0);
  const std::size_t first = finished.out.find("Percent Complete: ");
  ASSERT_NE(first, std::string::npos) << finished.out;
  EXPECT_NE(finished.out.find("Percent Complete : 100%", first), std::string::npos);
}

TEST_F(TestProviderTest, NoByteOfAProviderReachesATerminalUnseen) {
  const TFinished finished = RunToEnd(MakeRun({"run", std::string("TestBadText") + kEndingDevice}));
  for (const char byte : finished.out) {
    const auto code = static_cast<unsigned char>(byte);
    EXPECT_TRUE(code >= 0x20 || byte == '\n' || byte == '\t') << int(code);
  }
}

TEST_F(TestProviderTest, AnInterruptEndsATestThatWouldNeverEnd) {
  TSubprocess command(MakeRun({"run", std::string("TestHang") + kEndingDevice,
                               std::string("TestPass") + kEndingDevice, "--progress", "always"}));
  ASSERT_TRUE(command.WaitForOutput("Percent Complete: "));
  command.Signal(SIGINT);
  EXPECT_EQ(command.Wait(), 2);
  EXPECT_THAT(command.GetOut(), HasSubstr("      Aborted ("));
  EXPECT_THAT(command.GetOut(), HasSubstr("1 not started (interrupted)"));
  EXPECT_THAT(command.GetOut(), Not(HasSubstr("[2/2]")));
}

class TestMannerTest : public TestProviderTest,
                       public ::testing::WithParamInterface<const char*> {};

TEST_P(TestMannerTest, IsRunLikeAnyOther) {
  TProgram program = MakeRun({"run", "--json", std::string("TestPolls") + kEndingDevice});
  program.environment["DIAGSTEST_MANNER"] = GetParam();
  const TFinished finished = RunToEnd(program);
  EXPECT_EQ(finished.status, 0) << finished.err;
  EXPECT_EQ(finished.err, "");
  EXPECT_EQ(json::parse(finished.out)["tests"][0]["answer"], "Pass");
}
INSTANTIATE_TEST_SUITE_P(All, TestMannerTest,
                         ::testing::Values("newer", "text", "instance", "null"),
                         [](const auto& row) { return std::string(row.param); });

TEST_F(TestProviderTest, TheReasonWhyNoTestStartsIsShown) {
  TProgram program = MakeRun({"run", std::string("TestPass") + kEndingDevice});
  program.environment["DIAGSTEST_MANNER"] = "busy";
  const TFinished finished = RunToEnd(program);
  EXPECT_EQ(finished.status, 2);
  EXPECT_THAT(finished.out, HasSubstr("      No Status ("));
  EXPECT_THAT(finished.err,
              HasSubstr("RunDiagnosticService of TST_DiagnosticTest answers 6 (Busy)"));
  EXPECT_THAT(finished.err, Not(HasSubstr("RunDiagnostic of TST_DiagnosticTest answers")));
}

TEST_F(TestProviderTest, ATestThatFindsItsOtherMethodSaysNothing) {
  const TFinished finished = RunToEnd(MakeRun({"run", std::string("TestService") + kEndingDevice}));
  EXPECT_EQ(finished.status, 0);
  EXPECT_EQ(finished.err, "");
}

class InterruptedMannerTest : public TestMannerTest {};

TEST_P(InterruptedMannerTest, EndsItsTestAtOnce) {
  TProgram program =
      MakeRun({"run", std::string("TestHang") + kEndingDevice, "--progress", "always"});
  program.environment["DIAGSTEST_MANNER"] = GetParam();
  TSubprocess command(program);
  ASSERT_TRUE(command.WaitForOutput("Percent Complete: "));
  command.Signal(SIGINT);
  EXPECT_EQ(command.Wait(), 2);
  EXPECT_THAT(command.GetOut(), HasSubstr("      Aborted ("));
}
INSTANTIATE_TEST_SUITE_P(All, InterruptedMannerTest,
                         ::testing::Values("frozen", "text", "instance"),
                         [](const auto& row) { return std::string(row.param); });

TEST_F(TestProviderTest, AMissingLibraryIsNamedAndNothingIsFound) {
  const std::filesystem::path root = GetFolder() + "/root";
  std::filesystem::copy(DIAGSTEST_ROOT, root, std::filesystem::copy_options::recursive);
  std::filesystem::remove(root / "providers/diagstest/libdiagstest.so");
  TProgram program = MakeRun({"list"});
  program.environment["DIAGSRUNNER_ROOT"] = root.string();
  const TFinished finished = RunToEnd(program);
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.out, "No tests found.\n");
  EXPECT_THAT(finished.err, HasSubstr("libdiagstest.so"));
}

TEST_F(TestProviderTest, ABrokenDataFileStopsNothing) {
  const std::filesystem::path root = GetFolder() + "/root";
  std::filesystem::copy(DIAGSTEST_ROOT, root, std::filesystem::copy_options::recursive);
  for (const char* name : {"excludetests.xml", "excludetestmatrix.xml"}) {
    Write(std::string("root/qdx/data/") + name, "<cut");
  }
  TProgram program = MakeRun({"run", std::string("TestPass") + kEndingDevice});
  program.environment["DIAGSRUNNER_ROOT"] = root.string();
  EXPECT_EQ(RunToEnd(program).status, 0);
}

}  // namespace
}  // namespace host
