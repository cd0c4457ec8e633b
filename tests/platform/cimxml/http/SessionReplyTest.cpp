// SPDX-License-Identifier: Apache-2.0
// Answers that are good, in all the shapes that servers give them.
#include <gtest/gtest.h>

#include <ostream>

#include "tests/platform/cimxml/http/TFault.h"

namespace diagstest {
namespace {

using NZEPQEL20::TQELStatusCode;
using NZEPQEL20::TServerOptions;
using NZEPQEL20::cimxml::THttpSession;
using std::chrono::milliseconds;

struct TGoodReply {
  const char* name;
  TPlay play;
  bool isKept = true;  // Whether the connection can serve the next request.
};

std::ostream& operator<<(std::ostream& out, const TGoodReply& row) {
  return out << row.name;
}

class GoodReplyTest : public ::testing::TestWithParam<TGoodReply> {};

TEST_P(GoodReplyTest, IsTakenAndTheNextRequestWorks) {
  TScriptedServer server;
  THttpSession session(MakeOptions("http", server.GetPort()));
  server.Queue(GetParam().play);
  const TOutcome outcome = Try(session);
  EXPECT_EQ(outcome.kind, TOutcome::kGood);
  EXPECT_EQ(outcome.text, "<CIM/>");
  EXPECT_EQ(outcome.trailers.cimStatus, 0U);
  EXPECT_EQ(Try(session).text, TScriptedServer::GetGoodBody());
  EXPECT_EQ(server.CountConnections(), GetParam().isKept ? 1 : 2);
}

TPlay Reply(const std::string& fields, const std::string& body = "<CIM/>") {
  return TPlay().Send("HTTP/1.1 200 OK\r\n" + fields + "\r\n" + body);
}

constexpr const char* kChunked = "Content-Type: application/xml\r\nTransfer-Encoding: chunked\r\n";

INSTANTIATE_TEST_SUITE_P(
    All, GoodReplyTest,
    ::testing::Values(
        TGoodReply{"LeadingZeros", Reply("content-length: 0000000006\r\n"
                                         "Content-Type: application/xml; charset=utf-8\r\n")},
        TGoodReply{"TheSameLengthTwice", Reply("Content-Length: 6\r\nContent-Length: 06\r\n")},
        TGoodReply{"NoType", Reply("Content-Length: 6\r\n")},
        TGoodReply{"TextXml",
                   Reply("Content-Length: 6\r\ncontent-type: TEXT/XML;charset=UTF-8\r\n")},
        TGoodReply{"OtherCase", Reply("Content-Length: 6\r\nCIMOPERATION: methodresponse\r\n")},
        TGoodReply{"Identity", Reply("Content-Length: 6\r\nContent-Encoding: identity\r\n")},
        TGoodReply{"EmptyCIMError", Reply("Content-Length: 6\r\nCIMError:\r\ncimerror: \t\r\n")},
        TGoodReply{"EmptyCIMErrorBehindTheBody",
                   Reply(kChunked, "6\r\n<CIM/>\r\n0\r\nCIMError: \r\n\r\n")},
        TGoodReply{"LineFeedsOnly", TPlay().Send("HTTP/1.1 200 OK\nContent-Length: 6\n\n<CIM/>")},
        TGoodReply{"Interim", TPlay().Send("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\n"
                                           "Content-Length: 6\r\n\r\n<CIM/>")},
        TGoodReply{"Chunks", Reply(kChunked, "1\r\n<\r\n5\r\nCIM/>\r\n0\r\n\r\n")},
        TGoodReply{"ChunksWithExtension", Reply(kChunked, "0006;x=\"y\"\r\n<CIM/>\r\n000\r\n\r\n")},
        TGoodReply{"ChunksAndLength", Reply(std::string(kChunked) + "Content-Length: 3\r\n",
                                            "6\r\n<CIM/>\r\n0\r\n\r\n")},
        TGoodReply{"ByteByByte",
                   TPlay().Trickle("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                                   "6\r\n<CIM/>\r\n0\r\n\r\n",
                                   milliseconds(1))},
        TGoodReply{"UpToTheEnd", Reply("Content-Type: text/xml\r\n").Close(), false},
        TGoodReply{"Http10", TPlay().Send("HTTP/1.0 200 OK\r\n\r\n<CIM/>").Close(), false},
        TGoodReply{"LengthAndClose", Reply("Content-Length: 6\r\nConnection: close\r\n").Close(),
                   false},
        TGoodReply{"EmptyTrailers",
                   Reply(kChunked, "6\r\n<CIM/>\r\n0\r\nCIMStatusCode: 0\r\n\r\n")}),
    [](const auto& row) { return row.param.name; });

class TrailersTest : public ::testing::Test {
 protected:
  TOutcome TryWith(const std::string& trailers) {
    m_server.Queue(Reply(std::string(kChunked) + "Trailer: CIMStatusCode\r\n",
                         "6\r\n<CIM/>\r\n0\r\n" + trailers + "\r\n"));
    return Try(m_session);
  }

  TScriptedServer m_server;
  TServerOptions m_options{MakeOptions("http", m_server.GetPort())};
  THttpSession m_session{m_options};
};

TEST_F(TrailersTest, AreHandedOut) {
  const TOutcome outcome =
      TryWith("cimstatuscode: 6\r\nCIMStatusCodeDescription: not%20found%0D%0Ahere\r\n");
  EXPECT_EQ(outcome.kind, TOutcome::kGood);
  EXPECT_EQ(outcome.text, "<CIM/>");
  EXPECT_EQ(outcome.trailers.cimStatus, 6U);
  EXPECT_EQ(outcome.trailers.description, "not found  here");
}

TEST_F(TrailersTest, AreHandedOutCut) {
  const TOutcome outcome =
      TryWith("CIMStatusCode: 1\r\nCIMStatusCodeDescription: " + std::string(4001, 'x') + "\r\n");
  EXPECT_EQ(outcome.trailers.description, std::string(4000, 'x') + "...");
}

TEST_F(TrailersTest, WithACIMErrorAreAFailure) {
  ExpectOutcome(TryWith("CIMError: request-not-valid\r\nPGErrorDetail: no%20more\r\n"),
                {"", TPlay(), TOutcome::kHttpError, TQELStatusCode::kFailed,
                 "the server broke off in the middle of its answer, CIMError request-not-valid: no "
                 "more"},
                m_options.url);
  EXPECT_EQ(Try(m_session).kind, TOutcome::kGood);
}

TEST_F(TrailersTest, WithAnUnusableStatusAreAFailure) {
  for (const char* status : {"-1", "six", "4294967296", ""}) {
    ExpectOutcome(
        TryWith(std::string("CIMStatusCode: ") + status + "\r\n"),
        {"", TPlay(), TOutcome::kOther, TQELStatusCode::kFailed,
         std::string("the answer ends with an unusable CIMStatusCode \"") + status + "\""},
        m_options.url);
  }
  EXPECT_EQ(TryWith("CIMStatusCode: 4294967295\r\n").trailers.cimStatus, 4294967295U);
}

TEST(SessionReplyTest, TakesAnAnswerOfExactlyTheLargestSize) {
  TScriptedServer server;
  TServerOptions options = MakeOptions("http", server.GetPort());
  options.maxReplyBytes = 100000;
  THttpSession session(options);
  const std::string most(100000, 'x');
  server.Queue(Reply("Content-Length: 100000\r\n", most));
  EXPECT_EQ(Try(session).text, most);
  server.Queue(Reply("", most).Close());
  EXPECT_EQ(Try(session).text, most);
  server.Queue(Reply("", most + "x").Close());
  EXPECT_EQ(Try(session).kind, TOutcome::kOther);
}

}  // namespace
}  // namespace diagstest
