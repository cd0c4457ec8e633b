// SPDX-License-Identifier: Apache-2.0
//
// Whom the real command trusts, and whom a CIM server trusts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "tests/host/TServerFixture.h"
#include "tests/host/TTerminalChild.h"

namespace host {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr char kTable[] = "NO.  SERVICE";

class ServerTrustTest : public TServerFixture {
 protected:
  // One line on standard error, and nothing of a list.
  static void ExpectRefusal(const TFinished& finished, const std::string& reason) {
    EXPECT_EQ(finished.status, 2);
    EXPECT_EQ(finished.out, "");
    EXPECT_THAT(finished.err, StartsWith("diagsrun: "));
    EXPECT_THAT(finished.err, HasSubstr(reason));
    EXPECT_EQ(finished.err.find('\n'), finished.err.size() - 1) << finished.err;
  }

  cimserver::TThrowAwayCa m_ca;
};

TEST_F(ServerTrustTest, ACertificateOfAnUnknownAuthorityIsRefused) {
  StartServer(WithCertificate(m_ca.GetServer()));
  ExpectRefusal(RunOnServer({"list"}), "insecure mode (--ca FILE, or --insecure)\n");
}

TEST_F(ServerTrustTest, ACertificateForAnotherHostIsRefused) {
  StartServer(WithCertificate(m_ca.GetOtherServer()));
  ExpectRefusal(RunOnServer({"--ca", m_ca.GetCaFile(), "list"}), "certificate");
}

TEST_F(ServerTrustTest, ACertificateThatIsOverIsRefused) {
  StartServer(WithCertificate(m_ca.GetExpiredServer()));
  ExpectRefusal(RunOnServer({"--ca", m_ca.GetCaFile(), "list"}), "expired");
}

TEST_F(ServerTrustTest, InsecureTakesAnyCertificateAndSaysSo) {
  StartServer(WithCertificate(m_ca.GetExpiredServer()));
  const TFinished finished = RunOnServer({"--insecure", "list"});
  EXPECT_EQ(finished.status, 0);
  EXPECT_THAT(finished.out, StartsWith(kTable));
  EXPECT_THAT(finished.err, StartsWith("diagsrun: warning: --insecure: the certificate of " +
                                       GetUrl() + " is not checked"));
}

TEST_F(ServerTrustTest, AServerThatWantsACertificateGetsIt) {
  std::vector<std::string> arguments = WithCertificate(m_ca.GetServer());
  arguments.insert(arguments.end(), {"--client-ca", m_ca.GetCaFile()});
  StartServer(arguments);
  const TFinished refused = RunOnServer({"--ca", m_ca.GetCaFile(), "list"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.out, "");
  const TFinished taken =
      RunOnServer({"--ca", m_ca.GetCaFile(), "--client-cert", m_ca.GetClient().certificate,
                   "--client-key", m_ca.GetClient().key, "list"});
  EXPECT_EQ(taken.status, 0) << taken.err;
  EXPECT_THAT(taken.out, StartsWith(kTable));
}

TEST_F(ServerTrustTest, TheRightPasswordIsTaken) {
  StartServer(WithPassword());
  const TFinished finished = RunOnServer({"--credentials", WriteLogin("me", "sesame"), "list"});
  EXPECT_EQ(finished.status, 0) << finished.err;
  EXPECT_THAT(finished.out, StartsWith(kTable));
}

TEST_F(ServerTrustTest, AWrongPasswordIsRefusedAndNotRepeated) {
  StartServer(WithPassword());
  const std::string log = GetFolder() + "/log";
  const TFinished finished = RunOnServer(
      {"--credentials", WriteLogin("me", "simsim"), "--log", log, "--log-level", "trace", "list"});
  ExpectRefusal(finished, "HTTP 401");
  std::ifstream file(log);
  const std::string logged{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  EXPECT_THAT(finished.err + logged, Not(HasSubstr("simsim")));
  EXPECT_THAT(finished.err + logged, Not(HasSubstr("bWU6c2ltc2lt")));
}

TEST_F(ServerTrustTest, AMissingPasswordIsAskedForByItsServer) {
  StartServer(WithPassword());
  const TFinished finished = RunOnServer({"list"});
  ExpectRefusal(finished, "a user and a password are needed");
  ExpectRefusal(finished, " (--user NAME, or --credentials FILE)\n");
}

TEST_F(ServerTrustTest, ThePasswordOfThePromptIsTaken) {
  StartServer(WithPassword());
  const TProgram program = MakeServerCommand({"--user", "me", "list"});
  TTerminalChild child([&program] {
    for (const auto& [name, value] : program.environment) {
      ::setenv(name.c_str(), value.c_str(), 1);
    }
    std::vector<char*> pointers;
    for (const std::string& argument : program.arguments) {
      pointers.push_back(const_cast<char*>(argument.c_str()));
    }
    pointers.push_back(nullptr);
    ::execv(pointers[0], pointers.data());
    return std::string("not started");
  });
  ASSERT_TRUE(child.WaitForScreen("Password for me at " + GetUrl() + ": "));
  child.Type("sesame\n");
  EXPECT_EQ(child.Wait(), 0);
  EXPECT_THAT(child.GetScreen(), HasSubstr(kTable));
  EXPECT_THAT(child.GetScreen(), Not(HasSubstr("sesame")));
}

}  // namespace
}  // namespace host
