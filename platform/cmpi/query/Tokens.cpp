// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/query/Tokens.h"

#include "platform/cmpi/Border.h"
#include "platform/contract/TCIMInstanceData.h"

namespace NZEPQEL20::cmpi {

namespace {

constexpr std::size_t kMaxQuery = 65536;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsHexDigit(char c) {
  return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
bool IsNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

/// Reads one piece after the other.
class TReader {
 public:
  explicit TReader(const std::string& query) : m_query(query) {}

  TToken Next() {
    while (m_at < m_query.size() && IsBlank(m_query[m_at])) ++m_at;
    m_start = m_at;
    if (m_at == m_query.size()) return Make(EToken::kEnd);
    const char first = m_query[m_at];
    if (IsNameStart(first)) return ReadName();
    const bool isSigned = (first == '-' || first == '+') && IsDigit(Peek(1));
    if (IsDigit(first) || isSigned || (first == '.' && IsDigit(Peek(1)))) return ReadNumber();
    if (first == '\'' || first == '"') return ReadText(first);
    return ReadSign();
  }

 private:
  static bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
  char Peek(std::size_t ahead) const {
    return m_at + ahead < m_query.size() ? m_query[m_at + ahead] : '\0';
  }
  TToken Make(EToken kind) const {
    return {kind, m_query.substr(m_start, m_at - m_start), m_start + 1};
  }

  TToken ReadName() {
    while (IsNameStart(Peek(0)) || IsDigit(Peek(0))) ++m_at;
    return Make(EToken::kName);
  }

  TToken ReadNumber() {
    if (Peek(0) == '-' || Peek(0) == '+') ++m_at;
    if (Peek(0) == '0' && (Peek(1) == 'x' || Peek(1) == 'X') && IsHexDigit(Peek(2))) {
      m_at += 2;
      while (IsHexDigit(Peek(0))) ++m_at;
      return Finish(EToken::kInteger);
    }
    EToken kind = EToken::kInteger;
    while (IsDigit(Peek(0))) ++m_at;
    if (Peek(0) == '.' && IsDigit(Peek(1))) {
      kind = EToken::kReal;
      ++m_at;
      while (IsDigit(Peek(0))) ++m_at;
    }
    const bool hasSign = Peek(1) == '-' || Peek(1) == '+';
    if ((Peek(0) == 'e' || Peek(0) == 'E') && IsDigit(Peek(hasSign ? 2 : 1))) {
      kind = EToken::kReal;
      m_at += hasSign ? 2 : 1;
      while (IsDigit(Peek(0))) ++m_at;
    }
    return Finish(kind);
  }

  /// A number ends where no name goes on.
  TToken Finish(EToken kind) const {
    if (IsNameStart(Peek(0))) RefuseQuery(m_start + 1, "not a number");
    return Make(kind);
  }

  TToken ReadText(char quote) {
    TToken token{EToken::kText, {}, m_start + 1};
    for (++m_at; m_at < m_query.size(); ++m_at) {
      const char c = m_query[m_at];
      // A quote within is doubled, or stands after a backslash.
      const bool isDoubled = c == quote && Peek(1) == quote;
      const bool isEscaped = c == '\\' && (Peek(1) == quote || Peek(1) == '\\');
      if (c == quote && !isDoubled) {
        ++m_at;
        return token;
      }
      if (isDoubled || isEscaped) ++m_at;
      token.text += m_query[m_at];
    }
    RefuseQuery(token.at, "a text without its end");
  }

  TToken ReadSign() {
    for (const char* sign : {"<>", "!=", "<=", ">=", "=", "<", ">", "(", ")", ",", ".", "*"}) {
      const std::string text = sign;
      if (m_query.compare(m_at, text.size(), text) != 0) continue;
      m_at += text.size();
      return Make(EToken::kSign);
    }
    RefuseQuery(m_start + 1, "unexpected character");
  }

  const std::string& m_query;
  std::size_t m_at = 0;
  std::size_t m_start = 0;
};

}  // namespace

bool IsWord(const TToken& token, const char* word) {
  return token.kind == EToken::kName && IsSameName(token.text, word);
}

std::vector<TToken> Tokenize(const std::string& query) {
  if (query.size() > kMaxQuery) RefuseQuery(kMaxQuery, "the query is too long");
  TReader reader(query);
  std::vector<TToken> tokens;
  do {
    tokens.push_back(reader.Next());
  } while (tokens.back().kind != EToken::kEnd);
  return tokens;
}

void RefuseQuery(std::size_t at, const std::string& reason) {
  throw TBrokerFault(CMPI_RC_ERR_INVALID_QUERY,
                     "query, position " + std::to_string(at) + ": " + reason);
}

}  // namespace NZEPQEL20::cmpi
