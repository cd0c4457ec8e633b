// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {

/// Bytes are not what a TByteWriter and the one who used it have written.
struct TDamagedError : TQELException {
  TDamagedError() : TQELException(TQELStatusCode::kFailed, "the schema cache is damaged") {}
};

/// Takes apart what a TByteWriter has put together. Nothing beyond the bytes is read, and nothing
/// larger than them is made room for.
/// Errors: TDamagedError from every operation.
class TByteReader {
 public:
  explicit TByteReader(std::string_view bytes) : m_bytes(bytes) {}

  std::uint8_t TakeByte() { return static_cast<std::uint8_t>(TakeBytes(1)[0]); }
  bool TakeFlag() { return TakeUpTo(1) == 1; }
  /// A byte that is not above `most`.
  std::uint8_t TakeUpTo(std::uint8_t most) {
    const std::uint8_t value = TakeByte();
    if (value > most) {
      throw TDamagedError();
    }
    return value;
  }
  std::uint32_t TakeNumber() {
    return static_cast<std::uint32_t>(Assemble(TakeBytes(sizeof(std::uint32_t))));
  }
  std::uint64_t TakeLong() { return Assemble(TakeBytes(sizeof(std::uint64_t))); }
  std::int64_t TakeSigned() { return static_cast<std::int64_t>(TakeLong()); }
  /// A number of items, each of at least `least` bytes: as many as the rest can hold.
  std::size_t TakeCount(std::size_t least) {
    const std::size_t count = TakeNumber();
    if (count > m_bytes.size() / least) {
      throw TDamagedError();
    }
    return count;
  }
  std::string TakeText() { return std::string(TakeBytes(TakeNumber())); }

  /// To be called when everything has been taken.
  void Finish() const {
    if (!m_bytes.empty()) {
      throw TDamagedError();
    }
  }

 private:
  std::string_view TakeBytes(std::size_t count) {
    if (count > m_bytes.size()) {
      throw TDamagedError();
    }
    const std::string_view taken = m_bytes.substr(0, count);
    m_bytes.remove_prefix(count);
    return taken;
  }
  static std::uint64_t Assemble(std::string_view bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      value |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
    }
    return value;
  }

  std::string_view m_bytes;
};

}  // namespace NZEPQEL20
