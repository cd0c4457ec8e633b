// SPDX-License-Identifier: Apache-2.0
// Servers that no connection leads to.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "tests/platform/cimxml/http/TFault.h"
#include "tests/support/ClosedFolder.h"

namespace diagstest {
namespace {

using NZEPQEL20::TQELStatusCode;
using NZEPQEL20::TServerOptions;
using NZEPQEL20::cimxml::THttpRequest;
using NZEPQEL20::cimxml::THttpSession;
using std::chrono::milliseconds;

// A port of this machine that is taken, and that does not listen, or never accepts anybody.
class TDeafPort {
 public:
  explicit TDeafPort(bool listens) : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(::bind(m_socket, plain, size), 0);
    EXPECT_EQ(::getsockname(m_socket, plain, &size), 0);
    if (listens) {
      EXPECT_EQ(::listen(m_socket, 8), 0);
    }
    m_port = ntohs(address.sin_port);
  }
  ~TDeafPort() { ::close(m_socket); }
  TDeafPort(const TDeafPort&) = delete;
  TDeafPort& operator=(const TDeafPort&) = delete;
  int GetPort() const { return m_port; }

 private:
  int m_socket;
  int m_port = 0;
};

// A UNIX socket with more connections waiting than its server wants.
class TFullSocket {
 public:
  explicit TFullSocket(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    m_sockets.push_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    EXPECT_EQ(::bind(m_sockets[0], plain, sizeof address), 0);
    EXPECT_EQ(::listen(m_sockets[0], 0), 0);
    do {
      m_sockets.push_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    } while (::connect(m_sockets.back(), plain, sizeof address) == 0);
    EXPECT_EQ(errno, EAGAIN);
  }
  ~TFullSocket() {
    for (const int socket : m_sockets) ::close(socket);
  }
  TFullSocket(const TFullSocket&) = delete;
  TFullSocket& operator=(const TFullSocket&) = delete;

 private:
  std::vector<int> m_sockets;
};

TFault NoConnection(const std::string& text) {
  return {"", TPlay(), TOutcome::kOther, TQELStatusCode::kConnection, text};
}

TEST(FaultConnectTest, NamesAPortThatNobodyListensOn) {
  const TDeafPort port(false);
  const TServerOptions options = MakeOptions("http", port.GetPort());
  THttpSession session(options);
  const TOutcome outcome = Try(session);
  ExpectOutcome(outcome, NoConnection("no connection: Failed to connect to 127.0.0.1 port ~"),
                options.url);
  EXPECT_THAT(outcome.text, ::testing::EndsWith("Couldn't connect to server; is the CIM server "
                                                "running, and are host and port right?"));
}

TEST(FaultConnectTest, NamesAHostThatDoesNotExist) {
  TServerOptions options;
  // Too long for a label, so that no name server is asked.
  const std::string host = std::string(64, 'x') + ".invalid";
  options.url = "http://" + host;
  THttpSession session(options);
  ExpectOutcome(Try(session),
                NoConnection("no connection: Could not resolve host: " + host +
                             "; is the host's name right?"),
                options.url);
}

TEST(FaultConnectTest, GivesUpOnAHandshakeThatIsNotAnswered) {
  const TDeafPort port(true);
  TServerOptions options = MakeOptions("https", port.GetPort());
  options.connectTimeout = milliseconds(200);
  THttpSession session(options);
  const std::string text = "no connection within 0.2 s; is the host right and reachable?";
  ExpectOutcome(Try(session), NoConnection(text), options.url);

  TServerOptions patient = MakeOptions("https", port.GetPort());
  THttpSession patientSession(patient);
  THttpRequest request = MakeRequest();
  request.timeout = milliseconds(200);
  ExpectOutcome(Try(patientSession, request), NoConnection(text), patient.url);
}

TEST(FaultConnectTest, RefusesARequestThatHasNoTimeLeft) {
  TScriptedServer server;
  const TServerOptions options = MakeOptions("http", server.GetPort());
  THttpSession session(options);
  THttpRequest request = MakeRequest();
  request.timeout = milliseconds(0);
  ExpectOutcome(Try(session, request), NoConnection("no time was left for the request"),
                options.url);
  EXPECT_TRUE(server.GetRequests().empty());
  EXPECT_EQ(Try(session).kind, TOutcome::kGood);
}

TEST(FaultConnectTest, ServesAgainAfterTheServerHasStarted) {
  const TTemporaryFolder folder;
  TServerOptions options;
  options.url = "unix://" + folder.GetPath() + "/cim.socket";
  THttpSession session(options);
  EXPECT_EQ(Try(session).kind, TOutcome::kOther);
  const TScriptedServer server(folder.GetPath() + "/cim.socket");
  EXPECT_EQ(Try(session).text, TScriptedServer::GetGoodBody());
}

TOutcome TrySocket(const std::string& path) {
  TServerOptions options;
  options.url = "unix://" + path;
  THttpSession session(options);
  return Try(session);
}

TEST(FaultConnectTest, NamesASocketThatIsNotThere) {
  const TTemporaryFolder folder;
  const std::string path = folder.GetPath() + "/cim.socket";
  ExpectOutcome(TrySocket(path),
                NoConnection("the socket " + path +
                             ": No such file or directory; is the CIM server running?"),
                "unix://" + path);
}

TEST(FaultConnectTest, NamesAFileThatIsNoSocket) {
  const TTemporaryFolder folder;
  const std::string path = folder.Write("file", "x");
  ExpectOutcome(TrySocket(path), NoConnection(path + " is not a socket"), "unix://" + path);
}

TEST(FaultConnectTest, NamesASocketThatNobodyListensOn) {
  const TTemporaryFolder folder;
  const std::string path = folder.GetPath() + "/old.socket";
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ::close(socket);
  ExpectOutcome(
      TrySocket(path),
      NoConnection("nobody listens on the socket " + path + "; is the CIM server running?"),
      "unix://" + path);
}

TEST(FaultConnectTest, NamesASocketWhoseServerHasTooManyWaiting) {
  const TTemporaryFolder folder;
  const std::string path = folder.GetPath() + "/full.socket";
  const TFullSocket socket(path);
  ExpectOutcome(TrySocket(path),
                NoConnection("the socket " + path +
                             " takes no more connections now; is the CIM server busy or stuck?"),
                "unix://" + path);
}

TEST(FaultConnectTest, NamesASocketThatMayNotBeUsed) {
  const TTemporaryFolder folder;
  const std::string path = folder.GetPath() + "/cim.socket";
  const TScriptedServer server(path);
  ASSERT_EQ(::chmod(path.c_str(), 0), 0);
  ASSERT_EQ(::chmod(folder.GetPath().c_str(), 0755), 0);
  const std::string closed = FindClosedFolder(folder.GetPath());
  if (::geteuid() == 0 && !closed.empty()) GTEST_SKIP() << closed << ": nobody else may enter it";
  const TOtherUser user(65534);
  ExpectOutcome(TrySocket(path), NoConnection("no permission to use the socket " + path),
                "unix://" + path);
}

}  // namespace
}  // namespace diagstest
