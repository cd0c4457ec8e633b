// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <mutex>

namespace scripted {

/// Holds a method call until a test lets it go on.
/// Threads: made to be used from two.
class TGate {
 public:
  /// The call's side: says that it has come, then waits for Open(). Gives up after 20 s, so that a
  /// failing test ends.
  void Pass();

  /// The test's side. Errors: none; false when nobody came within 20 s.
  bool WaitUntilReached();
  void Open();

 private:
  std::mutex m_mutex;
  std::condition_variable m_changed;
  bool m_isReached = false;
  bool m_isOpen = false;
};

}  // namespace scripted
