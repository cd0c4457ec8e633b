// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <csignal>

namespace host {

/// Keeps the signals that end a run (SIGINT, SIGTERM, SIGHUP) from being delivered to this thread
/// and to those it starts, so that TSignalWatch can take them. One that the caller had ignored, as
/// nohup does, stays ignored and is not watched.
/// Threads: to be made before any other thread.
class TBlockedSignals {
 public:
  TBlockedSignals();
  /// Delivers from now on what the thread had let through before.
  ~TBlockedSignals();
  TBlockedSignals(const TBlockedSignals&) = delete;
  TBlockedSignals& operator=(const TBlockedSignals&) = delete;

  const sigset_t& GetSet() const { return m_set; }

 private:
  sigset_t m_set{};
  sigset_t m_before{};
};

/// Ends the process by `signal`, as if nobody handled, blocked or ignored it.
/// Threads: any; may be called in a handler of signals.
[[noreturn]] void EndBySignal(int signal) noexcept;

}  // namespace host
