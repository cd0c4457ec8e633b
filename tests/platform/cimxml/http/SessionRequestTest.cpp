// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/platform/cimxml/http/SessionTest.h"

namespace diagstest {
namespace {

using NZEPQEL20::TServerOptions;
using NZEPQEL20::cimxml::THttpRequest;
using NZEPQEL20::cimxml::THttpSession;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(SessionRequestTest, GetsTheBodyOfAGoodAnswer) {
  TScriptedServer server;
  THttpSession session(MakeOptions("http", server.GetPort()));
  const TOutcome outcome = Try(session);
  EXPECT_EQ(outcome.kind, TOutcome::kGood) << outcome.text;
  EXPECT_EQ(outcome.text, TScriptedServer::GetGoodBody());
}

TEST(SessionRequestTest, SendsTheFieldsThatCIMServersWant) {
  TScriptedServer server;
  TServerOptions options = MakeOptions("http", server.GetPort());
  THttpSession session(options);
  THttpRequest request = MakeRequest();
  request.method = "SayHello";
  request.object = "root/cimv2:Sample_Method";
  ASSERT_EQ(Try(session, request).kind, TOutcome::kGood);

  ASSERT_EQ(server.GetRequests().size(), 1U);
  const TSeenRequest seen = server.GetRequests()[0];
  EXPECT_EQ(seen.head.substr(0, seen.head.find("\r\n")), "POST /cimom HTTP/1.1");
  for (const char* line :
       {"Content-Type: application/xml; charset=\"utf-8\"", "CIMOperation: MethodCall",
        "CIMMethod: SayHello", "CIMObject: root%2Fcimv2%3ASample_Method", "TE: trailers",
        "Connection: Keep-Alive, TE", "User-Agent: diagsrun/" DIAGSRUNNER_VERSION}) {
    EXPECT_TRUE(seen.HasLine(line)) << line << " is missing in\n" << seen.head;
  }
  EXPECT_TRUE(seen.HasLine("Host: 127.0.0.1:" + std::to_string(server.GetPort())));
  EXPECT_TRUE(seen.HasLine("Content-Length: " + std::to_string(request.body.size())));
  for (const char* name : {"Expect", "Accept", "Accept-Encoding", "Authorization",
                           "PegasusAuthorization", "Transfer-Encoding", "Upgrade"}) {
    EXPECT_THAT(seen.head, Not(HasSubstr(std::string("\r\n") + name + ":")));
  }
  EXPECT_EQ(seen.body, request.body);
}

TEST(SessionRequestTest, EncodesNamesOfAnyKind) {
  const TScriptedServer server;
  THttpSession session(MakeOptions("http", server.GetPort()));
  THttpRequest request = MakeRequest();
  request.method = "M\xC3\xA4\r\nX: y";
  request.object = "root/cimv2:X.K=\"a b\"";
  ASSERT_EQ(Try(session, request).kind, TOutcome::kGood);
  const TSeenRequest seen = server.GetRequests().at(0);
  EXPECT_TRUE(seen.HasLine("CIMMethod: M%C3%A4%0D%0AX%3A%20y")) << seen.head;
  EXPECT_TRUE(seen.HasLine("CIMObject: root%2Fcimv2%3AX.K%3D%22a%20b%22")) << seen.head;
}

TEST(SessionRequestTest, SendsNamesThatAreLongerThanSomeServersTake) {
  const TScriptedServer server;
  THttpSession session(MakeOptions("http", server.GetPort()));
  THttpRequest request = MakeRequest();
  request.object = std::string(20000, 'x');
  ASSERT_EQ(Try(session, request).kind, TOutcome::kGood);
  EXPECT_TRUE(server.GetRequests().at(0).HasLine("CIMObject: " + request.object));
}

TEST(SessionRequestTest, SendsBodiesOfAnySize) {
  const TScriptedServer server;
  THttpSession session(MakeOptions("http", server.GetPort()));
  for (const std::size_t size : {0U, 1U, 65536U, 3000000U}) {
    THttpRequest request = MakeRequest();
    request.body.assign(size, 'x');
    const TOutcome outcome = Try(session, request);
    ASSERT_EQ(outcome.kind, TOutcome::kGood) << outcome.text;
    EXPECT_EQ(server.GetRequests().back().body, request.body);
    EXPECT_THAT(server.GetRequests().back().head, Not(HasSubstr("Expect")));
  }
}

TEST(SessionRequestTest, SendsCredentialsUnaskedAndTellsThemToNobody) {
  TScriptedServer server;
  TServerOptions options = MakeOptions("http", server.GetPort());
  options.user = "joe";
  options.password = "s3cr:et";
  THttpSession session(options);
  server.Queue(
      TPlay().Send("HTTP/1.1 401 No\r\nWWW-Authenticate: Basic realm=\"s3cr:et\"\r\n\r\n"));
  const TOutcome outcome = Try(session);
  EXPECT_TRUE(server.GetRequests().at(0).HasLine("Authorization: Basic am9lOnMzY3I6ZXQ="));
  EXPECT_EQ(server.GetRequests().size(), 1U);
  EXPECT_EQ(outcome.text, options.url +
                              ": HTTP 401 No; the user or password is refused (the "
                              "server offers Basic)");
}

TEST(SessionRequestTest, SendsCredentialsToNoOtherServer) {
  const TScriptedServer other;
  TScriptedServer server;
  TServerOptions options = MakeOptions("http", server.GetPort());
  options.user = "joe";
  THttpSession session(options);
  server.Queue(TPlay().Send(
      "HTTP/1.1 302 Found\r\nLocation: http://127.0.0.1:" + std::to_string(other.GetPort()) +
      "/cimom\r\nContent-Length: 0\r\n\r\n"));
  EXPECT_EQ(Try(session).httpStatus, 302);
  EXPECT_EQ(other.CountConnections(), 0);
}

// Sets a variable of the environment and takes it away again.
class TVariable {
 public:
  TVariable(const char* name, const std::string& value) : m_name(name) {
    ::setenv(name, value.c_str(), 1);
  }
  ~TVariable() { ::unsetenv(m_name); }
  TVariable(const TVariable&) = delete;
  TVariable& operator=(const TVariable&) = delete;

 private:
  const char* m_name;
};

TEST(SessionRequestTest, OverlooksProxiesAndPasswordsOfTheEnvironment) {
  const TTemporaryFolder home;
  home.Write(".netrc", "machine 127.0.0.1 login joe password secret\n");
  const TScriptedServer proxy;
  const TScriptedServer server;
  const std::string proxyUrl = "http://127.0.0.1:" + std::to_string(proxy.GetPort());
  const TVariable variables[] = {
      {"http_proxy", proxyUrl}, {"all_proxy", proxyUrl}, {"ALL_PROXY", proxyUrl}};
  const char* const before = ::getenv("HOME");
  const std::string oldHome = before == nullptr ? "" : before;
  ::setenv("HOME", home.GetPath().c_str(), 1);
  THttpSession session(MakeOptions("http", server.GetPort()));
  EXPECT_EQ(Try(session).kind, TOutcome::kGood);
  ::setenv("HOME", oldHome.c_str(), 1);
  EXPECT_EQ(proxy.CountConnections(), 0);
  EXPECT_THAT(server.GetRequests().at(0).head, Not(HasSubstr("Authorization")));
}

TEST(SessionRequestTest, IsCalledByItsUrl) {
  TServerOptions options;
  options.url = "https://node/wbem";
  EXPECT_EQ(THttpSession(options).GetName(), "https://node/wbem");
}

TEST(SessionRequestTest, PostsToThePathOfTheUrl) {
  const TScriptedServer server;
  TServerOptions options = MakeOptions("http", server.GetPort());
  options.url += "/a/b%40";
  THttpSession session(options);
  ASSERT_EQ(Try(session).kind, TOutcome::kGood);
  EXPECT_TRUE(server.GetRequests().at(0).HasLine("POST /a/b%40 HTTP/1.1"))
      << server.GetRequests().at(0).head;
}
}  // namespace
}  // namespace diagstest
