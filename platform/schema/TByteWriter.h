// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace NZEPQEL20 {

/// Puts numbers (low byte first) and texts one behind the other, for a TByteReader.
class TByteWriter {
 public:
  void PutByte(std::uint8_t value) { m_bytes.push_back(static_cast<char>(value)); }
  void PutFlag(bool value) { PutByte(value ? 1 : 0); }
  void PutNumber(std::uint32_t value) { Put(value, sizeof(value)); }
  void PutLong(std::uint64_t value) { Put(value, sizeof(value)); }
  void PutSigned(std::int64_t value) { PutLong(static_cast<std::uint64_t>(value)); }
  void PutCount(std::size_t value) { PutNumber(static_cast<std::uint32_t>(value)); }
  void PutText(std::string_view text) {
    PutCount(text.size());
    m_bytes.append(text);
  }

  const std::string& GetBytes() const { return m_bytes; }
  std::string Take() { return std::exchange(m_bytes, {}); }

 private:
  void Put(std::uint64_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) {
      PutByte(static_cast<std::uint8_t>(value >> (8 * i)));
    }
  }

  std::string m_bytes;
};

}  // namespace NZEPQEL20
