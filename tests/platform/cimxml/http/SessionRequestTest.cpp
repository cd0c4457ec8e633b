// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace diagstest
