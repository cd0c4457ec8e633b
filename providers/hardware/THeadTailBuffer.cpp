// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/THeadTailBuffer.h"

#include <algorithm>

namespace hardware {

void THeadTailBuffer::Append(std::string_view text) {
  const std::size_t toHead = std::min(text.size(), m_headBytes - m_head.size());
  m_head += text.substr(0, toHead);
  m_tail += text.substr(toHead);
  // Cut only when twice the size is reached: a cut per piece would move the tail each time.
  if (m_tail.size() > 2 * m_tailBytes) {
    const std::size_t surplus = m_tail.size() - m_tailBytes;
    m_tail.erase(0, surplus);
    m_droppedBytes += surplus;
  }
}

std::string THeadTailBuffer::GetText() const {
  if (m_droppedBytes == 0) return m_head + m_tail;
  return m_head + "\n[" + std::to_string(m_droppedBytes) + " bytes left out]\n" + m_tail;
}

}  // namespace hardware
