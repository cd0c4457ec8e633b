// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unistd.h>

#include <utility>

namespace NZEPQEL20 {

/// A file descriptor, closed at the end of its life; below 0 for none.
/// Owns: the descriptor.
class TDescriptor {
 public:
  explicit TDescriptor(int number = -1) : m_number(number) {}
  TDescriptor(TDescriptor&& other) noexcept : m_number(other.Release()) {}
  TDescriptor& operator=(TDescriptor&& other) noexcept {
    std::swap(m_number, other.m_number);
    return *this;
  }
  ~TDescriptor() {
    if (m_number >= 0) {
      close(m_number);
    }
  }

  int Get() const { return m_number; }
  /// Hands the number over to the caller.
  int Release() noexcept { return std::exchange(m_number, -1); }
  bool IsOpen() const { return m_number >= 0; }

 private:
  int m_number;
};

}  // namespace NZEPQEL20
