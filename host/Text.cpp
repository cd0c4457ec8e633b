// SPDX-License-Identifier: Apache-2.0
#include "host/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

namespace host {
namespace {

// A decoded character and the bytes it took; no bytes for what is not UTF-8.
struct TDecoded {
  std::uint32_t character = 0;
  std::size_t size = 0;
};

bool IsContinuation(unsigned char byte) {
  return (byte & 0xC0U) == 0x80U;
}

// Length that the first byte announces, and the smallest character that needs it.
struct TForm {
  std::size_t size;
  std::uint32_t first;
  std::uint32_t smallest;
};

TForm GetForm(unsigned char lead) {
  if (lead < 0x80U) return {1, lead, 0};
  if ((lead & 0xE0U) == 0xC0U) return {2, lead & 0x1FU, 0x80};
  if ((lead & 0xF0U) == 0xE0U) return {3, lead & 0x0FU, 0x800};
  if ((lead & 0xF8U) == 0xF0U) return {4, lead & 0x07U, 0x10000};
  return {0, 0, 0};
}

TDecoded Decode(const std::string& text, std::size_t at) {
  const TForm form = GetForm(static_cast<unsigned char>(text[at]));
  if (form.size == 0 || at + form.size > text.size()) return {};
  std::uint32_t character = form.first;
  for (std::size_t i = 1; i < form.size; ++i) {
    const auto byte = static_cast<unsigned char>(text[at + i]);
    if (!IsContinuation(byte)) return {};
    character = (character << 6U) | (byte & 0x3FU);
  }
  const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
  if (character < form.smallest || character > 0x10FFFF || isSurrogate) return {};
  return {character, form.size};
}

bool IsControl(std::uint32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

// Marks that change the order in which a terminal shows the rest of the line.
bool TurnsDirection(std::uint32_t character) {
  return (character >= 0x202A && character <= 0x202E) ||
         (character >= 0x2066 && character <= 0x2069) || character == 0x200E || character == 0x200F;
}

std::string Escape(const char* format, std::uint32_t number) {
  std::array<char, 16> buffer{};
  static_cast<void>(
      std::snprintf(buffer.data(), buffer.size(), format, static_cast<unsigned int>(number)));
  return buffer.data();
}

char ToLower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

// Where the plain ASCII text that begins at `at` ends: most of what is shown.
std::size_t FindPlainEnd(const std::string& text, std::size_t at) {
  while (at < text.size() && text[at] >= ' ' && text[at] < '\x7F') ++at;
  return at;
}

}  // namespace

std::string SafeText(const std::string& text, ELines lines) {
  std::string safe;
  safe.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t plainEnd = FindPlainEnd(text, at);
    safe.append(text, at, plainEnd - at);
    at = plainEnd;
    if (at == text.size()) break;
    const TDecoded decoded = Decode(text, at);
    const bool isLayout = decoded.character == '\n' || decoded.character == '\t';
    if (decoded.size == 0) {
      safe += Escape("\\x%02x", static_cast<unsigned char>(text[at]));
    } else if (isLayout && lines == ELines::kKeep) {
      safe += text[at];
    } else if (IsControl(decoded.character)) {
      safe += Escape("\\x%02x", decoded.character);
    } else if (TurnsDirection(decoded.character)) {
      safe += Escape("\\u{%x}", decoded.character);
    } else {
      safe.append(text, at, decoded.size);
    }
    at += std::max<std::size_t>(decoded.size, 1);
  }
  return safe;
}

std::size_t GetWidth(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
    return !IsContinuation(static_cast<unsigned char>(byte));
  }));
}

std::string PadTo(const std::string& text, std::size_t width) {
  const std::size_t used = GetWidth(text);
  return used < width ? text + std::string(width - used, ' ') : text;
}

std::string Trim(const std::string& text) {
  constexpr char kBlanks[] = " \t\r\n\v\f";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool ContainsNoCase(const std::string& text, const std::string& part) {
  const auto isSame = [](char left, char right) { return ToLower(left) == ToLower(right); };
  return std::search(text.begin(), text.end(), part.begin(), part.end(), isSame) != text.end();
}

std::string DescribeProvider(const std::string& provider, const std::string& library) {
  return provider.empty() ? "library " + library : "provider " + provider + " of " + library;
}

}  // namespace host
