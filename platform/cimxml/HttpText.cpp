// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/HttpText.h"

#include <algorithm>

#include "platform/cimxml/XmlText.h"

namespace NZEPQEL20::cimxml {
namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

// Not those of <cctype>: what a header means does not depend on the host's locale.
char ToLower(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                              : character;
}

bool IsUnreserved(char character) {
  const char lower = ToLower(character);
  return (lower >= 'a' && lower <= 'z') || (character >= '0' && character <= '9') ||
         std::string_view("-._~").find(character) != std::string_view::npos;
}

// Value of a hexadecimal digit, -1 for anything else.
int GetHexValue(char character) {
  if (character >= '0' && character <= '9') return character - '0';
  const char lower = ToLower(character);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Of the characters that XML allows, these still have no place in one line of text.
bool IsLineBlank(char character) {
  return character == '\t' || character == '\n' || character == '\r';
}

// U+0080 to U+009F: control characters that a terminal may obey.
bool IsLateControl(std::string_view text) {
  return text.size() == 2 && text[0] == '\xC2' && static_cast<unsigned char>(text[1]) < 0xA0;
}

}  // namespace

std::string PercentEncode(std::string_view text) {
  std::string encoded;
  encoded.reserve(text.size());
  for (const char character : text) {
    if (IsUnreserved(character)) {
      encoded += character;
      continue;
    }
    const auto byte = static_cast<unsigned char>(character);
    encoded += '%';
    encoded += kHexDigits[byte >> 4U];
    encoded += kHexDigits[byte & 0xFU];
  }
  return encoded;
}

std::string PercentDecode(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isCode = text[i] == '%' && i + 2 < text.size() && GetHexValue(text[i + 1]) >= 0 &&
                        GetHexValue(text[i + 2]) >= 0;
    if (!isCode) {
      decoded += text[i];
      continue;
    }
    decoded += static_cast<char>(GetHexValue(text[i + 1]) * 16 + GetHexValue(text[i + 2]));
    i += 2;
  }
  return decoded;
}

std::string MakeSafe(std::string_view text, std::size_t maxBytes) {
  std::string safe;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t size = GetXmlCharacterSize(text.substr(i));
    std::string_view character = text.substr(i, size);
    if (size == 0 || character == "\x7F" || IsLateControl(character)) {
      character = "?";
    } else if (IsLineBlank(text[i])) {
      character = " ";
    }
    if (safe.size() + character.size() > maxBytes) return safe + "...";
    safe.append(character);
    i += std::max<std::size_t>(size, 1);
  }
  return safe;
}

bool EqualsNoCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return ToLower(a) == ToLower(b); });
}

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string DescribeTime(std::chrono::milliseconds time) {
  const auto count = time.count();
  std::string text = std::to_string(count / 1000);
  if (count % 1000 != 0) {
    std::string fraction = std::to_string(1000 + count % 1000).substr(1);
    fraction.erase(fraction.find_last_not_of('0') + 1);
    text += "." + fraction;
  }
  return text + " s";
}

std::string DescribeBytes(std::uint64_t count) {
  return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

}  // namespace NZEPQEL20::cimxml
