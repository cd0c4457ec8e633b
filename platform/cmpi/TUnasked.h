// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace NZEPQEL20::cmpi {

/// While it lives, this thread asks providers what nobody wanted to know, in the hope of more than
/// a provider has answered. Their failures are no problem of anyone's then: only the log has them.
class TUnasked {
 public:
  explicit TUnasked(bool isUnasked) : m_before(Current()) { Current() = m_before || isUnasked; }
  ~TUnasked() { Current() = m_before; }
  TUnasked(const TUnasked&) = delete;
  TUnasked& operator=(const TUnasked&) = delete;

  /// Whether there is one on this thread.
  static bool Holds() { return Current(); }

 private:
  static bool& Current() {
    thread_local bool current = false;
    return current;
  }

  bool m_before;
};

}  // namespace NZEPQEL20::cmpi
