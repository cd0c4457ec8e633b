// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/ExitStatus.h"
#include "platform/setup/ProviderCalls.h"

namespace host {

/// What a watch over calls uses of the process.
struct TCallWatchWays {
  std::function<std::vector<NZEPQEL20::TProviderCallUnderWay>()> getCalls;
  std::function<void()> waitSecond;
  std::function<void(const std::string& line)> say;
  std::function<void(EExitStatus status)> leave;  ///< Ends the process.
};

/// Says which provider is waited for, once for each call that takes ten seconds, except while tests
/// run. Nothing is ended before the end: then, calls that are still under way after thirty seconds
/// are left, with the process.
/// Threads: Look() on one; the others on any.
class TCallWatch {
 public:
  /// Seconds of a call until it is told, and of the end until calls are left.
  static constexpr unsigned int kPatience = 10;
  static constexpr unsigned int kEndPatience = 30;

  explicit TCallWatch(TCallWatchWays ways) : m_ways(std::move(ways)) {}

  /// Tests run from now on, which take their time.
  void BeginTests();
  /// Everything is said, and providers are to end. If they do not, the process is left with
  /// `status`, and `reason` is said before unless it is empty.
  void BeginEnd(EExitStatus status, const std::string& reason = {});
  /// There is nothing to watch any more.
  void Stop();

  /// Waits for a second, and looks. False when it was stopped.
  bool Look();

 private:
  enum class EPhase { kAsking, kTesting, kEnding, kStopped };

  void Begin(EPhase phase);
  void TellSlow(const std::vector<NZEPQEL20::TProviderCallUnderWay>& calls);
  void Leave(const std::vector<NZEPQEL20::TProviderCallUnderWay>& calls);

  const TCallWatchWays m_ways;
  std::mutex m_mutex;
  EPhase m_phase = EPhase::kAsking;
  std::map<std::uint64_t, unsigned int> m_seconds;  ///< Of each call, by number.
  unsigned int m_endSeconds = 0;
  EExitStatus m_status = EExitStatus::kNotFinished;
  std::string m_reason;
};

/// A watch with a thread that looks until the object's end. The thread gets no signals; once it has
/// said at the end what is waited for, those that end a program reach it and end this one, whoever
/// blocks them. Without threads left, nothing is watched.
class TCallWatchThread {
 public:
  explicit TCallWatchThread(TCallWatchWays ways);
  /// Does not wait for the thread.
  ~TCallWatchThread();
  TCallWatchThread(const TCallWatchThread&) = delete;
  TCallWatchThread& operator=(const TCallWatchThread&) = delete;

  TCallWatch& Get() const { return *m_watch; }

 private:
  std::shared_ptr<TCallWatch> m_watch;
};

/// The ways of this process. A second of it is one of nanosleep().
TCallWatchWays GetCallWatchWays(
    std::function<std::vector<NZEPQEL20::TProviderCallUnderWay>()> getCalls);

}  // namespace host
