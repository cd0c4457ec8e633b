// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unistd.h>

#include <utility>

namespace NZEPQEL20::setup {

/// An open file's number, closed at the end.
/// Owns: the number.
class TDescriptor {
 public:
  explicit TDescriptor(int number = -1) : m_number(number) {}
  ~TDescriptor() {
    if (m_number >= 0) ::close(m_number);
  }
  TDescriptor(TDescriptor&& other) noexcept : m_number(other.Release()) {}
  TDescriptor& operator=(TDescriptor&& other) noexcept {
    std::swap(m_number, other.m_number);
    return *this;
  }

  /// Negative when there is none.
  int Get() const { return m_number; }
  /// Hands the number over to the caller.
  int Release() { return std::exchange(m_number, -1); }

 private:
  int m_number;
};

}  // namespace NZEPQEL20::setup
