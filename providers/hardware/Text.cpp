// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/Text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace hardware {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";

bool IsContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// Length of the sequence that `lead` announces; 0 when it cannot start one.
std::size_t SequenceLength(unsigned char lead) {
  if (lead < 0x80U) return 1;
  if (lead >= 0xC2U && lead <= 0xDFU) return 2;
  if (lead >= 0xE0U && lead <= 0xEFU) return 3;
  if (lead >= 0xF0U && lead <= 0xF4U) return 4;
  return 0;
}

// Over-long forms, surrogates and code points past U+10FFFF differ in their second byte.
bool IsSecondByteAllowed(unsigned char lead, unsigned char second) {
  if (lead == 0xE0U) return second >= 0xA0U;
  if (lead == 0xEDU) return second <= 0x9FU;
  if (lead == 0xF0U) return second >= 0x90U;
  if (lead == 0xF4U) return second <= 0x8FU;
  return true;
}

// Length of the valid sequence at the start of `text`, 0 when there is none.
std::size_t ValidSequence(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = SequenceLength(lead);
  if (length == 0 || length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if (!IsContinuation(text[i])) return 0;
  }
  if (length > 1 && !IsSecondByteAllowed(lead, static_cast<unsigned char>(text[1]))) return 0;
  return length;
}

}  // namespace

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::optional<std::uint64_t> ParseUnsigned(std::string_view text) {
  std::uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::optional<double> ParseDecimal(std::string_view text) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, std::chars_format::fixed);
  if (error != std::errc() || stop != end || !(number >= 0 && number < 1e18)) return std::nullopt;
  return number;
}

std::vector<std::string_view> SplitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

std::vector<std::string_view> SplitWords(std::string_view line) {
  std::vector<std::string_view> words;
  std::size_t start = line.find_first_not_of(kBlanks);
  while (start != std::string_view::npos) {
    const std::size_t end = std::min(line.find_first_of(kBlanks, start), line.size());
    words.push_back(line.substr(start, end - start));
    start = line.find_first_not_of(kBlanks, end);
  }
  return words;
}

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

std::string CleanText(std::string_view text) {
  std::string clean;
  clean.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = ValidSequence(text);
    if (length == 0) {
      clean += '?';
    } else if (length > 1) {
      clean += text.substr(0, length);
    } else if (text.front() == '\n' || text.front() == '\t' ||
               (text.front() >= ' ' && text.front() != '\x7F')) {
      clean += text.front();
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return clean;
}

std::string CleanName(std::string_view text) {
  std::string name;
  for (const char byte : CleanText(text)) {
    const bool isBlank = byte == '\n' || byte == '\t' || byte == ' ';
    const char kept = isBlank ? ' ' : byte == ',' ? ';' : byte == '|' ? '/' : byte;
    if (isBlank && (name.empty() || name.back() == ' ')) continue;
    name += kept;
  }
  return std::string(Trim(name));
}

std::string RenderTerminal(std::string_view text) {
  std::string shown;
  std::size_t lineStart = 0;
  std::size_t cursor = 0;
  for (const char byte : text) {
    if (byte == '\b') {
      cursor = std::max(cursor, lineStart + 1) - 1;
    } else if (byte == '\r') {
      cursor = lineStart;
    } else if (byte == '\n') {
      shown.erase(shown.find_last_not_of(' ') + 1 > lineStart ? shown.find_last_not_of(' ') + 1
                                                              : lineStart);
      shown += '\n';
      cursor = lineStart = shown.size();
    } else if (cursor < shown.size()) {
      shown[cursor++] = byte;
    } else {
      shown += byte;
      ++cursor;
    }
  }
  return shown;
}

std::string Excerpt(std::string_view text, std::size_t maxBytes) {
  std::string clean = CleanText(Trim(text));
  if (clean.size() <= maxBytes) return clean;
  std::size_t start = clean.size() - maxBytes;
  const std::size_t line = clean.find('\n', start);
  if (line != std::string::npos && line + 1 < clean.size()) start = line + 1;
  while (start < clean.size() && IsContinuation(clean[start])) ++start;
  return "[earlier output left out]\n" + clean.substr(start);
}

std::string DescribeBytes(std::uint64_t bytes) {
  static constexpr std::array<const char*, 6> kUnits = {"B", "KiB", "MiB", "GiB", "TiB", "PiB"};
  std::size_t unit = 0;
  // Two digits at least stay significant: 1.5 GiB reads "1536 MiB".
  while (unit + 1 < kUnits.size() && bytes >= 10 * 1024ULL) {
    bytes /= 1024;
    ++unit;
  }
  return std::to_string(bytes) + " " + kUnits[unit];
}

std::string Join(const std::vector<std::string>& parts, std::string_view separator) {
  std::string text;
  for (const std::string& part : parts) {
    if (&part != &parts.front()) text += separator;
    text += part;
  }
  return text;
}

}  // namespace hardware
