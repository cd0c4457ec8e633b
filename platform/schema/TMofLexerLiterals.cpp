// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <charconv>
#include <limits>

#include "platform/schema/TMofLexer.h"
#include "platform/schema/Utf8.h"

namespace NZEPQEL20 {

namespace {

bool IsHighSurrogate(unsigned int unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(unsigned int unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// Where the plain part of a string ends. Half of a schema is in strings.
bool IsStringStop(char c) {
  return c == '"' || c == '\\' || c == '\n' || c == '\r';
}

int GetDigit(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

bool ParseDigits(std::string_view digits, unsigned int base, TMofToken& token) {
  if (digits.empty()) {
    return false;
  }
  std::uint64_t value = 0;
  for (const char c : digits) {
    const int digit = GetDigit(c);
    if (digit < 0 || static_cast<unsigned int>(digit) >= base) {
      return false;
    }
    const auto added = static_cast<std::uint64_t>(digit);
    token.isOverflow =
        token.isOverflow || value > (std::numeric_limits<std::uint64_t>::max() - added) / base;
    value = value * base + added;
  }
  token.kind = EMofToken::kInteger;
  token.magnitude = value;
  return true;
}

bool ParseReal(std::string_view text, TMofToken& token) {
  const std::size_t point = text.find('.');
  // The grammar wants a digit behind the point, which from_chars does not.
  if (point + 1 >= text.size() || GetDigit(text[point + 1]) < 0 || GetDigit(text[point + 1]) > 9) {
    return false;
  }
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, token.real, std::chars_format::general);
  if (result.ptr != end || result.ec == std::errc::invalid_argument) {
    return false;
  }
  token.isOverflow = result.ec == std::errc::result_out_of_range;
  token.kind = EMofToken::kReal;
  return true;
}

}  // namespace

bool ParseMofNumber(std::string_view text, TMofToken& token) {
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) {
    token.isNegative = text[0] == '-';
    text.remove_prefix(1);
  }
  if (text.empty() || text[0] == '+' || text[0] == '-') {
    return false;
  }
  if (text.find('.') != std::string_view::npos) {
    const bool isReal = ParseReal(text, token);
    token.real = token.isNegative ? -token.real : token.real;
    return isReal;
  }
  if (text.size() > 1 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    return ParseDigits(text.substr(2), 16, token);
  }
  if (text.back() == 'b' || text.back() == 'B') {
    return ParseDigits(text.substr(0, text.size() - 1), 2, token);
  }
  return ParseDigits(text, text.size() > 1 && text[0] == '0' ? 8 : 10, token);
}

unsigned int TMofLexer::ReadHexDigits(std::size_t& count) {
  unsigned int unit = 0;
  for (count = 0; count < 4 && GetDigit(At()) >= 0; ++count, ++m_next) {
    unit = unit * 16 + static_cast<unsigned int>(GetDigit(At()));
  }
  return unit;
}

void TMofLexer::AppendHexEscape(std::string& out) {
  std::size_t count = 0;
  unsigned int unit = ReadHexDigits(count);
  // Escapes are UTF-16 units: two of them can make one character.
  if (IsHighSurrogate(unit) && At() == '\\' && (At(1) == 'x' || At(1) == 'X')) {
    const std::size_t before = m_next;
    m_next += 2;
    const unsigned int low = ReadHexDigits(count);
    if (IsLowSurrogate(low)) {
      unit = 0x10000 + ((unit - 0xD800) << 10U) + (low - 0xDC00);
    } else {
      m_next = before;
    }
  }
  AppendUtf8(out, unit);
}

void TMofLexer::ReadEscape(std::string& out, bool& isKnown) {
  constexpr std::string_view kNames = "btnfr\"'\\";
  constexpr std::string_view kCharacters = "\b\t\n\f\r\"'\\";
  const char name = At(1);
  const std::size_t place = kNames.find(name);
  if (name != '\0' && place != std::string_view::npos) {
    m_next += 2;
    out.push_back(kCharacters[place]);
  } else if ((name == 'x' || name == 'X') && GetDigit(At(2)) >= 0) {
    m_next += 2;
    AppendHexEscape(out);
  } else {
    // The backslash stays, and what follows is read as if it stood alone.
    isKnown = false;
    out.push_back('\\');
    ++m_next;
  }
}

void TMofLexer::ReadString(TMofToken& token) {
  ++m_next;
  bool isKnown = true;
  while (!IsEnd() && At() != '\n' && At() != '\r') {
    if (At() == '"') {
      ++m_next;
      token.kind = EMofToken::kString;
      if (!isKnown) {
        m_problems.AddWarning(m_file, token.position,
                              "unknown escape in the string; kept as it is");
      }
      return;
    }
    if (At() == '\\' && !m_isRaw) {
      ReadEscape(token.value, isKnown);
      continue;
    }
    const std::size_t start = m_next++;
    while (!IsEnd() && !IsStringStop(m_text[m_next])) {
      ++m_next;
    }
    token.value.append(m_text.substr(start, m_next - start));
  }
  token.kind = EMofToken::kBad;
  token.value = "string is not closed by '\"' on its line";
}

bool TMofLexer::ReadHexChar(TMofToken& token) {
  std::size_t count = 0;
  const std::size_t before = m_next;
  m_next += 2;
  const unsigned int unit = ReadHexDigits(count);
  if (count == 0 || At() != '\'') {
    m_next = before;
    return false;
  }
  ++m_next;
  token.kind = EMofToken::kChar;
  token.magnitude = unit;
  return true;
}

void TMofLexer::ReadChar(TMofToken& token) {
  const std::size_t start = ++m_next;
  // Half of a surrogate pair is a unit, and no character of a text.
  if (At() == '\\' && (At(1) == 'x' || At(1) == 'X') && ReadHexChar(token)) {
    return;
  }
  std::string content;
  bool isKnown = true;
  while (!IsEnd() && At() != '\'' && At() != '\n' && At() != '\r' && content.size() <= 4) {
    if (At() == '\\') {
      ReadEscape(content, isKnown);
    } else {
      content.push_back(At());
      ++m_next;
    }
  }
  std::size_t length = 0;
  const unsigned int unit = DecodeUtf8(content, length);
  const bool isClosed = At() == '\'';
  if (isClosed) {
    ++m_next;
  }
  if (!isClosed || content.empty() || length != content.size() || unit > 0xFFFF || !isKnown) {
    token.kind = EMofToken::kBad;
    token.value = "expected one character between single quotes";
    if (!isClosed) {
      // What ends the value, and the class behind it, is not part of the character.
      m_next = std::min(m_next, m_text.find_first_of(";,})]", start));
    }
    return;
  }
  token.kind = EMofToken::kChar;
  token.magnitude = unit;
}

}  // namespace NZEPQEL20
