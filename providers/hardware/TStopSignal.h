// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <chrono>

#include "providers/hardware/TFileDescriptor.h"

namespace hardware {

/// How a run is to be ended before its time; the later kinds outrank the earlier ones.
enum class EStop { kNone, kTerminate, kKill };

/// Carries the wish to end a run to the thread that makes it.
///
/// Threads: Request() from any, at any time.
class TStopSignal {
 public:
  /// Errors: std::system_error when the process has no file descriptor left.
  TStopSignal();

  /// Asks for an end; a weaker request after a stronger one changes nothing.
  void Request(EStop stop) noexcept;

  EStop Get() const { return m_stop.load(); }

  /// Readable from the first request on, for poll().
  int GetFd() const { return m_event.Get(); }

  /// Waits for a request, at most `time`; returns whether there is one.
  bool WaitFor(std::chrono::milliseconds time) const;

 private:
  TFileDescriptor m_event;
  std::atomic<EStop> m_stop{EStop::kNone};
};

}  // namespace hardware
