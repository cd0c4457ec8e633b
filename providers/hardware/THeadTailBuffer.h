// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace hardware {

/// Keeps the beginning and the end of a stream of any length in bounded memory.
class THeadTailBuffer {
 public:
  /// Keeps at least `headBytes` from the beginning and `tailBytes` from the end.
  THeadTailBuffer(std::size_t headBytes, std::size_t tailBytes)
      : m_headBytes(headBytes), m_tailBytes(tailBytes) {}

  void Append(std::string_view text);

  /// Everything, or the beginning and the end with a line between them that tells how many bytes
  /// were left out.
  std::string GetText() const;

 private:
  std::size_t m_headBytes;
  std::size_t m_tailBytes;
  std::uint64_t m_droppedBytes = 0;
  std::string m_head;
  std::string m_tail;
};

}  // namespace hardware
