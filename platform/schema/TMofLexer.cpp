// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TMofLexer.h"

#include <utility>

namespace NZEPQEL20 {

namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool IsNamePart(char c) {
  return IsNameStart(c) || IsDigit(c) || c == '$';
}

bool IsContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

bool IsSymbol(char c) {
  switch (c) {
    case '{':
    case '}':
    case '(':
    case ')':
    case '[':
    case ']':
    case ',':
    case ';':
    case ':':
    case '=':
    case '#':
      return true;
    default:
      return false;
  }
}

bool IsBlank(char c) {
  // Editors of old systems end a file with control-Z.
  return c == ' ' || c == '\t' || c == '\f' || c == '\v' || c == '\x1A';
}

bool IsLineEnd(char c) {
  return c == '\n' || c == '\r';
}

}  // namespace

TMofLexer::TMofLexer(std::string_view text, std::string file, TMofProblems& problems)
    : m_text(text), m_file(std::move(file)), m_problems(problems) {}

TMofPosition TMofLexer::Locate() {
  for (; m_counted < m_next; ++m_counted) {
    if (!IsContinuation(m_text[m_counted])) {
      ++m_column;
    }
  }
  return {m_line, m_column};
}

void TMofLexer::SkipLineEnd() {
  m_next += At() == '\r' && At(1) == '\n' ? 2 : 1;
  ++m_line;
  m_counted = m_next;
  m_column = 1;
}

std::size_t TMofLexer::GetWideBlank() const {
  if (static_cast<unsigned char>(At()) < 0x80) {
    return 0;
  }
  // Files that were put together have the mark amid the text.
  for (const std::string_view blank : {"\xEF\xBB\xBF", "\xC2\xA0"}) {
    if (m_text.compare(m_next, blank.size(), blank) == 0) {
      return blank.size();
    }
  }
  return 0;
}

bool TMofLexer::IsInName() const {
  return !IsEnd() && IsNamePart(At()) && GetWideBlank() == 0;
}

bool TMofLexer::SkipBlockComment() {
  m_next += 2;
  while (!IsEnd()) {
    if (At() == '*' && At(1) == '/') {
      m_next += 2;
      return true;
    }
    if (IsLineEnd(At())) {
      SkipLineEnd();
    } else {
      ++m_next;
    }
  }
  return false;
}

bool TMofLexer::SkipBlanks(TMofToken& token) {
  while (!IsEnd()) {
    const char c = At();
    if (IsLineEnd(c)) {
      SkipLineEnd();
    } else if (IsBlank(c)) {
      ++m_next;
    } else if (const std::size_t wide = GetWideBlank(); wide != 0) {
      m_next += wide;
    } else if (c == '/' && At(1) == '/') {
      while (!IsEnd() && !IsLineEnd(m_text[m_next])) {
        ++m_next;
      }
    } else if (c == '/' && At(1) == '*') {
      token.position = Locate();
      if (!SkipBlockComment()) {
        token.kind = EMofToken::kBad;
        token.text = "/*";
        token.value = "comment is not closed by '*/'";
        return false;
      }
    } else {
      break;
    }
  }
  return true;
}

TMofToken TMofLexer::Next() {
  TMofToken token;
  if (!SkipBlanks(token)) {
    return token;
  }
  token.position = Locate();
  const std::size_t start = m_next;
  const char c = At();
  if (IsEnd()) {
    return token;
  }
  if (IsSymbol(c)) {
    token.kind = EMofToken::kSymbol;
    ++m_next;
  } else if (IsNameStart(c)) {
    ReadName(token, EMofToken::kIdentifier);
  } else if (c == '$') {
    ReadName(token, EMofToken::kAlias);
  } else if (IsDigit(c) || c == '.' || c == '+' || c == '-') {
    ReadNumber(token);
  } else if (c == '"') {
    ReadString(token);
  } else if (c == '\'') {
    ReadChar(token);
  } else {
    ReadBadBytes(token);
  }
  token.text = m_text.substr(start, m_next - start);
  return token;
}

void TMofLexer::ReadName(TMofToken& token, EMofToken kind) {
  const std::size_t start = m_next++;
  while (IsInName()) {
    ++m_next;
  }
  token.kind = kind;
  if (kind == EMofToken::kAlias && m_next == start + 1) {
    token.kind = EMofToken::kBad;
    token.value = "'$' without the name of an alias";
  }
}

void TMofLexer::ReadNumber(TMofToken& token) {
  const std::size_t start = m_next++;
  bool isReal = m_text[start] == '.';
  // Taken as one piece to the end of the word, so that "12x" is one mistake and not two tokens.
  while (!IsEnd()) {
    const char c = At();
    const char before = m_text[m_next - 1];
    const bool isExponentSign =
        isReal && (c == '+' || c == '-') && (before == 'e' || before == 'E');
    if (!IsInName() && c != '.' && !isExponentSign) {
      break;
    }
    isReal = isReal || c == '.';
    ++m_next;
  }
  const std::string_view text = m_text.substr(start, m_next - start);
  if (!ParseMofNumber(text, token)) {
    token.kind = EMofToken::kBad;
    token.value = "'" + std::string(text.substr(0, 40)) + "' is not a number";
  }
}

void TMofLexer::ReadBadBytes(TMofToken& token) {
  token.kind = EMofToken::kBad;
  const unsigned int byte = static_cast<unsigned char>(At());
  // A run of the same byte is one mistake; a file of zeros is not a million.
  const char first = At();
  while (!IsEnd() && At() == first) {
    ++m_next;
  }
  if (byte > 0x20 && byte < 0x7F) {
    token.value = std::string("unexpected character '") + first + "'";
  } else {
    constexpr const char* kDigits = "0123456789ABCDEF";
    token.value = std::string("unexpected byte 0x") + kDigits[byte >> 4U] + kDigits[byte & 15U];
  }
}

}  // namespace NZEPQEL20
