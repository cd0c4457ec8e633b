// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/cimxml/http/TFault.h"

#include <gmock/gmock.h>

namespace diagstest {
namespace {

using NZEPQEL20::TServerOptions;
using NZEPQEL20::cimxml::THttpRequest;
using NZEPQEL20::cimxml::THttpSession;

void ExpectFaultAfter(const TFault& fault, int goodRequests) {
  TScriptedServer server;
  TServerOptions options = MakeOptions("http", server.GetPort());
  options.maxReplyBytes = fault.maxReplyBytes;
  THttpSession session(options);
  for (int i = 0; i < goodRequests; ++i) ASSERT_EQ(Try(session).kind, TOutcome::kGood);

  server.Queue(fault.play);
  THttpRequest request = MakeRequest();
  request.timeout = fault.timeout;
  TFault expected = fault;
  if (goodRequests == 0) expected.text += fault.hint;
  ExpectOutcome(Try(session, request), expected, options.url);

  const TOutcome next = Try(session);
  EXPECT_EQ(next.kind, TOutcome::kGood) << next.text;
  EXPECT_EQ(next.text, TScriptedServer::GetGoodBody());
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const TFault& fault) {
  return out << fault.name;
}

void ExpectOutcome(const TOutcome& outcome, const TFault& fault, const std::string& url) {
  EXPECT_EQ(outcome.kind, fault.kind) << outcome.text;
  EXPECT_EQ(outcome.code, fault.code);
  EXPECT_LT(outcome.elapsed, kMostTime);
  const std::string text = url + ": " + fault.text;
  if (text.back() == '~') {
    EXPECT_THAT(outcome.text, ::testing::StartsWith(text.substr(0, text.size() - 1)));
  } else {
    EXPECT_EQ(outcome.text, text);
  }
}

void ExpectFault(const TFault& fault) {
  {
    SCOPED_TRACE("on a new connection");
    ExpectFaultAfter(fault, 0);
  }
  // A connection is not open yet when such a fault strikes.
  if (fault.play.IsAtOnce()) return;
  SCOPED_TRACE("on a connection in use");
  ExpectFaultAfter(fault, 1);
}

}  // namespace diagstest
