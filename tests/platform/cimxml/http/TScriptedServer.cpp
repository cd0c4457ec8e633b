// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/cimxml/http/TScriptedServer.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace diagstest {
namespace {

constexpr std::size_t kMaxRequest = std::size_t{16} << 20U;

void Require(bool isGood, const char* what) {
  if (!isGood) {
    throw std::runtime_error(std::string("scripted server: ") + what + ": " + std::strerror(errno));
  }
}

// The other side sees an error instead of an orderly end.
void ResetOnClose(int socket) {
  const linger atOnce{1, 0};
  ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

int ListenOnPort(int& port) {
  const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  Require(listener >= 0, "socket");
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const plain = reinterpret_cast<sockaddr*>(&address);
  Require(::bind(listener, plain, size) == 0, "bind");
  Require(::listen(listener, 64) == 0, "listen");
  Require(::getsockname(listener, plain, &size) == 0, "getsockname");
  port = ntohs(address.sin_port);
  return listener;
}

int ListenOnPath(const std::string& path) {
  const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  Require(listener >= 0, "socket");
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  Require(path.size() < sizeof address.sun_path, "path");
  std::copy(path.begin(), path.end(), address.sun_path);
  Require(::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, "bind");
  Require(::listen(listener, 64) == 0, "listen");
  return listener;
}

// The number behind a field that is there.
std::size_t GetContentLength(const std::string& head) {
  const std::size_t at = head.find("\r\nContent-Length:");
  return at == std::string::npos ? 0 : std::stoul(head.substr(at + 17));
}

}  // namespace

TPlay TPlay::AtOnce() {
  TPlay play;
  play.m_isAtOnce = true;
  return play;
}

TPlay& TPlay::Send(const std::string& bytes) {
  return Repeat(bytes, 1);
}

TPlay& TPlay::Repeat(const std::string& bytes, std::size_t count) {
  m_steps.push_back({EStep::kSend, bytes, count});
  return *this;
}

TPlay& TPlay::Trickle(const std::string& bytes, std::chrono::milliseconds pause) {
  m_steps.push_back({EStep::kTrickle, bytes, 1, pause});
  return *this;
}

TPlay& TPlay::Take(std::size_t size) {
  m_steps.push_back({EStep::kTake, "", size});
  return *this;
}

TPlay& TPlay::Wait(std::chrono::milliseconds time) {
  m_steps.push_back({EStep::kWait, "", 0, time});
  return *this;
}

TPlay& TPlay::Hang() {
  return Wait(std::chrono::hours(1));
}

TPlay& TPlay::Close() {
  m_steps.push_back({EStep::kClose, ""});
  return *this;
}

TPlay& TPlay::Reset() {
  m_steps.push_back({EStep::kReset, ""});
  return *this;
}

bool TSeenRequest::HasLine(const std::string& line) const {
  return ("\r\n" + head).find("\r\n" + line + "\r\n") != std::string::npos;
}

TScriptedServer::TScriptedServer() : m_listener(ListenOnPort(m_port)) {
  Start();
}

TScriptedServer::TScriptedServer(const TTlsSettings& tls)
    : m_tls(std::make_unique<TTlsSettings>(tls)), m_listener(ListenOnPort(m_port)) {
  Start();
}

TScriptedServer::TScriptedServer(const std::string& socketPath)
    : m_socketPath(socketPath), m_listener(ListenOnPath(socketPath)) {
  Start();
}

void TScriptedServer::Start() {
  Require(::pipe(m_stopPipe) == 0, "pipe");
  m_acceptor = std::thread([this] { AcceptAll(); });
}

TScriptedServer::~TScriptedServer() {
  // An end of the pipe that is closed is readable to every thread that looks at the other one.
  ::close(m_stopPipe[1]);
  m_acceptor.join();
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const int cord : m_cords) ::shutdown(cord, SHUT_RDWR);
  }
  for (std::thread& thread : m_threads) thread.join();
  ::close(m_stopPipe[0]);
  ::close(m_listener);
  if (!m_socketPath.empty()) ::unlink(m_socketPath.c_str());
}

std::string TScriptedServer::GetGoodBody() {
  return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM>good</CIM>\n";
}

std::string TScriptedServer::GetGoodReply() {
  return "HTTP/1.1 200 OK\r\nContent-Type: application/xml; charset=\"utf-8\"\r\n"
         "Content-Length: " +
         std::to_string(GetGoodBody().size()) + "\r\nCIMOperation: MethodResponse\r\n\r\n" +
         GetGoodBody();
}

void TScriptedServer::Queue(const TPlay& play) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_plays.push_back(play);
}

std::vector<TSeenRequest> TScriptedServer::GetRequests() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_requests;
}

int TScriptedServer::CountConnections() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_connections;
}

std::size_t TScriptedServer::CountSentBytes() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_sentBytes;
}

void TScriptedServer::AcceptAll() {
  // Threads made here inherit it: OpenSSL writes to connections that are gone.
  sigset_t pipeSignal;
  sigemptyset(&pipeSignal);
  sigaddset(&pipeSignal, SIGPIPE);
  ::pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);
  for (;;) {
    pollfd watched[2] = {{m_listener, POLLIN, 0}, {m_stopPipe[0], POLLIN, 0}};
    if (::poll(watched, 2, -1) < 0 && errno != EINTR) return;
    if (watched[1].revents != 0) return;
    if (watched[0].revents == 0) continue;
    const int socket = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket < 0) continue;
    // A second name for the connection, by which the server's end cuts it off.
    const int cord = ::dup(socket);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_cords.insert(cord);
    const int connection = ++m_connections;
    m_threads.emplace_back([=] { Serve(socket, cord, connection); });
  }
}

void TScriptedServer::Serve(int socket, int cord, int connection) {
  try {
    ServeUntilEnd(socket, connection);
  } catch (const std::exception& e) {
    ADD_FAILURE() << e.what();
  }
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_cords.erase(cord);
  ::close(cord);
}

void TScriptedServer::ServeUntilEnd(int socket, int connection) {
  TPlay atOnce;
  const bool isAtOnce = TakePlayAtOnce(atOnce);
  const std::unique_ptr<IServerStream> stream =
      OpenStream(socket, isAtOnce ? nullptr : m_tls.get());
  if (!stream) return;
  TConversation conversation{*stream, {}};
  if (Act(conversation, atOnce)) Converse(conversation, connection);
}

void TScriptedServer::Converse(TConversation& conversation, int connection) {
  TSeenRequest request;
  request.connection = connection;
  while (ReadRequest(conversation, request)) {
    {
      const std::lock_guard<std::mutex> lock(m_mutex);
      m_requests.push_back(request);
    }
    if (!Act(conversation, TakePlay())) return;
  }
}

bool TScriptedServer::ReadRequest(TConversation& conversation, TSeenRequest& request) const {
  std::string& input = conversation.input;
  char buffer[16384];
  for (;;) {
    const std::size_t end = input.find("\r\n\r\n");
    if (end != std::string::npos) {
      request.head = input.substr(0, end + 4);
      const std::size_t size = end + 4 + GetContentLength(request.head);
      if (input.size() >= size) {
        request.body = input.substr(end + 4, size - end - 4);
        input.erase(0, size);
        return true;
      }
    }
    const bool hasRoom = input.size() < kMaxRequest;
    const std::size_t got = hasRoom ? conversation.stream.Read(buffer, sizeof buffer) : 0;
    if (got == 0) return false;
    input.append(buffer, got);
  }
}

bool TScriptedServer::TakePlayAtOnce(TPlay& play) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_plays.empty() || !m_plays.front().IsAtOnce()) return false;
  play = m_plays.front();
  m_plays.pop_front();
  return true;
}

TPlay TScriptedServer::TakePlay() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_plays.empty() || m_plays.front().IsAtOnce()) return TPlay().Send(GetGoodReply());
  TPlay play = m_plays.front();
  m_plays.pop_front();
  return play;
}

bool TScriptedServer::Act(TConversation& conversation, const TPlay& play) {
  for (const TPlay::TStep& step : play.GetSteps()) {
    if (!ActStep(conversation, step)) return false;
  }
  return true;
}

// False when the connection is over.
bool TScriptedServer::ActStep(TConversation& conversation, const TPlay::TStep& step) {
  IServerStream& stream = conversation.stream;
  switch (step.kind) {
    case TPlay::EStep::kSend:
      for (std::size_t i = 0; i < step.count; ++i) {
        if (!SendCounted(stream, step.bytes)) return false;
      }
      return true;
    case TPlay::EStep::kTrickle:
      for (const char byte : step.bytes) {
        if (!SendCounted(stream, std::string(1, byte))) return false;
        if (!WaitFor(stream, step.pause)) return false;
      }
      return true;
    case TPlay::EStep::kTake:
      return TakeBytes(conversation, step.count);
    case TPlay::EStep::kWait:
      return WaitFor(stream, step.pause);
    case TPlay::EStep::kClose:
      stream.Close();
      return false;
    case TPlay::EStep::kReset:
      ResetOnClose(stream.GetSocket());
      return false;
  }
  return false;
}

bool TScriptedServer::SendCounted(IServerStream& stream, const std::string& bytes) {
  if (!stream.Write(bytes.data(), bytes.size())) return false;
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_sentBytes += bytes.size();
  return true;
}

bool TScriptedServer::TakeBytes(TConversation& conversation, std::size_t size) const {
  std::string& input = conversation.input;
  char buffer[4096];
  while (input.size() < size) {
    const std::size_t got = conversation.stream.Read(buffer, sizeof buffer);
    if (got == 0) return false;
    input.append(buffer, got);
  }
  input.erase(0, size);
  return true;
}

// False when the server ends, or the other side has gone.
bool TScriptedServer::WaitFor(const IServerStream& stream, std::chrono::milliseconds time) const {
  pollfd watched[2] = {{m_stopPipe[0], POLLIN, 0}, {stream.GetSocket(), POLLRDHUP, 0}};
  return ::poll(watched, 2, static_cast<int>(time.count())) == 0;
}

}  // namespace diagstest
