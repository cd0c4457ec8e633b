// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <curl/curl.h>

#include <csignal>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace NZEPQEL20::cimxml {

/// While it lives, writing to a connection that the other side has closed raises no SIGPIPE in
/// this thread: that signal would end a host that does not expect it.
class TPipeSignalShield {
 public:
  TPipeSignalShield();
  ~TPipeSignalShield();
  TPipeSignalShield(const TPipeSignalShield&) = delete;
  TPipeSignalShield& operator=(const TPipeSignalShield&) = delete;

 private:
  sigset_t m_oldMask{};
  bool m_wasPending = false;
};

/// Closes a handle, with its connection.
struct TCurlCleanup {
  void operator()(CURL* handle) const;
};
using TCurlHandle = std::unique_ptr<CURL, TCurlCleanup>;

/// The connections of one session: curl handles, each of which keeps one connection open.
/// Threads: safe from several; a handle belongs to whoever took it.
class TConnectionPool {
 public:
  /// `make` yields a handle that is ready for requests.
  explicit TConnectionPool(std::function<TCurlHandle()> make);

  /// A handle, with an open connection if there is one that the server has left alone.
  TCurlHandle Take();

  /// A handle that has no connection yet.
  TCurlHandle TakeFresh() const { return m_make(); }

  /// Takes a handle back that went through an exchange without failing.
  void Return(TCurlHandle handle);

  /// Closes all connections that nobody uses now.
  void DropIdle();

 private:
  TCurlHandle TakeIdle();

  std::function<TCurlHandle()> m_make;
  std::mutex m_mutex;
  std::vector<TCurlHandle> m_idle;
};

}  // namespace NZEPQEL20::cimxml
