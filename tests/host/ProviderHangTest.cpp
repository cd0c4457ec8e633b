// SPDX-License-Identifier: Apache-2.0
//
// The real command over providers' libraries that do not come back, or take its files. Its seconds
// are short here.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/host/TProviderFixture.h"

namespace host {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

class ProviderHangTest : public TProviderFixture {
 protected:
  ProviderHangTest() { m_environment["DIAGSTEST_IMPATIENT"] = "1"; }

  // Without the check, which would wait for it.
  void InstallBad(const std::string& word) const {
    std::filesystem::copy(MakeBad(word), GetInstalled("bad"));
  }
  std::string GetWaiting(const std::string& word, const std::string& function) const {
    return "diagsrun: waiting for provider Bad of " + GetInstalled("bad") + "/lib" + word +
           ".so (" + function + ") since 10 s; Ctrl-C leaves\n";
  }
  std::string GetLeft() const {
    return "diagsrun: provider Bad of " + GetInstalled("bad") +
           "/libcleanuphangs.so has not come back from cleanup within 30 s after the end of the "
           "command; it is left; see rule R9\n";
  }
};

TEST_F(ProviderHangTest, AnEnumerationThatHangsIsToldAndCtrlCLeaves) {
  InstallBad("hangs");
  for (const char* const word : {"list", "run"}) {
    TProgram program = MakeCommand({word});
    if (std::string(word) == "run") program.arguments.emplace_back("--all");
    program.environment["DIAGSRUNNER_ROOT"] = GetRoot();
    program.arguments.insert(program.arguments.begin(),
                             {"/bin/sh", "-c", "exec \"$0\" \"$@\" 2>&1"});
    TSubprocess command(program);
    EXPECT_TRUE(command.WaitForOutput("Ctrl-C leaves\n"));
    command.Signal(SIGINT);
    // A run says that no test was started.
    EXPECT_EQ(command.Wait(), std::string(word) == "run" ? 2 : 128 + SIGINT);
    EXPECT_THAT(command.GetOut(), HasSubstr(GetWaiting("hangs", "enumerateInstances")));
  }
}

TEST_F(ProviderHangTest, ACleanupThatHangsIsLeftWithTheStatusOfTheCommand) {
  InstallAcme();
  InstallBad("cleanuphangs");
  const TFinished listed = Do({"list", "--json"});
  EXPECT_EQ(listed.status, 0);
  EXPECT_FALSE(json::parse(listed.out, nullptr, false).is_discarded()) << listed.out;
  EXPECT_EQ(listed.err, GetWaiting("cleanuphangs", "cleanup") + GetLeft());
  const TFinished run = Do({"run", "TestFail,tst0,Test device"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.out, HasSubstr("1 test: 0 passed, 1 failed"));
  EXPECT_EQ(run.err, GetWaiting("cleanuphangs", "cleanup") + GetLeft());
}

class ProviderClosingTest : public ProviderHangTest,
                            public ::testing::WithParamInterface<std::vector<std::string>> {};

TEST_P(ProviderClosingTest, ADescriptorThatWasClosedFailsTheReport) {
  InstallAcme();
  InstallBad("closes");
  const TFinished finished = Do(GetParam());
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.out, "");
  EXPECT_THAT(finished.err, HasSubstr("diagsrun: standard output: its descriptor was closed or "
                                      "changed, which only a provider's library would do; what "
                                      "goes there is lost; see rule R7\n"));
  EXPECT_THAT(finished.err, HasSubstr("diagsrun: standard output: cannot be written to\n"));
  EXPECT_THAT(finished.err, Not(HasSubstr("TestPass")));
}
INSTANTIATE_TEST_SUITE_P(
    Commands, ProviderClosingTest,
    ::testing::Values(std::vector<std::string>{"list"}, std::vector<std::string>{"list", "--json"},
                      std::vector<std::string>{"inspect", "CIM_AvailableDiagnosticService"}));

}  // namespace
}  // namespace host
