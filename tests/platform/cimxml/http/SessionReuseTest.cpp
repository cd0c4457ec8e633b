// SPDX-License-Identifier: Apache-2.0
// Connections: when one is used again, when it must not be, and that nothing goes out twice.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "tests/platform/cimxml/http/SessionTest.h"

namespace diagstest {
namespace {

using NZEPQEL20::TServerOptions;
using NZEPQEL20::cimxml::IReplyBody;
using NZEPQEL20::cimxml::THttpRequest;
using NZEPQEL20::cimxml::THttpSession;
using std::chrono::milliseconds;

std::string Replace(std::string text, const std::string& from, const std::string& to) {
  return text.replace(text.find(from), from.size(), to);
}

class SessionReuseTest : public ::testing::Test {
 protected:
  TScriptedServer m_server;
  THttpSession m_session{MakeOptions("http", m_server.GetPort())};
};

TEST_F(SessionReuseTest, OneConnectionServesManyRequests) {
  for (int i = 0; i < 20; ++i) ASSERT_EQ(Try(m_session).kind, TOutcome::kGood);
  EXPECT_EQ(m_server.CountConnections(), 1);
}

TEST_F(SessionReuseTest, AMethodCallGetsAConnectionThatNobodyUsedBefore) {
  THttpRequest call = MakeRequest();
  call.isMethodCall = true;
  ASSERT_EQ(Try(m_session).kind, TOutcome::kGood);
  ASSERT_EQ(Try(m_session, call).kind, TOutcome::kGood);
  ASSERT_EQ(Try(m_session, call).kind, TOutcome::kGood);
  const std::vector<TSeenRequest> seen = m_server.GetRequests();
  ASSERT_EQ(seen.size(), 3U);
  EXPECT_EQ(seen[1].connection, 2);
  EXPECT_EQ(seen[2].connection, 3);
}

TEST_F(SessionReuseTest, ARequestThatWantsItGetsAFreshConnectionToo) {
  THttpRequest create = MakeRequest();
  create.wantsFreshConnection = true;
  ASSERT_EQ(Try(m_session).kind, TOutcome::kGood);
  ASSERT_EQ(Try(m_session, create).kind, TOutcome::kGood);
  ASSERT_EQ(Try(m_session, create).kind, TOutcome::kGood);
  const std::vector<TSeenRequest> seen = m_server.GetRequests();
  ASSERT_EQ(seen.size(), 3U);
  EXPECT_EQ(seen[1].connection, 2);
  EXPECT_EQ(seen[2].connection, 3);
}

// Asks once more in the middle of its own answer, so that there are two connections at once.
class TAskingBody : public IReplyBody {
 public:
  explicit TAskingBody(THttpSession& session) : m_session(session) {}
  void Take(const char* /*data*/, std::size_t /*size*/) override {
    EXPECT_EQ(Try(m_session).kind, TOutcome::kGood);
  }

 private:
  THttpSession& m_session;
};

TEST_F(SessionReuseTest, NoKeptConnectionIsTrustedAfterOneWasLost) {
  TAskingBody body(m_session);
  m_session.Exchange(MakeRequest(), body);
  ASSERT_EQ(m_server.CountConnections(), 2);
  ASSERT_EQ(Try(m_session).kind, TOutcome::kGood);
  ASSERT_EQ(m_server.CountConnections(), 2);

  m_server.Queue(TPlay().Close());
  ASSERT_EQ(Try(m_session).kind, TOutcome::kLost);
  ASSERT_EQ(Try(m_session).kind, TOutcome::kGood);
  // The one that was lost may have cost a further one in the attempt.
  EXPECT_GT(m_server.GetRequests().back().connection, 2);
}

TEST_F(SessionReuseTest, AsksForHttpsOnlyBeforeTheFirstGoodAnswer) {
  const std::string hint = "; when it never answers, does it want https?";
  THttpRequest request = MakeRequest();
  request.wantsFreshConnection = true;
  m_server.Queue(TPlay().Close());
  EXPECT_THAT(Try(m_session, request).text, testing::EndsWith("(nothing of it had come)" + hint));
  ASSERT_EQ(Try(m_session, request).kind, TOutcome::kGood);
  m_server.Queue(TPlay().Close());
  EXPECT_THAT(Try(m_session, request).text, testing::EndsWith("(nothing of it had come)"));
}

// The one thing that must never happen: a test that is started twice.
TEST_F(SessionReuseTest, ARequestThatWasReadAndNotAnsweredIsSeenOnce) {
  for (const bool isMethodCall : {true, false}) {
    for (const int goodRequests : {0, 1, 3}) {
      SCOPED_TRACE(testing::Message() << isMethodCall << goodRequests);
      TScriptedServer server;
      THttpSession session(MakeOptions("http", server.GetPort()));
      for (int i = 0; i < goodRequests; ++i) ASSERT_EQ(Try(session).kind, TOutcome::kGood);
      server.Queue(TPlay().Close());
      THttpRequest request = MakeRequest();
      request.isMethodCall = isMethodCall;
      request.body = "<CIM>only once</CIM>";
      EXPECT_EQ(Try(session, request).kind, TOutcome::kLost);
      ASSERT_EQ(server.GetRequests().size(), static_cast<std::size_t>(goodRequests) + 1);
      EXPECT_EQ(server.GetRequests().back().body, request.body);
      EXPECT_EQ(Try(session).kind, TOutcome::kGood);
      EXPECT_EQ(server.GetRequests().size(), static_cast<std::size_t>(goodRequests) + 2);
    }
  }
}

TEST_F(SessionReuseTest, ARequestThatWasReadInPartIsNotSentAgain) {
  for (const std::size_t size : {std::size_t{1000}, std::size_t{12} << 20U}) {
    TScriptedServer server;
    THttpSession session(MakeOptions("http", server.GetPort()));
    THttpRequest request = MakeRequest();
    request.body.assign(size, 'x');
    // The header of this request has less than 500 bytes.
    server.Queue(TPlay().Send(TScriptedServer::GetGoodReply()).Take(500).Reset());
    ASSERT_EQ(Try(session).kind, TOutcome::kGood);
    const TOutcome outcome = Try(session, request);
    EXPECT_EQ(outcome.kind, TOutcome::kLost) << outcome.text;
    EXPECT_EQ(Try(session).kind, TOutcome::kGood);
    const std::vector<TSeenRequest> seen = server.GetRequests();
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(seen[1].body, MakeRequest().body);
  }
}

TEST_F(SessionReuseTest, AnAnswerBeforeTheEndOfTheRequestIsRead) {
  m_server.Queue(TPlay::AtOnce().Send("HTTP/1.1 413 Too Large\r\n\r\n").Hang());
  THttpRequest request = MakeRequest();
  request.body.assign(std::size_t{12} << 20U, 'x');
  const TOutcome outcome = Try(m_session, request);
  EXPECT_EQ(outcome.httpStatus, 413) << outcome.text;
  EXPECT_LT(outcome.elapsed, std::chrono::seconds(30));
  EXPECT_EQ(Try(m_session).kind, TOutcome::kGood);
}

TEST_F(SessionReuseTest, AServerMayCloseAfterEachAnswer) {
  for (int i = 0; i < 5; ++i) {
    m_server.Queue(TPlay()
                       .Send(Replace(TScriptedServer::GetGoodReply(), "\r\n\r\n",
                                     "\r\nConnection: close\r\n\r\n"))
                       .Close());
    const TOutcome outcome = Try(m_session);
    ASSERT_EQ(outcome.kind, TOutcome::kGood) << outcome.text;
  }
  EXPECT_EQ(m_server.CountConnections(), 5);
}

TEST_F(SessionReuseTest, AServerMayCloseWithoutSayingSo) {
  for (int i = 0; i < 5; ++i) {
    m_server.Queue(TPlay().Send(TScriptedServer::GetGoodReply()).Close());
    const TOutcome outcome = Try(m_session);
    ASSERT_EQ(outcome.kind, TOutcome::kGood) << i << outcome.text;
    std::this_thread::sleep_for(milliseconds(20));
  }
  EXPECT_EQ(m_server.GetRequests().size(), 5U);
}

TEST_F(SessionReuseTest, AServerMayCloseAfterSomeRequests) {
  for (int i = 0; i < 9; ++i) {
    TPlay play;
    play.Send(TScriptedServer::GetGoodReply());
    if (i % 3 == 2) play.Close();
    m_server.Queue(play);
    const TOutcome outcome = Try(m_session);
    ASSERT_EQ(outcome.kind, TOutcome::kGood) << i << outcome.text;
    if (i % 3 == 2) std::this_thread::sleep_for(milliseconds(20));
  }
  EXPECT_EQ(m_server.CountConnections(), 3);
}

// What is left over from one answer must not become the start of the next.
TEST_F(SessionReuseTest, WhatComesBehindAnAnswerIsNeverTakenForTheNextOne) {
  const std::string forged = Replace(TScriptedServer::GetGoodReply(), "good", "evil");
  m_server.Queue(TPlay().Send(TScriptedServer::GetGoodReply() + forged));
  EXPECT_EQ(Try(m_session).text, TScriptedServer::GetGoodBody());
  EXPECT_EQ(Try(m_session).text, TScriptedServer::GetGoodBody());

  m_server.Queue(TPlay().Send(TScriptedServer::GetGoodReply()).Wait(milliseconds(20)).Send(forged));
  EXPECT_EQ(Try(m_session).text, TScriptedServer::GetGoodBody());
  std::this_thread::sleep_for(milliseconds(100));
  EXPECT_EQ(Try(m_session).text, TScriptedServer::GetGoodBody());
  EXPECT_EQ(m_server.CountConnections(), 3);
}

TEST_F(SessionReuseTest, SeveralThreadsHaveAConnectionEach) {
  std::vector<std::thread> threads;
  std::vector<int> failures(8, 0);
  for (int& failed : failures) {
    threads.emplace_back([&failed, this] {
      for (int i = 0; i < 10; ++i) {
        if (Try(m_session).text != TScriptedServer::GetGoodBody()) ++failed;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(failures, testing::Each(0));
  EXPECT_EQ(m_server.GetRequests().size(), 80U);
  EXPECT_LE(m_server.CountConnections(), 80);
}

class TThrowingBody : public IReplyBody {
 public:
  void Take(const char* /*data*/, std::size_t /*size*/) override { throw 42; }
};

TEST_F(SessionReuseTest, WhatTheReceiverThrowsComesBackUnchanged) {
  TThrowingBody body;
  try {
    m_session.Exchange(MakeRequest(), body);
    FAIL() << "nothing was thrown";
  } catch (int thrown) {
    EXPECT_EQ(thrown, 42);
  }
  EXPECT_EQ(Try(m_session).kind, TOutcome::kGood);
  EXPECT_EQ(m_server.CountConnections(), 2);
}

TEST_F(SessionReuseTest, AnAnswerTooLargeIsNotReadToItsEnd) {
  TServerOptions options = MakeOptions("http", m_server.GetPort());
  options.maxReplyBytes = 100000;
  THttpSession session(options);
  constexpr std::size_t kPieces = 1600;
  m_server.Queue(TPlay()
                     .Send("HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\n\r\n")
                     .Repeat(std::string(65536, 'x'), kPieces));
  TCollectedBody body;
  EXPECT_THROW(session.Exchange(MakeRequest(), body), NZEPQEL20::TQELException);
  EXPECT_LE(body.GetText().size(), 100000U);
  // What sockets buffer on both sides is some megabytes at most.
  EXPECT_LT(m_server.CountSentBytes(), kPieces * 65536 / 4);
}

}  // namespace
}  // namespace diagstest
