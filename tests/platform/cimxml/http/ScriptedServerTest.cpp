// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

#include "tests/platform/cimxml/http/SessionTest.h"
#include "tests/platform/cimxml/http/TScriptedServer.h"

namespace diagstest {
namespace {

using std::chrono::milliseconds;

constexpr const char* kRequest = "POST / HTTP/1.1\r\nA: b\r\nContent-Length: 4\r\n\r\nbody";

// A client without opinions.
class TPlainClient {
 public:
  explicit TPlainClient(int port) : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  }
  explicit TPlainClient(const std::string& path)
      : m_socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(::connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  }
  ~TPlainClient() { ::close(m_socket); }
  TPlainClient(const TPlainClient&) = delete;
  TPlainClient& operator=(const TPlainClient&) = delete;

  void Send(const std::string& bytes) {
    EXPECT_EQ(::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(bytes.size()));
  }

  // `size` bytes, or fewer when the connection ends before.
  std::string Receive(std::size_t size) {
    std::string got(size, '\0');
    std::size_t count = 0;
    while (count < size) {
      const ssize_t piece = ::recv(m_socket, &got[count], size - count, 0);
      m_errno = piece < 0 ? errno : 0;
      if (piece <= 0) break;
      count += static_cast<std::size_t>(piece);
    }
    got.resize(count);
    return got;
  }

  int GetErrno() const { return m_errno; }

 private:
  int m_socket;
  int m_errno = 0;
};

TEST(ScriptedServerTest, AnswersWellWhenNothingElseIsQueued) {
  const TScriptedServer server;
  TPlainClient client(server.GetPort());
  const std::string good = TScriptedServer::GetGoodReply();
  for (int i = 0; i < 2; ++i) {
    client.Send(kRequest);
    EXPECT_EQ(client.Receive(good.size()), good);
  }
  EXPECT_EQ(server.CountConnections(), 1);
}

TEST(ScriptedServerTest, KeepsEveryRequestWithItsConnection) {
  const TScriptedServer server;
  const std::size_t size = TScriptedServer::GetGoodReply().size();
  for (int i = 1; i <= 2; ++i) {
    TPlainClient client(server.GetPort());
    client.Send("POST / HTTP/1.1\r\nA: b\r\nContent-");
    client.Send("Length: 4\r\n\r\nbo");
    client.Send("dy");
    client.Receive(size);
    ASSERT_EQ(server.GetRequests().size(), static_cast<std::size_t>(i));
    const TSeenRequest seen = server.GetRequests().back();
    EXPECT_EQ(seen.connection, i);
    EXPECT_EQ(seen.body, "body");
    EXPECT_TRUE(seen.HasLine("A: b"));
    EXPECT_TRUE(seen.HasLine("POST / HTTP/1.1"));
    EXPECT_FALSE(seen.HasLine("A:"));
  }
}

TEST(ScriptedServerTest, PlaysStepAfterStep) {
  TScriptedServer server;
  server.Queue(TPlay()
                   .Send("a")
                   .Repeat("bc", 3)
                   .Wait(milliseconds(30))
                   .Trickle("xyz", milliseconds(10))
                   .Close());
  TPlainClient client(server.GetPort());
  client.Send(kRequest);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(client.Receive(100), "abcbcbcxyz");
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(50));
  EXPECT_EQ(client.GetErrno(), 0);
  EXPECT_EQ(server.CountSentBytes(), 10U);
}

TEST(ScriptedServerTest, BreaksAConnectionSuchThatTheClientSeesAnError) {
  TScriptedServer server;
  server.Queue(TPlay().Reset());
  TPlainClient client(server.GetPort());
  client.Send(kRequest);
  EXPECT_EQ(client.Receive(1), "");
  EXPECT_EQ(client.GetErrno(), ECONNRESET);
}

TEST(ScriptedServerTest, TakesAPartOfARequest) {
  TScriptedServer server;
  server.Queue(TPlay().Take(5).Send("x"));
  TPlainClient client(server.GetPort());
  client.Send(kRequest);
  client.Send(std::string("12345") + kRequest);
  EXPECT_EQ(client.Receive(1), "x");
  client.Receive(TScriptedServer::GetGoodReply().size());
  ASSERT_EQ(server.GetRequests().size(), 2U);
  EXPECT_TRUE(server.GetRequests()[1].HasLine("POST / HTTP/1.1"));
}

TEST(ScriptedServerTest, ActsAtOnceWhenItIsToldTo) {
  TScriptedServer server;
  server.Queue(TPlay::AtOnce().Send("hello").Close());
  TPlainClient client(server.GetPort());
  EXPECT_EQ(client.Receive(100), "hello");
  EXPECT_TRUE(server.GetRequests().empty());
}

TEST(ScriptedServerTest, ListensOnASocketAndRemovesIt) {
  const TTemporaryFolder folder;
  const std::string path = folder.GetPath() + "/socket";
  {
    const TScriptedServer server(path);
    TPlainClient client(path);
    client.Send(kRequest);
    const std::string good = TScriptedServer::GetGoodReply();
    EXPECT_EQ(client.Receive(good.size()), good);
  }
  EXPECT_NE(::access(path.c_str(), F_OK), 0);
}

TEST(ScriptedServerTest, EndsInTheMiddleOfAnything) {
  auto server = std::make_unique<TScriptedServer>();
  server->Queue(TPlay().Hang());
  server->Queue(TPlay().Repeat(std::string(65536, 'x'), 100000));
  TPlainClient hanging(server->GetPort());
  hanging.Send(kRequest);
  while (server->GetRequests().empty()) std::this_thread::yield();
  TPlainClient flooded(server->GetPort());
  flooded.Send(kRequest);
  const TPlainClient silent(server->GetPort());
  while (server->CountSentBytes() == 0) std::this_thread::yield();
  const auto start = std::chrono::steady_clock::now();
  server.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
}  // namespace diagstest
