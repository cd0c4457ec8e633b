// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <ctime>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace scripted {

/// Leaves the scripted sleep() when a test sleeps more often than its budget: what would hang for
/// ever ends instead.
struct TSleepBudgetSpent : std::runtime_error {
  TSleepBudgetSpent() : std::runtime_error("the sleep budget of the test is spent") {}
};

/// The operating system as a test wants it: behind TOSSpecific, TRootObject, and libc's sleep(),
/// time() and system(). Without Start() the clock and sleep() are real; system() never runs a
/// command.
/// Threads: set up by one thread; the clock script answers only that thread.
class TScriptedSystem {
 public:
  using THook = std::function<void()>;

  static TScriptedSystem& Get();

  /// Takes over with everything at its default.
  void Start();
  /// Gives the real clock back.
  void Stop();

  std::string m_biosID;
  std::string m_root;
  bool m_isOEM = false;
  bool m_hasLogger = true;
  /// Sizes reported instead of the true ones, by path below the root.
  std::map<std::string, std::uint64_t> m_fileSizes;
  /// Calls of sleep() that are still allowed.
  int m_sleepBudget = 200;

  /// From now on the n-th call of time() on this thread answers with the n-th of `seconds`, later
  /// ones with the last; before it answers, the hook with its number (from 0) is called. Hooks
  /// must not throw.
  void ScriptClock(std::vector<std::time_t> seconds, std::map<std::size_t, THook> hooks);

  /// The path below the root; a path elsewhere as it is.
  std::string Shorten(const std::string& path) const;

  unsigned int Sleep(unsigned int seconds);
  std::time_t GetTime();

 private:
  bool m_isActive = false;
  std::thread::id m_clockThread;
  std::vector<std::time_t> m_seconds;
  std::map<std::size_t, THook> m_hooks;
  std::size_t m_ticks = 0;
};

}  // namespace scripted
