// SPDX-License-Identifier: Apache-2.0
#include "tests/host/TListener.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace host {
namespace {

constexpr int kPatienceMilliseconds = 30'000;

void Need(bool isGood, const char* what) {
  if (!isGood) throw std::system_error(errno, std::generic_category(), what);
}

bool WaitFor(int descriptor) {
  pollfd waiting{descriptor, POLLIN, 0};
  return ::poll(&waiting, 1, kPatienceMilliseconds) == 1;
}

}  // namespace

TListener::TListener() : m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  Need(m_listener >= 0, "socket");
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as the calls want it.
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  Need(::bind(m_listener, generic, size) == 0, "bind");
  Need(::listen(m_listener, 8) == 0, "listen");
  Need(::getsockname(m_listener, generic, &size) == 0, "getsockname");
  m_port = ntohs(address.sin_port);
}

TListener::~TListener() {
  if (m_connection >= 0) ::close(m_connection);
  ::close(m_listener);
}

std::string TListener::TakeRequest() {
  if (m_connection >= 0) ::close(m_connection);
  m_connection = -1;
  std::string request;
  if (!WaitFor(m_listener)) return request;
  m_connection = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
  Need(m_connection >= 0, "accept");
  while (request.find("\r\n\r\n") == std::string::npos && WaitFor(m_connection)) {
    std::array<char, 1024> buffer{};
    const ssize_t got = ::read(m_connection, buffer.data(), buffer.size());
    if (got <= 0) break;
    request.append(buffer.data(), static_cast<std::size_t>(got));
  }
  return request;
}

}  // namespace host
