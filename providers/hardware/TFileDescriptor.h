// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unistd.h>

#include <utility>

namespace hardware {

/// Owns one file descriptor and closes it; -1 is none.
class TFileDescriptor {
 public:
  TFileDescriptor() = default;
  explicit TFileDescriptor(int number) : m_number(number) {}
  TFileDescriptor(TFileDescriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
  TFileDescriptor& operator=(TFileDescriptor&& other) noexcept {
    std::swap(m_number, other.m_number);
    return *this;
  }
  TFileDescriptor(const TFileDescriptor&) = delete;
  TFileDescriptor& operator=(const TFileDescriptor&) = delete;
  ~TFileDescriptor() { Close(); }

  int Get() const { return m_number; }
  bool IsOpen() const { return m_number >= 0; }
  /// Gives the number away, to an owner that closes it.
  int Release() noexcept { return std::exchange(m_number, -1); }
  void Close() noexcept {
    if (m_number >= 0) ::close(std::exchange(m_number, -1));
  }

 private:
  int m_number = -1;
};

}  // namespace hardware
