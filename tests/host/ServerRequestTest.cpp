// SPDX-License-Identifier: Apache-2.0
//
// What the real command sends to a server that never answers, and how it ends then.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>

#include "tests/host/THostFixture.h"
#include "tests/host/TListener.h"

namespace host {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

// "me:sesame" as HTTP sends it.
constexpr char kLogin[] = "\r\nAuthorization: Basic bWU6c2VzYW1l\r\n";

class ServerRequestTest : public THostFixture {
 protected:
  TProgram MakeCall(const std::vector<std::string>& arguments) const {
    TProgram program = MakeCommand({"--server", m_listener.GetUrl()});
    program.arguments.insert(program.arguments.end(), arguments.begin(), arguments.end());
    return program;
  }

  // The request that the command begins with; its end is not waited for.
  std::string SeeRequest(const TProgram& program) {
    const TSubprocess command(program);
    return m_listener.TakeRequest();
  }

  TListener m_listener;
};

TEST_F(ServerRequestTest, ItsListenerGivesTheHeaderOfEachRequest) {
  TProgram client;
  client.arguments = {"/bin/bash", "-c",
                      "exec 3<>/dev/tcp/127.0.0.1/\"$1\"; printf 'GET\\r\\nA: b\\r\\n\\r\\n' >&3",
                      "bash", m_listener.GetUrl().substr(std::string("http://127.0.0.1:").size())};
  EXPECT_EQ(SeeRequest(client), "GET\r\nA: b\r\n\r\n");
  EXPECT_EQ(SeeRequest(client), "GET\r\nA: b\r\n\r\n");
}

TEST_F(ServerRequestTest, SendsTheCredentialsOfAFile) {
  const std::string file = Write("login", "user=me\npassword=sesame\n");
  ASSERT_EQ(::chmod(file.c_str(), 0600), 0);
  EXPECT_THAT(SeeRequest(MakeCall({"--credentials", file, "list"})), HasSubstr(kLogin));
}

TEST_F(ServerRequestTest, SendsTheCredentialsOfTheEnvironment) {
  TProgram program = MakeCall({"list"});
  program.environment["DIAGSRUNNER_SERVER_USER"] = "me";
  program.environment["DIAGSRUNNER_SERVER_PASSWORD"] = "sesame";
  EXPECT_THAT(SeeRequest(program), HasSubstr(kLogin));
}

TEST_F(ServerRequestTest, ThePasswordCannotBeSeenInTheProcess) {
  TProgram program = MakeCall({"list"});
  program.environment["DIAGSRUNNER_SERVER_USER"] = "me";
  program.environment["DIAGSRUNNER_SERVER_PASSWORD"] = "sesame";
  const TSubprocess command(program);
  EXPECT_THAT(m_listener.TakeRequest(), HasSubstr(kLogin));
  const std::string process = "/proc/" + std::to_string(command.GetPid());
  for (const char* name : {"/environ", "/cmdline"}) {
    std::ifstream file(process + name);
    // Nobody but root may look at all.
    if (!file.is_open()) {
      EXPECT_NE(::geteuid(), 0U);
      continue;
    }
    const std::string seen{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    EXPECT_THAT(seen, Not(IsEmpty()));
    EXPECT_THAT(seen, Not(HasSubstr("sesame")));
  }
}

class CoreLimitTest : public ServerRequestTest {
 protected:
  CoreLimitTest() { ::getrlimit(RLIMIT_CORE, &m_before); }
  ~CoreLimitTest() override { ::setrlimit(RLIMIT_CORE, &m_before); }

  // The soft limit of a command that waits for its server's answer; it starts with the hard one.
  rlim_t FindLimit(const TProgram& program) {
    const rlimit open{m_before.rlim_max, m_before.rlim_max};
    ::setrlimit(RLIMIT_CORE, &open);
    const TSubprocess command(program);
    EXPECT_THAT(m_listener.TakeRequest(), Not(IsEmpty()));
    rlimit limit{1, 1};
    EXPECT_EQ(::prlimit(command.GetPid(), RLIMIT_CORE, nullptr, &limit), 0);
    return limit.rlim_cur;
  }

  rlimit m_before{};
};

TEST_F(CoreLimitTest, ThereIsNoCoreFileWithAPasswordInIt) {
  TProgram program = MakeCall({"list"});
  program.environment["DIAGSRUNNER_SERVER_USER"] = "me";
  program.environment["DIAGSRUNNER_SERVER_PASSWORD"] = "sesame";
  EXPECT_EQ(FindLimit(program), 0U);
}

TEST_F(CoreLimitTest, StaysAsItIsWithoutAUser) {
#ifdef DIAGSRUNNER_SANITIZED
  GTEST_SKIP() << "a sanitizer sets a limit of its own";
#endif
  EXPECT_EQ(FindLimit(MakeCall({"list"})), m_before.rlim_max);
}

TEST_F(ServerRequestTest, SaysThatAPasswordOfNobodyIsNotUsed) {
  TProgram program = MakeCall({"--request-timeout", "0.2", "list"});
  program.environment["DIAGSRUNNER_SERVER_PASSWORD"] = "sesame";
  const std::string warning =
      "diagsrun: warning: DIAGSRUNNER_SERVER_PASSWORD is set and not used, since no user is named";
  EXPECT_THAT(RunToEnd(program).err, AllOf(StartsWith(warning), Not(HasSubstr("sesame"))));
  program.environment["DIAGSRUNNER_SERVER_USER"] = "me";
  EXPECT_THAT(RunToEnd(program).err, Not(HasSubstr("warning")));
  TProgram local = MakeCommand({"list"});
  local.environment["DIAGSRUNNER_SERVER_PASSWORD"] = "sesame";
  EXPECT_THAT(RunToEnd(local).err, Not(HasSubstr("warning")));
}

TEST_F(ServerRequestTest, SendsThePasswordOfTheEnvironmentForTheUserOfTheCommandLine) {
  TProgram program = MakeCall({"run", "--all", "--user", "me"});
  program.environment["DIAGSRUNNER_SERVER_PASSWORD"] = "sesame";
  EXPECT_THAT(SeeRequest(program), HasSubstr(kLogin));
}

TEST_F(ServerRequestTest, SendsNoneWithoutAUser) {
  const std::string request = SeeRequest(MakeCall({"list"}));
  EXPECT_THAT(request, HasSubstr("POST /cimom HTTP/1.1\r\n"));
  EXPECT_THAT(request, Not(HasSubstr("Authorization")));
}

TEST_F(ServerRequestTest, LooksInTheNamespace) {
  EXPECT_THAT(SeeRequest(MakeCall({"--namespace", "root/vendor", "list"})),
              HasSubstr("\r\nCIMObject: root%2Fvendor\r\n"));
}

TEST_F(ServerRequestTest, WaitsAsLongAsItMay) {
  const std::string log = GetFolder() + "/log";
  TProgram program = MakeCall({"--request-timeout", "0.2", "--log", log, "--log-level", "trace",
                               "--user", "me", "list", "--json"});
  program.environment["DIAGSRUNNER_SERVER_PASSWORD"] = "sesame";
  const auto start = std::chrono::steady_clock::now();
  const TFinished finished = RunToEnd(program);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.out, "");
  EXPECT_THAT(finished.err, HasSubstr(m_listener.GetUrl() + ": "));
  EXPECT_THAT(finished.err, HasSubstr(" (--request-timeout SECONDS; --method-timeout"));
  EXPECT_EQ(finished.err.find('\n'), finished.err.size() - 1) << finished.err;
  EXPECT_THAT(finished.err, Not(HasSubstr("sesame")));
}

TEST_F(ServerRequestTest, OneSignalEndsARunThatHasStartedNoTest) {
  TSubprocess command(MakeCall({"run", "--all", "--json"}));
  EXPECT_THAT(m_listener.TakeRequest(), Not(IsEmpty()));
  command.Signal(SIGINT);
  EXPECT_EQ(command.Wait(), 2);
  EXPECT_EQ(command.GetOut(), "");
  EXPECT_EQ(command.GetErr(), "diagsrun: interrupted before any test was started\n");
}

TEST_F(ServerRequestTest, OneSignalEndsAListThatWaitsForTheServer) {
  TSubprocess command(MakeCall({"list"}));
  EXPECT_THAT(m_listener.TakeRequest(), Not(IsEmpty()));
  command.Signal(SIGINT);
  EXPECT_EQ(command.Wait(), 128 + SIGINT);
}

}  // namespace
}  // namespace host
