// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/TConnectionPool.h"

#include <sys/socket.h>

#include <cerrno>
#include <ctime>
#include <utility>

namespace NZEPQEL20::cimxml {
namespace {

// Some servers give a process of its own to each connection, and have few.
constexpr std::size_t kMostIdle = 4;

bool IsPipeSignalPending() {
  sigset_t pending;
  ::sigpending(&pending);
  return sigismember(&pending, SIGPIPE) == 1;
}

// A server says nothing on an idle connection, so what can be read from one is its end, or a rest
// of the last answer, which would be taken for the start of the next.
bool IsQuiet(CURL* handle) {
  curl_socket_t socket = CURL_SOCKET_BAD;
  curl_easy_getinfo(handle, CURLINFO_ACTIVESOCKET, &socket);
  if (socket == CURL_SOCKET_BAD) return true;
  char byte = 0;
  const ssize_t got = ::recv(socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
  return got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
}

}  // namespace

TPipeSignalShield::TPipeSignalShield() : m_wasPending(IsPipeSignalPending()) {
  sigset_t mask;
  sigemptyset(&mask);
  sigaddset(&mask, SIGPIPE);
  ::pthread_sigmask(SIG_BLOCK, &mask, &m_oldMask);
}

TPipeSignalShield::~TPipeSignalShield() {
  if (!m_wasPending && IsPipeSignalPending()) {
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, SIGPIPE);
    const timespec atOnce{};
    while (::sigtimedwait(&mask, nullptr, &atOnce) < 0 && errno == EINTR) {
    }
  }
  ::pthread_sigmask(SIG_SETMASK, &m_oldMask, nullptr);
}

void TCurlCleanup::operator()(CURL* handle) const {
  const TPipeSignalShield shield;
  curl_easy_cleanup(handle);
}

TConnectionPool::TConnectionPool(std::function<TCurlHandle()> make) : m_make(std::move(make)) {}

TCurlHandle TConnectionPool::Take() {
  while (TCurlHandle handle = TakeIdle()) {
    if (IsQuiet(handle.get())) return handle;
  }
  return m_make();
}

TCurlHandle TConnectionPool::TakeIdle() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_idle.empty()) return nullptr;
  TCurlHandle handle = std::move(m_idle.back());
  m_idle.pop_back();
  return handle;
}

void TConnectionPool::Return(TCurlHandle handle) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  // A handle over the limit is closed by its owner, after the lock is gone.
  if (m_idle.size() < kMostIdle) m_idle.push_back(std::move(handle));
}

void TConnectionPool::DropIdle() {
  // Closing may have to say goodbye to the server, which nobody else shall wait for.
  std::vector<TCurlHandle> dropped;
  const std::lock_guard<std::mutex> lock(m_mutex);
  dropped.swap(m_idle);
}

}  // namespace NZEPQEL20::cimxml
