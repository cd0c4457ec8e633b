// SPDX-License-Identifier: Apache-2.0
//
// What the real command does with a server's options and credentials before it calls one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <ostream>

#include "tests/host/THostFixture.h"
#include "tests/host/TTerminalChild.h"

namespace host {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

// Nobody listens on it.
constexpr char kServer[] = "https://127.0.0.1:1";

std::string Read(const std::string& name) {
  std::ifstream file(name);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class ServerCallTest : public THostFixture {
 protected:
  // Runs the command at a terminal; `arguments` without the program's name.
  std::string RunAsChild(const std::vector<std::string>& arguments) const {
    const TProgram program = MakeCommand(arguments);
    for (const auto& [name, value] : program.environment) {
      ::setenv(name.c_str(), value.c_str(), 1);
    }
    std::vector<char*> pointers;
    for (const std::string& argument : program.arguments) {
      pointers.push_back(const_cast<char*>(argument.c_str()));
    }
    pointers.push_back(nullptr);
    ::execv(pointers[0], pointers.data());
    return "not started";
  }
};

struct TWrongCall {
  const char* name;
  std::vector<std::string> arguments;
  const char* message;
};
void PrintTo(const TWrongCall& row, std::ostream* out) {
  *out << row.name;
}

class WrongCallTest : public ServerCallTest, public ::testing::WithParamInterface<TWrongCall> {};

TEST_P(WrongCallTest, IsWrongUsageInOneLineWithoutAPassword) {
  // Where the tests themselves run at a terminal, nobody is to be asked.
  TProgram program = MakeCommand(GetParam().arguments);
  program.arguments.insert(program.arguments.begin(),
                           {"/bin/sh", "-c", "exec \"$@\" < /dev/null", "sh"});
  const TFinished finished = RunToEnd(program);
  EXPECT_EQ(finished.status, 3);
  EXPECT_EQ(finished.out, "");
  EXPECT_THAT(finished.err, StartsWith("diagsrun: "));
  EXPECT_THAT(finished.err, HasSubstr(GetParam().message));
  EXPECT_THAT(finished.err, Not(HasSubstr("sesame")));
  EXPECT_EQ(finished.err.find('\n'), finished.err.size() - 1) << finished.err;
}
INSTANTIATE_TEST_SUITE_P(
    All, WrongCallTest,
    ::testing::Values(
        TWrongCall{"EmptyUrl", {"--server", "", "list"}, "--server: "},
        TWrongCall{"PasswordInTheUrl",
                   {"--server", "http://me:sesame@h", "list"},
                   "never taken from the command line"},
        TWrongCall{"OtherScheme",
                   {"--server", "ftp://h", "list"},
                   "--server: the server URL \"ftp://h\": is none of"},
        TWrongCall{"Port", {"--server", "http://h:99999", "run", "--all"}, "its port is no number"},
        TWrongCall{"NoAuthorityFile",
                   {"--server", kServer, "--ca", "/no/ca", "list"},
                   "--ca: /no/ca: No such file"},
        TWrongCall{"NoPassword",
                   {"--server", kServer, "--user", "me", "list"},
                   "password of me: is not known"},
        TWrongCall{"NoCredentialsFile",
                   {"--server", kServer, "--credentials", "/no/file", "list"},
                   "--credentials: /no/file: No such file"},
        TWrongCall{"CredentialsAreADevice",
                   {"--server", kServer, "--credentials", "/dev/zero", "list"},
                   "--credentials: /dev/zero: is not a regular file"}),
    [](const auto& row) { return row.param.name; });

TEST_F(ServerCallTest, RefusesACredentialsFileThatOthersMayRead) {
  const std::string file = Write("login", "user=me\npassword=sesame\n");
  ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
  const TFinished finished = Run({"--server", kServer, "--credentials", file, "list"});
  EXPECT_EQ(finished.status, 3);
  EXPECT_THAT(finished.err, HasSubstr("chmod 600"));
  EXPECT_THAT(finished.err, Not(HasSubstr("sesame")));
}

TEST_F(ServerCallTest, ProgramsOfTestsDoNotInheritTheCredentials) {
  AddTool("stress-ng", "env > \"$here/inherited\"");
  TProgram program = MakeCommand({"run", FindTests("Processor Short Stress,cpu0,").at(0)});
  program.environment["DIAGSRUNNER_SERVER_USER"] = "eve";
  program.environment["DIAGSRUNNER_SERVER_PASSWORD"] = "sesame";
  RunToEnd(program);
  const std::string inherited = Read(GetFolder() + "/bin/inherited");
  EXPECT_THAT(inherited, HasSubstr("PATH="));
  EXPECT_THAT(inherited, Not(HasSubstr("DIAGSRUNNER_SERVER")));
}

TEST_F(ServerCallTest, WarnsOnceOfACertificateThatNobodyLooksAt) {
  const TFinished finished = Run({"--server", kServer, "--insecure", "list"});
  const std::string warning =
      "diagsrun: warning: --insecure: the certificate of https://127.0.0.1:1 is not checked";
  EXPECT_THAT(finished.err, StartsWith(warning));
  EXPECT_EQ(finished.err.find("warning: --insecure", warning.size()), std::string::npos);
  EXPECT_THAT(Run({"--server", kServer, "list"}).err, Not(HasSubstr("--insecure")));
}

TEST_F(ServerCallTest, AsksForThePasswordOnTheTerminalWithoutShowingIt) {
  const std::string log = GetFolder() + "/log";
  TTerminalChild child([&] {
    return RunAsChild({"--server", kServer, "--user", "m\xc3\xbcller", "--log", log, "--log-level",
                       "trace", "list", "--json"});
  });
  ASSERT_TRUE(child.WaitForScreen("Password for m\xc3\xbcller at https://127.0.0.1:1: "));
  EXPECT_FALSE(child.HasEcho());
  child.Type("sesame\n");
  child.Wait();
  EXPECT_TRUE(child.HasEcho());
  EXPECT_THAT(child.GetScreen(), Not(HasSubstr("sesame")));
  EXPECT_THAT(Read(log), Not(HasSubstr("sesame")));
}

TEST_F(ServerCallTest, CtrlCAtTheQuestionEndsTheCommandAndBringsTheEchoBack) {
  TTerminalChild child([&] {
    return RunAsChild({"--server", kServer, "--user", "me", "run", "--all"});
  });
  ASSERT_TRUE(child.WaitForScreen("Password for me at "));
  child.Type("ses\x03");
  EXPECT_EQ(child.Wait(), 128 + SIGINT);
  EXPECT_TRUE(child.HasEcho());
}

TEST_F(ServerCallTest, TheEndOfTheInputAtTheQuestionIsAnError) {
  TTerminalChild child([&] { return RunAsChild({"--server", kServer, "--user", "me", "list"}); });
  ASSERT_TRUE(child.WaitForScreen("Password for me at "));
  child.Type("\x04");
  EXPECT_EQ(child.Wait(), 3);
  EXPECT_THAT(child.GetScreen(), HasSubstr("\r\ndiagsrun: password: the terminal's input ended"));
}

}  // namespace
}  // namespace host
