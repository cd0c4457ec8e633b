// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "platform/cimxml/TLocalAuthentication.h"
#include "tests/platform/cimxml/http/SessionTest.h"
#include "tests/support/ClosedFolder.h"

namespace diagstest {
namespace {

using NZEPQEL20::TQELException;
using NZEPQEL20::TQELStatusCode;
using NZEPQEL20::TServerOptions;
using NZEPQEL20::cimxml::FindUserName;
using NZEPQEL20::cimxml::THttpRequest;
using NZEPQEL20::cimxml::THttpSession;
using NZEPQEL20::cimxml::TLocalAuthentication;

std::string GetUser() {
  return ::getpwuid(::geteuid())->pw_name;
}

// A user that the system has no name for.
uid_t FindNamelessUser() {
  uid_t user = 54321;
  while (::getpwuid(user) != nullptr) ++user;
  return user;
}

constexpr const char* kNoName =
    "local authentication needs a user name, and the system has none for user number ";

class LocalAuthenticationTest : public ::testing::Test {
 protected:
  void ExpectRefused(const std::string& file, const std::string& reason) const {
    try {
      FAIL() << "answered with " << m_authentication.Answer(file);
    } catch (const TQELException& e) {
      EXPECT_EQ(e.GetStatusCode(), TQELStatusCode(TQELStatusCode::kAccessDenied));
      EXPECT_EQ(std::string(e.what()), "local authentication asks for the file \"" + file +
                                           "\", which is not answered: " + reason);
    }
  }

  const TTemporaryFolder m_folder;
  const TLocalAuthentication m_authentication{{"/nonexistent", m_folder.GetPath()}, GetUser()};
};

constexpr const char* kElsewhere = "it is not in a directory that servers use for this";

TEST_F(LocalAuthenticationTest, GreetsWithTheEffectiveUser) {
  EXPECT_EQ(m_authentication.GetGreeting(), "Local \"" + GetUser() + "\"");
}

TEST_F(LocalAuthenticationTest, AnswersWithTheContentOfTheFile) {
  const std::string file = m_folder.Write("challenge", "0123 secret \r\n");
  EXPECT_EQ(m_authentication.Answer(file), "Local \"" + GetUser() + ":" + file + ":0123 secret\"");
  const std::string longest = m_folder.Write("longest", std::string(4096, 'x'), 0400);
  EXPECT_THAT(m_authentication.Answer(longest), ::testing::EndsWith("xx\""));
}

TEST_F(LocalAuthenticationTest, FindsTheNameOfAUserHoweverLongItsEntryIs) {
  EXPECT_EQ(FindUserName(::geteuid()), GetUser());
  EXPECT_EQ(FindUserName(::geteuid(), 1), GetUser());
  EXPECT_EQ(FindUserName(FindNamelessUser()), "");
}

TEST_F(LocalAuthenticationTest, NeitherGreetsNorAnswersWithoutAName) {
  const TLocalAuthentication nameless({m_folder.GetPath()}, "");
  EXPECT_EQ(nameless.GetGreeting(), "");
  try {
    FAIL() << "answered with " << nameless.Answer(m_folder.Write("challenge", "x"));
  } catch (const TQELException& e) {
    EXPECT_EQ(e.GetStatusCode(), TQELStatusCode(TQELStatusCode::kAccessDenied));
    EXPECT_EQ(e.what(), kNoName + std::to_string(::geteuid()));
  }
}

TEST_F(LocalAuthenticationTest, KnowsWhereServersPutTheirFiles) {
  const std::vector<std::string> known =
      TLocalAuthentication::GetKnownDirectories("/opt/cim/run/cim.socket");
  EXPECT_THAT(known, ::testing::IsSupersetOf({"/var/run/tog-pegasus", "/run/tog-pegasus",
                                              "/var/run/tog-pegasus/socket",
                                              "/run/tog-pegasus/socket", "/tmp", "/opt/cim/run"}));
  for (const std::string& directory : known) {
    EXPECT_EQ(directory.front(), '/');
    EXPECT_NE(directory.back(), '/');
  }
}

TEST_F(LocalAuthenticationTest, RefusesFilesInOtherPlaces) {
  ExpectRefused("", "its path is not absolute");
  ExpectRefused("challenge", "its path is not absolute");
  ExpectRefused("/etc/shadow", kElsewhere);
  ExpectRefused(m_folder.GetPath(), kElsewhere);
  ExpectRefused(m_folder.GetPath() + "/", kElsewhere);
  ExpectRefused(m_folder.GetPath() + "/..", kElsewhere);
  ExpectRefused(m_folder.GetPath() + "/../shadow", kElsewhere);
  ExpectRefused(m_folder.GetPath() + "//x", kElsewhere);
  ExpectRefused(m_folder.GetPath() + "x/y", kElsewhere);
  ExpectRefused(m_folder.GetPath() + "/a\\b", "its path holds odd characters");
}

TEST_F(LocalAuthenticationTest, RefusesFilesThatAreNotThere) {
  ExpectRefused(m_folder.GetPath() + "/none", "No such file or directory");
}

TEST_F(LocalAuthenticationTest, RefusesWhatIsNoPlainFile) {
  const std::string link = m_folder.GetPath() + "/link";
  ASSERT_EQ(::symlink(m_folder.Write("target", "x").c_str(), link.c_str()), 0);
  ExpectRefused(link, "it is a symbolic link");

  const std::string folder = m_folder.GetPath() + "/folder";
  ASSERT_EQ(::mkdir(folder.c_str(), 0700), 0);
  ExpectRefused(folder, "it is no regular file");

  // Opening it the usual way would wait for a writer.
  const std::string pipe = m_folder.GetPath() + "/pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  ExpectRefused(pipe, "it is no regular file");
}

TEST_F(LocalAuthenticationTest, RefusesFilesThatOthersHaveRightsOn) {
  for (const unsigned int rights : {0640U, 0620U, 0604U, 0602U, 0601U, 0660U}) {
    ExpectRefused(m_folder.Write("challenge", "x", rights),
                  "others than its owner have rights on it");
  }
}

TEST_F(LocalAuthenticationTest, RefusesFilesWithASecondName) {
  const std::string file = m_folder.Write("challenge", "x");
  ASSERT_EQ(::link(file.c_str(), (m_folder.GetPath() + "/second").c_str()), 0);
  ExpectRefused(file, "it has more than one name");
}

TEST_F(LocalAuthenticationTest, RefusesFilesOfSomebodyElse) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  const std::string file = m_folder.Write("challenge", "x");
  ASSERT_EQ(::chown(file.c_str(), 65534, 65534), 0);
  ExpectRefused(file, "it does not belong to the user we run as");
}

TEST_F(LocalAuthenticationTest, RefusesContentThatIsNoAnswer) {
  const std::string odd = "its content is not one line of printable text";
  ExpectRefused(m_folder.Write("a", std::string(4097, 'x')), "it has more than 4096 bytes");
  ExpectRefused(m_folder.Write("b", ""), "it is empty");
  ExpectRefused(m_folder.Write("c", " \n\n"), "it is empty");
  ExpectRefused(m_folder.Write("d", "one\ntwo\n"), odd);
  ExpectRefused(m_folder.Write("e", "a\"b"), odd);
  ExpectRefused(m_folder.Write("f", "\xC3\xA4"), odd);
  ExpectRefused(m_folder.Write("g", std::string("a\0b", 3)), odd);
}

// A file directly in /tmp, the last of the known directories.
class TFileInTmp {
 public:
  TFileInTmp() : m_path("/tmp/diagshttp-local-XXXXXX") {
    const int file = ::mkstemp(m_path.data());
    EXPECT_EQ(::write(file, "42\n", 3), 3);
    ::close(file);
  }
  ~TFileInTmp() { ::unlink(m_path.c_str()); }
  TFileInTmp(const TFileInTmp&) = delete;
  TFileInTmp& operator=(const TFileInTmp&) = delete;
  const std::string& GetPath() const { return m_path; }

 private:
  std::string m_path;
};

class LocalSessionTest : public ::testing::Test {
 protected:
  TServerOptions MakeSocketOptions() const {
    TServerOptions options;
    options.url = "unix://" + m_path;
    return options;
  }

  std::string Challenge(const std::string& more = "Content-Length: 0\r\n") const {
    return "HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Local \"" + m_file.GetPath() + "\"\r\n" +
           more + "\r\n";
  }

  // The socket is that of the user who runs the test.
  void OpenToAll() const {
    ASSERT_EQ(::chmod(m_path.c_str(), 0777), 0);
    ASSERT_EQ(::chmod(m_folder.GetPath().c_str(), 0755), 0);
  }
  // Empty when the user may be another one.
  std::string FindObstacle() const {
    if (::geteuid() != 0) return "only root can become somebody else";
    const std::string closed =
        FindClosedFolder(std::filesystem::path(m_path).parent_path().string());
    return closed.empty() ? closed : closed + ": nobody else may enter it";
  }

  std::string Greeting() const { return "PegasusAuthorization: Local \"" + GetUser() + "\""; }
  std::string Answer() const {
    return "PegasusAuthorization: Local \"" + GetUser() + ":" + m_file.GetPath() + ":42\"";
  }

  const TFileInTmp m_file;
  const TTemporaryFolder m_folder;
  const std::string m_path = m_folder.GetPath() + "/cim.socket";
  TScriptedServer m_server{m_path};
};

TEST_F(LocalSessionTest, GreetsAServerOnASocketOfThisMachine) {
  THttpSession session(MakeSocketOptions());
  EXPECT_EQ(Try(session).text, TScriptedServer::GetGoodBody());
  ASSERT_EQ(m_server.GetRequests().size(), 1U);
  const TSeenRequest seen = m_server.GetRequests()[0];
  EXPECT_TRUE(seen.HasLine("POST /cimom HTTP/1.1")) << seen.head;
  EXPECT_TRUE(seen.HasLine("Host: localhost")) << seen.head;
  EXPECT_TRUE(seen.HasLine(Greeting())) << seen.head;
}

TEST_F(LocalSessionTest, AnswersAChallengeOnTheSameConnection) {
  for (const char* more : {"Content-Length: 0\r\n", "Content-Length: 4\r\n\r\nbody"}) {
    THttpSession session(MakeSocketOptions());
    const std::size_t before = m_server.GetRequests().size();
    std::string challenge = Challenge(more);
    if (std::string(more).find("body") != std::string::npos) challenge.resize(challenge.size() - 2);
    m_server.Queue(TPlay().Send(challenge));
    THttpRequest call = MakeRequest();
    call.isMethodCall = true;
    const TOutcome outcome = Try(session, call);
    EXPECT_EQ(outcome.text, TScriptedServer::GetGoodBody());
    const std::vector<TSeenRequest> seen = m_server.GetRequests();
    ASSERT_EQ(seen.size(), before + 2);
    EXPECT_TRUE(seen[before].HasLine(Greeting())) << seen[before].head;
    EXPECT_TRUE(seen[before + 1].HasLine(Answer())) << seen[before + 1].head;
    EXPECT_EQ(seen[before + 1].body, call.body);
    EXPECT_EQ(seen[before + 1].connection, seen[before].connection);
  }
}

TEST_F(LocalSessionTest, AnswersWithAFileBesideTheSocket) {
  const std::string file = m_folder.Write("challenge", "43");
  THttpSession session(MakeSocketOptions());
  m_server.Queue(TPlay().Send("HTTP/1.1 401 No\r\nWWW-Authenticate: Local \"" + file +
                              "\"\r\nContent-Length: 0\r\n\r\n"));
  const TOutcome outcome = Try(session);
  EXPECT_EQ(outcome.text, TScriptedServer::GetGoodBody());
  ASSERT_EQ(m_server.GetRequests().size(), 2U);
  EXPECT_TRUE(m_server.GetRequests()[1].HasLine("PegasusAuthorization: Local \"" + GetUser() + ":" +
                                                file + ":43\""));
}

TEST_F(LocalSessionTest, NeedsNoNameOfTheUserUnlessTheServerAsks) {
  OpenToAll();
  if (!FindObstacle().empty()) GTEST_SKIP() << FindObstacle();
  const uid_t user = FindNamelessUser();
  const TOtherUser other(user);
  THttpSession session(MakeSocketOptions());
  EXPECT_EQ(Try(session).text, TScriptedServer::GetGoodBody());
  ASSERT_EQ(m_server.GetRequests().size(), 1U);
  EXPECT_THAT(m_server.GetRequests()[0].head,
              ::testing::Not(::testing::HasSubstr("PegasusAuthorization")));

  m_server.Queue(TPlay().Send(Challenge()));
  const TOutcome outcome = Try(session);
  EXPECT_EQ(outcome.kind, TOutcome::kOther);
  EXPECT_EQ(outcome.code, static_cast<unsigned int>(TQELStatusCode::kAccessDenied));
  EXPECT_EQ(outcome.text, "unix://" + m_path + ": " + kNoName + std::to_string(user));
  EXPECT_EQ(m_server.GetRequests().size(), 2U);
  EXPECT_EQ(Try(session).kind, TOutcome::kGood);
}

TEST_F(LocalSessionTest, LooksTheNameOfTheUserUpOnce) {
  OpenToAll();
  if (!FindObstacle().empty()) GTEST_SKIP() << FindObstacle();
  const std::string greeting = Greeting();
  THttpSession session(MakeSocketOptions());
  const TOtherUser other(FindNamelessUser());
  EXPECT_EQ(Try(session).kind, TOutcome::kGood);
  ASSERT_EQ(m_server.GetRequests().size(), 1U);
  EXPECT_TRUE(m_server.GetRequests()[0].HasLine(greeting)) << m_server.GetRequests()[0].head;
}

TEST_F(LocalSessionTest, GreetsAgainForTheNextRequest) {
  THttpSession session(MakeSocketOptions());
  m_server.Queue(TPlay().Send(Challenge()));
  ASSERT_EQ(Try(session).kind, TOutcome::kGood);
  ASSERT_EQ(Try(session).kind, TOutcome::kGood);
  ASSERT_EQ(m_server.GetRequests().size(), 3U);
  EXPECT_TRUE(m_server.GetRequests()[2].HasLine(Greeting()));
}

TEST_F(LocalSessionTest, DoesNotWaitForTheEndOfAChallengeThatHasNone) {
  THttpSession session(MakeSocketOptions());
  m_server.Queue(TPlay().Send(Challenge("")).Hang());
  const TOutcome outcome = Try(session);
  EXPECT_EQ(outcome.text, TScriptedServer::GetGoodBody());
  EXPECT_LT(outcome.elapsed, std::chrono::seconds(30));
  ASSERT_EQ(m_server.GetRequests().size(), 2U);
  EXPECT_TRUE(m_server.GetRequests()[1].HasLine(Answer()));
}

TEST_F(LocalSessionTest, AnswersOneChallengeOnly) {
  THttpSession session(MakeSocketOptions());
  m_server.Queue(TPlay().Send(Challenge()));
  m_server.Queue(TPlay().Send(Challenge()));
  const TOutcome outcome = Try(session);
  EXPECT_EQ(outcome.kind, TOutcome::kHttpError);
  EXPECT_EQ(outcome.httpStatus, 401);
  EXPECT_EQ(outcome.code, static_cast<unsigned int>(TQELStatusCode::kAccessDenied));
  EXPECT_EQ(outcome.text, "unix://" + m_path +
                              ": HTTP 401 Unauthorized; the local user is refused (the server "
                              "offers Local)");
  EXPECT_EQ(m_server.GetRequests().size(), 2U);
  EXPECT_EQ(Try(session).kind, TOutcome::kGood);
}

TEST_F(LocalSessionTest, SendsNothingMoreWhenTheFileIsRefused) {
  THttpSession session(MakeSocketOptions());
  m_server.Queue(
      TPlay().Send("HTTP/1.1 401 No\r\nWWW-Authenticate: Local \"/etc/shadow\"\r\n"
                   "Content-Length: 0\r\n\r\n"));
  const TOutcome outcome = Try(session);
  EXPECT_EQ(outcome.kind, TOutcome::kOther);
  EXPECT_EQ(outcome.code, static_cast<unsigned int>(TQELStatusCode::kAccessDenied));
  EXPECT_EQ(outcome.text, "unix://" + m_path +
                              ": local authentication asks for the file \"/etc/shadow\", which is "
                              "not answered: it is not in a directory that servers use for this");
  EXPECT_EQ(m_server.GetRequests().size(), 1U);
  EXPECT_EQ(Try(session).kind, TOutcome::kGood);
}

TEST_F(LocalSessionTest, DoesNotReadAnEndlessChallenge) {
  THttpSession session(MakeSocketOptions());
  m_server.Queue(TPlay()
                     .Send(Challenge("Content-Length: 100000000\r\n"))
                     .Repeat(std::string(65536, 'x'), 1600));
  const TOutcome outcome = Try(session);
  EXPECT_EQ(outcome.kind, TOutcome::kHttpError) << outcome.text;
  EXPECT_EQ(outcome.httpStatus, 401);
}

TEST_F(LocalSessionTest, IsNotUsedWhenAUserIsGiven) {
  TServerOptions options = MakeSocketOptions();
  options.user = "joe";
  options.password = "secret";
  THttpSession session(options);
  m_server.Queue(TPlay().Send(Challenge()));
  const TOutcome outcome = Try(session);
  EXPECT_EQ(outcome.kind, TOutcome::kHttpError);
  EXPECT_THAT(outcome.text, ::testing::EndsWith("; the user or password is refused (the server "
                                                "offers Local)"));
  ASSERT_EQ(m_server.GetRequests().size(), 1U);
  EXPECT_THAT(m_server.GetRequests()[0].head,
              ::testing::Not(::testing::HasSubstr("PegasusAuthorization")));
  EXPECT_TRUE(m_server.GetRequests()[0].HasLine("Authorization: Basic am9lOnNlY3JldA=="));
}

}  // namespace
}  // namespace diagstest
