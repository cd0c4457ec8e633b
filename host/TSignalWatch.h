// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "host/TBlockedSignals.h"

namespace host {

/// Ends running tests when a signal asks for it.
///
/// Before BeginTests() there is nothing to end: a signal ends the process at once, with a line on
/// standard error and the status of a run that did not finish. Afterwards, the first signal makes
/// IsInterrupted() true and calls `kill`, again every second until the watch ends: a test may have
/// been about to start. A second signal ends the process by that signal, after one more call that
/// is given two seconds. Threads: has two of its own; `kill` is called on one of them.
class TSignalWatch {
 public:
  /// `signals` and what `kill` uses must outlive the watch.
  /// Errors: std::system_error when the system lacks descriptors or threads.
  TSignalWatch(const TBlockedSignals& signals, std::function<void()> kill);
  ~TSignalWatch();
  TSignalWatch(const TSignalWatch&) = delete;
  TSignalWatch& operator=(const TSignalWatch&) = delete;

  /// From now on there may be a test to end.
  void BeginTests();

  bool IsInterrupted() const { return m_isInterrupted; }

 private:
  void Watch();
  void KillRepeatedly();
  void HandleSignal(int signal);
  void WaitForOneMoreKill();
  void LeaveUnlessBegun();

  std::function<void()> m_kill;
  int m_signals = -1;
  int m_stop = -1;
  std::atomic<bool> m_isInterrupted{false};
  std::mutex m_mutex;
  std::condition_variable m_changed;
  bool m_isStopping = false;
  bool m_hasBegun = false;
  unsigned int m_wanted = 0;  ///< Calls of `kill` that were asked for ...
  unsigned int m_done = 0;    ///< ... and the number of the last request that a call has served.
  std::thread m_killer;
  std::thread m_watcher;
};

}  // namespace host
