// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/OneLine.h"

#include <algorithm>

namespace NZEPQEL20 {

std::string ToOneLine(std::string text) {
  constexpr std::size_t kMaxSize = 2000;
  if (text.size() > kMaxSize) {
    std::size_t end = kMaxSize;
    // Not within a character of several bytes.
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
    text.resize(end);
    text += "...";
  }
  std::replace_if(
      text.begin(), text.end(),
      [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }, ' ');
  return text;
}

}  // namespace NZEPQEL20
