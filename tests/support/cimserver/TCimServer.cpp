// SPDX-License-Identifier: Apache-2.0
#include "tests/support/cimserver/TCimServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "tests/support/cimserver/TPeerConnection.h"

namespace cimserver {
namespace {

constexpr int kBacklog = 64;

void Need(int result, const std::string& what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
}

int BindTcp(std::uint16_t port) {
  const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  Need(listener, "socket");
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const int on = 1;
  ::setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0) {
    const int reason = errno;
    ::close(listener);
    throw std::system_error(reason, std::generic_category(), "port " + std::to_string(port));
  }
  return listener;
}

int BindUnix(const std::string& path) {
  sockaddr_un address{};
  if (path.size() >= sizeof address.sun_path) {
    throw std::system_error(ENAMETOOLONG, std::generic_category(), path);
  }
  const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  Need(listener, "socket");
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  if (::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0) {
    const int reason = errno;
    ::close(listener);
    throw std::system_error(reason, std::generic_category(), path);
  }
  return listener;
}

std::uint16_t FindPort(int listener) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  Need(::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), "getsockname");
  return ntohs(address.sin_port);
}

}  // namespace

TCimServer::TCimServer(std::shared_ptr<ICIMOperations> operations, TPeerOptions options)
    : m_options(std::move(options)),
      m_channels(m_options),
      m_handler(std::move(operations),
                {m_options.style, m_options.host, m_options.hasPull, m_options.beforeMethod}) {
  Listen();
  m_acceptor = std::thread([this] { Accept(); });
}

TCimServer::~TCimServer() {
  // Wakes the thread that waits for connections; no session is added after its end.
  ::shutdown(m_listener, SHUT_RDWR);
  m_acceptor.join();
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const TSession& session : m_sessions) {
      if (session.socket >= 0) ::shutdown(session.socket, SHUT_RDWR);
    }
  }
  for (TSession& session : m_sessions) session.thread.join();
  ::close(m_listener);
  if (!m_options.unixPath.empty()) ::unlink(m_options.unixPath.c_str());
}

void TCimServer::Listen() {
  const bool isUnix = !m_options.unixPath.empty();
  m_listener = isUnix ? BindUnix(m_options.unixPath) : BindTcp(m_options.port);
  Need(::listen(m_listener, kBacklog), "listen");
  if (!isUnix) m_port = FindPort(m_listener);
}

std::string TCimServer::GetUrl() const {
  if (!m_options.unixPath.empty()) return "unix://" + m_options.unixPath;
  const char* const scheme = m_options.certificate.empty() ? "http" : "https";
  return std::string(scheme) + "://127.0.0.1:" + std::to_string(m_port);
}

std::size_t TCimServer::CountRequests(const std::string& name) const {
  const auto counts = m_counts.GetRequests();
  const auto found = counts.find(name);
  return found != counts.end() ? found->second : 0;
}

std::size_t TCimServer::CountAllRequests() const {
  std::size_t sum = 0;
  for (const auto& [name, count] : m_counts.GetRequests()) sum += count;
  return sum;
}

void TCimServer::Accept() {
  for (;;) {
    const int socket = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket < 0 && (errno == EINTR || errno == ECONNABORTED)) continue;
    if (socket < 0) return;
    if (m_options.unixPath.empty()) {
      const int on = 1;
      ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
    m_counts.AddConnection();
    Reap();
    const std::lock_guard<std::mutex> lock(m_mutex);
    TSession& session = m_sessions.emplace_back();
    session.socket = socket;
    session.thread = std::thread([this, &session] { Serve(session); });
  }
}

// Lets go of the sessions that are over.
void TCimServer::Reap() {
  std::list<TSession> done;
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (auto session = m_sessions.begin(); session != m_sessions.end();) {
      const auto next = std::next(session);
      if (session->isDone) done.splice(done.end(), m_sessions, session);
      session = next;
    }
  }
  for (TSession& session : done) session.thread.join();
}

void TCimServer::Serve(TSession& session) {
  int socket = -1;
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    socket = session.socket;
  }
  const auto forget = [this, &session] {
    const std::lock_guard<std::mutex> lock(m_mutex);
    // The number may be another socket's as soon as this one is closed.
    session.socket = -1;
  };
  try {
    const std::unique_ptr<IChannel> channel = m_channels.Open(::dup(socket));
    if (channel) TPeerConnection(*channel, m_options, m_handler, m_counts).Serve();
  } catch (const std::exception&) {
    // Nobody is there to be told but the client, and to that one the connection just ends.
  }
  forget();
  ::close(socket);
  const std::lock_guard<std::mutex> lock(m_mutex);
  session.isDone = true;
}

}  // namespace cimserver
