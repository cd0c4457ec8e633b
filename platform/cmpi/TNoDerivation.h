// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace NZEPQEL20::cmpi {

/// While it lives, this thread finds no instances of an association class by way of the objects
/// that it joins. References are found by way of the instances, too: neither may lead to the other
/// and back.
class TNoDerivation {
 public:
  TNoDerivation() : m_before(Current()) { Current() = true; }
  ~TNoDerivation() { Current() = m_before; }
  TNoDerivation(const TNoDerivation&) = delete;
  TNoDerivation& operator=(const TNoDerivation&) = delete;

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
