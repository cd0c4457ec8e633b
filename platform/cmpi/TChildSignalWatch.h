// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <csignal>

namespace NZEPQEL20::cmpi {

/// Looks after SIGCHLD while code of a provider library runs: where a process ignores it, the
/// status of its child processes is lost to everybody who waits for one. Threads: the signal is the
/// process's; a change by another thread counts as one of this call's.
class TChildSignalWatch {
 public:
  /// `library` is the path for the log, and outlives this; NULL when it is not known.
  explicit TChildSignalWatch(const char* library) noexcept;
  /// Puts back what was there before, if SIGCHLD has become ignored since; tells so once for each
  /// library.
  ~TChildSignalWatch();
  TChildSignalWatch(const TChildSignalWatch&) = delete;
  TChildSignalWatch& operator=(const TChildSignalWatch&) = delete;

 private:
  const char* m_library;
  struct sigaction m_before = {};
};

}  // namespace NZEPQEL20::cmpi
