// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace NZEPQEL20::cmpi {

/// While one of them lives, what `TMark` means holds on its thread; they nest.
/// Threads: made and destroyed on one, the later one first.
template <class TMark>
class TThreadMark {
 public:
  ~TThreadMark() { Current() = m_before; }
  TThreadMark(const TThreadMark&) = delete;
  TThreadMark& operator=(const TThreadMark&) = delete;

  /// Whether it holds on this thread.
  static bool Holds() { return Current(); }

 protected:
  /// Leaves things as they are where `holds` is false.
  explicit TThreadMark(bool holds) : m_before(Current()) { Current() = m_before || holds; }

 private:
  static bool& Current() {
    thread_local bool current = false;
    return current;
  }

  const bool m_before;
};

}  // namespace NZEPQEL20::cmpi
