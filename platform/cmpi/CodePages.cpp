// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/CodePages.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "platform/cmpi/Border.h"
#include "platform/schema/Utf8.h"

namespace NZEPQEL20::cmpi {

namespace {

constexpr std::uint16_t kByteOrderMark = 0xFEFF;
constexpr std::uint16_t kSwappedMark = 0xFFFE;

[[noreturn]] void RefuseText(const char* page) {
  throw TBrokerFault(CMPI_RC_ERR_NOT_IN_CODEPAGE, std::string("the text is not in ") + page);
}

void RequireAscii(const std::string& text) {
  const bool isAscii = std::all_of(text.begin(), text.end(),
                                   [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  if (!isAscii) RefuseText("US-ASCII");
}

bool IsHighSurrogate(std::uint32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool IsLowSurrogate(std::uint32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

/// The units up to the zero one, in the machine's byte order and without a mark.
std::vector<std::uint16_t> ReadUnits(const char* text) {
  std::vector<std::uint16_t> units;
  bool isSwapped = false;
  for (std::size_t at = 0;; at += sizeof(std::uint16_t)) {
    std::uint16_t unit = 0;
    std::memcpy(&unit, text + at, sizeof unit);
    if (unit == 0) return units;
    if (at == 0 && (unit == kByteOrderMark || unit == kSwappedMark)) {
      isSwapped = unit == kSwappedMark;
      continue;
    }
    if (isSwapped) unit = static_cast<std::uint16_t>((unit << 8U) | (unit >> 8U));
    units.push_back(unit);
  }
}

std::string FromUtf16(const char* text) {
  const std::vector<std::uint16_t> units = ReadUnits(text);
  std::string result;
  for (std::size_t i = 0; i < units.size(); ++i) {
    std::uint32_t character = units[i];
    if (IsHighSurrogate(character) && i + 1 < units.size() && IsLowSurrogate(units[i + 1])) {
      character = 0x10000 + ((character - 0xD800) << 10U) + (units[++i] - 0xDC00U);
    } else if (IsHighSurrogate(character) || IsLowSurrogate(character)) {
      RefuseText("UTF-16");
    }
    AppendUtf8(result, character);
  }
  return result;
}

std::vector<char> ToUtf16(const std::string& text) {
  std::vector<char> bytes;
  const auto append = [&](std::uint32_t value) {
    const auto unit = static_cast<std::uint16_t>(value);
    const auto* start = reinterpret_cast<const char*>(&unit);
    bytes.insert(bytes.end(), start, start + sizeof unit);
  };
  for (std::string_view rest = text; !rest.empty();) {
    std::size_t length = 0;
    const std::uint32_t character = DecodeUtf8(rest, length);
    rest.remove_prefix(length);
    if (character < 0x10000) {
      append(character);
    } else {
      append(0xD800 + ((character - 0x10000) >> 10U));
      append(0xDC00 + ((character - 0x10000) & 0x3FFU));
    }
  }
  append(0);
  return bytes;
}

[[noreturn]] void RefusePage(CMPICodepageID page) {
  throw TBrokerFault(CMPI_RC_ERR_INVALID_PARAMETER,
                     "there is no code page " + std::to_string(static_cast<int>(page)));
}

}  // namespace

std::string FromCodePage(const char* text, CMPICodepageID page) {
  if (text == nullptr) throw TBrokerFault(CMPI_RC_ERR_INVALID_PARAMETER, "no text given");
  if (page == CMPI_CPID_UTF16) return FromUtf16(text);
  if (page != CMPI_CPID_SYSTEM && page != CMPI_CPID_USASCII) RefusePage(page);
  std::string given = text;
  if (page == CMPI_CPID_USASCII) RequireAscii(given);
  if (ToUtf8(given) != given) RefuseText("UTF-8");
  return given;
}

std::vector<char> ToCodePage(const std::string& text, CMPICodepageID page) {
  const std::string valid = ToUtf8(text);
  if (page == CMPI_CPID_UTF16) return ToUtf16(valid);
  if (page != CMPI_CPID_SYSTEM && page != CMPI_CPID_USASCII) RefusePage(page);
  if (page == CMPI_CPID_USASCII) RequireAscii(valid);
  std::vector<char> bytes(valid.begin(), valid.end());
  bytes.push_back('\0');
  return bytes;
}

}  // namespace NZEPQEL20::cmpi
