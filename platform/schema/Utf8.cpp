// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/Utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace NZEPQEL20 {

namespace {

constexpr unsigned int kReplacement = 0xFFFD;

unsigned int DecodeWindows1252(unsigned char byte) {
  constexpr std::array<unsigned int, 32> kFrom80 = {
      0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
      0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
      0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  return byte >= 0x80 && byte < 0xA0 ? kFrom80.at(byte - 0x80U) : byte;
}

}  // namespace

std::size_t GetUtf8Length(std::string_view text, std::size_t place) {
  const auto byte = [text](std::size_t at) {
    return at < text.size() ? static_cast<unsigned int>(static_cast<unsigned char>(text[at])) : 0U;
  };
  const unsigned int first = byte(place);
  const auto isTail = [&byte, place](std::size_t offset) {
    return (byte(place + offset) & 0xC0U) == 0x80U;
  };
  if (first < 0x80) {
    return 1;
  }
  if (first >= 0xC2 && first <= 0xDF) {
    return isTail(1) ? 2 : 0;
  }
  if (first >= 0xE0 && first <= 0xEF) {
    const bool isOverlong = first == 0xE0 && byte(place + 1) < 0xA0;
    const bool isSurrogate = first == 0xED && byte(place + 1) > 0x9F;
    return isTail(1) && isTail(2) && !isOverlong && !isSurrogate ? 3 : 0;
  }
  if (first >= 0xF0 && first <= 0xF4) {
    const bool isOverlong = first == 0xF0 && byte(place + 1) < 0x90;
    const bool isBeyond = first == 0xF4 && byte(place + 1) > 0x8F;
    return isTail(1) && isTail(2) && isTail(3) && !isOverlong && !isBeyond ? 4 : 0;
  }
  return 0;
}

void AppendUtf8(std::string& out, unsigned int codePoint) {
  if (codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) {
    codePoint = kReplacement;
  }
  const auto put = [&out](unsigned int byte) { out.push_back(static_cast<char>(byte)); };
  if (codePoint < 0x80) {
    put(codePoint);
  } else if (codePoint < 0x800) {
    put(0xC0U | (codePoint >> 6U));
    put(0x80U | (codePoint & 0x3FU));
  } else if (codePoint < 0x10000) {
    put(0xE0U | (codePoint >> 12U));
    put(0x80U | ((codePoint >> 6U) & 0x3FU));
    put(0x80U | (codePoint & 0x3FU));
  } else {
    put(0xF0U | (codePoint >> 18U));
    put(0x80U | ((codePoint >> 12U) & 0x3FU));
    put(0x80U | ((codePoint >> 6U) & 0x3FU));
    put(0x80U | (codePoint & 0x3FU));
  }
}

unsigned int DecodeUtf8(std::string_view text, std::size_t& length) {
  const auto byte = [text](std::size_t i) {
    return i < text.size() ? static_cast<unsigned int>(static_cast<unsigned char>(text[i])) : 0U;
  };
  const unsigned int first = byte(0);
  if (first < 0x80) {
    length = 1;
    return first;
  }
  if (first < 0xE0) {
    length = 2;
    return ((first & 0x1FU) << 6U) | (byte(1) & 0x3FU);
  }
  if (first < 0xF0) {
    length = 3;
    return ((first & 0x0FU) << 12U) | ((byte(1) & 0x3FU) << 6U) | (byte(2) & 0x3FU);
  }
  length = 4;
  return ((first & 0x07U) << 18U) | ((byte(1) & 0x3FU) << 12U) | ((byte(2) & 0x3FU) << 6U) |
         (byte(3) & 0x3FU);
}

std::string MendUtf8(std::string bytes, EByteText others) {
  std::string mended;
  std::size_t good = 0;
  std::size_t i = 0;
  while (i < bytes.size()) {
    // Nearly all is ASCII: eight bytes at a time.
    std::uint64_t word = 0;
    while (i + sizeof(word) <= bytes.size()) {
      std::memcpy(&word, bytes.data() + i, sizeof(word));
      if ((word & 0x8080808080808080U) != 0) {
        break;
      }
      i += sizeof(word);
    }
    if (i == bytes.size()) {
      break;
    }
    const std::size_t length = GetUtf8Length(bytes, i);
    if (length == 0) {
      mended.append(bytes, good, i - good);
      const auto byte = static_cast<unsigned char>(bytes[i]);
      AppendUtf8(mended, others == EByteText::kLatin1 ? byte : DecodeWindows1252(byte));
      good = i + 1;
    }
    i += std::max<std::size_t>(length, 1);
  }
  if (good == 0) {
    return bytes;
  }
  return mended.append(bytes, good, std::string::npos);
}

}  // namespace NZEPQEL20
