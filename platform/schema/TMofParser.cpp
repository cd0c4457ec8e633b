// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TMofParser.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/schema/TMofSyntaxError.h"

namespace NZEPQEL20 {

namespace {

/// The token as a message shows it; a long one is cut.
std::string Describe(const TMofToken& token) {
  constexpr std::size_t kLongest = 40;
  if (token.kind == EMofToken::kEnd) {
    return "end of file";
  }
  std::string text(token.text.substr(0, kLongest));
  text += token.text.size() > kLongest ? "..." : "";
  return token.kind == EMofToken::kString ? text : "'" + text + "'";
}

bool IsOldPragma(const std::string& name) {
  constexpr std::array<const char*, 6> kNames = {"locale",       "instancelocale", "nonlocal",
                                                 "nonlocaltype", "source",         "sourcetype"};
  return std::any_of(kNames.begin(), kNames.end(),
                     [&name](const char* old) { return IsSameName(name, old); });
}

}  // namespace

TMofParser::TMofParser(const TMofSource& source, IMofSink& sink, TMofProblems& problems)
    : m_source(source),
      m_sink(sink),
      m_problems(problems),
      m_lexer(source.text, source.name, problems) {}

const TMofToken& TMofParser::Peek(std::size_t ahead) {
  for (; m_aheadCount <= ahead; ++m_aheadCount) {
    m_ahead[(m_first + m_aheadCount) % m_ahead.size()] = m_lexer.Next();
  }
  return m_ahead[(m_first + ahead) % m_ahead.size()];
}

TMofToken TMofParser::Take() {
  Peek();
  TMofToken token = std::move(m_ahead[m_first]);
  m_first = (m_first + 1) % m_ahead.size();
  --m_aheadCount;
  ++m_taken;
  if (token.kind == EMofToken::kSymbol) {
    CountOpen(token);
  }
  return token;
}

void TMofParser::CountOpen(const TMofToken& token) {
  const auto close = [](std::size_t& count) { count -= count > 0 ? 1 : 0; };
  switch (token.text[0]) {
    case '{':
      ++m_open.braces;
      break;
    case '}':
      close(m_open.braces);
      break;
    case '[':
      ++m_open.brackets;
      break;
    case ']':
      close(m_open.brackets);
      break;
    case '(':
      ++m_open.parentheses;
      break;
    case ')':
      close(m_open.parentheses);
      break;
    default:
      break;
  }
}

bool TMofParser::IsSymbol(char symbol, std::size_t ahead) {
  const TMofToken& token = Peek(ahead);
  return token.kind == EMofToken::kSymbol && token.text[0] == symbol;
}

bool TMofParser::IsWord(const char* word, std::size_t ahead) {
  const TMofToken& token = Peek(ahead);
  return token.kind == EMofToken::kIdentifier && token.text.size() == std::strlen(word) &&
         IsSameName(std::string(token.text), word);
}

bool TMofParser::TakeSymbol(char symbol) {
  if (!IsSymbol(symbol)) {
    return false;
  }
  Take();
  return true;
}

void TMofParser::Expect(char symbol, const std::string& after) {
  if (!TakeSymbol(symbol)) {
    Fail(std::string("'") + symbol + "' " + after);
  }
}

TMofToken TMofParser::ExpectName(const std::string& what) {
  if (Peek().kind != EMofToken::kIdentifier) {
    Fail(what);
  }
  return Take();
}

void TMofParser::Reserve(std::size_t count, TMofPosition position) {
  if (!m_sink.Reserve(count)) {
    throw TSyntaxError(position, "more declarations than can be held; the rest is not read", true);
  }
}

void TMofParser::Fail(const std::string& expected) {
  const TMofToken& token = Peek();
  if (token.kind == EMofToken::kBad) {
    throw TSyntaxError(token.position, token.value);
  }
  throw TSyntaxError(token.position, "expected " + expected + ", found " + Describe(token));
}

void TMofParser::Report(TMofPosition position, const std::string& text) {
  m_problems.AddError(m_source.name, position, text);
  if (++m_errorCount == TMofProblems::kMaxErrors) {
    throw TSyntaxError(position, "too many errors; the rest of the file is not read", true);
  }
}

void TMofParser::Warn(TMofPosition position, const std::string& text) {
  m_problems.AddWarning(m_source.name, position, text);
}

void TMofParser::Parse() {
  try {
    while (Peek().kind != EMofToken::kEnd) {
      ParseOrSkip();
    }
  } catch (const TSyntaxError& error) {
    m_problems.AddError(m_source.name, error.position, error.what());
  }
}

void TMofParser::ParseOrSkip() {
  const std::size_t before = m_taken;
  try {
    ParseDeclaration();
  } catch (const TSyntaxError& error) {
    if (error.isFatal) {
      throw;
    }
    Report(error.position, error.what());
    m_lexer.SetRawStrings(false);
    m_pending.clear();
    if (m_taken == before) {
      Take();
    }
    SkipToDeclaration();
  }
}

void TMofParser::ParseDeclaration() {
  TQualifiers qualifiers = std::exchange(m_pending, {});
  if (qualifiers.empty() && IsSymbol('[')) {
    qualifiers = ParseQualifiers();
  }
  if (IsWord("class")) {
    ParseClass(std::move(qualifiers));
  } else if (IsWord("instance")) {
    ParseInstance();
  } else if (!qualifiers.empty()) {
    Fail("'class' or 'instance' behind the qualifiers");
  } else if (IsWord("qualifier")) {
    ParseQualifierDeclaration();
  } else if (IsSymbol('#')) {
    ParsePragma();
  } else if (IsSymbol(';')) {
    Warn(Take().position, "';' without a declaration");
  } else {
    Fail("a class, instance, qualifier or pragma");
  }
}

bool TMofParser::IsDeclarationStart() {
  if (IsSymbol('#')) {
    return true;
  }
  if (IsWord("class")) {
    return Peek(1).kind == EMofToken::kIdentifier &&
           (IsSymbol('{', 2) || IsSymbol(':', 2) || IsWord("as", 2));
  }
  return (IsWord("instance") && IsWord("of", 1)) ||
         (IsWord("qualifier") && Peek(1).kind == EMofToken::kIdentifier && IsSymbol(':', 2));
}

void TMofParser::SkipToDeclaration() {
  m_open = {};
  while (Peek().kind != EMofToken::kEnd && !IsDeclarationStart()) {
    if (IsSymbol('[') && Peek(1).kind == EMofToken::kIdentifier) {
      // Where a brace is missing, what follows is still deep in the faulty declaration.
      if (m_open.braces == 0 || TakeQualifiersOfNext()) {
        return;
      }
    } else if (Take().text == ";" && m_open.braces == 0) {
      return;
    }
  }
}

bool TMofParser::TakeQualifiersOfNext() {
  if (m_skippedLists == TMofProblems::kMaxErrors) {
    Take();
    return false;
  }
  try {
    TQualifiers qualifiers = ParseQualifiers();
    if (IsDeclarationStart()) {
      if (!IsSymbol('#') && !IsWord("qualifier")) {
        m_pending = std::move(qualifiers);
      }
      return true;
    }
  } catch (const TSyntaxError& error) {
    // What is skipped has had its error.
    if (error.isFatal) {
      throw;
    }
    ++m_skippedLists;
  }
  return false;
}

void TMofParser::ParseEnd(const std::string& what) {
  if (TakeSymbol(';')) {
    return;
  }
  if (Peek().kind != EMofToken::kEnd && !IsSymbol('[') && !IsDeclarationStart()) {
    Fail("';' after " + what);
  }
  Warn(Peek().position, "';' is missing after " + what);
}

void TMofParser::ParsePragma() {
  Take();
  if (!IsWord("pragma")) {
    Fail("'pragma' after '#'");
  }
  Take();
  const TMofToken name = ExpectName("the name of a pragma");
  const std::string nameText(name.text);
  const bool isInclude = IsSameName(nameText, "include");
  if (isInclude || IsSameName(nameText, "namespace")) {
    // Both are written with plain backslashes; the next token is not read yet.
    m_lexer.SetRawStrings(true);
    Expect('(', "after the pragma " + nameText);
    const TMofPosition position = Peek().position;
    const std::string text = ParseString();
    m_lexer.SetRawStrings(false);
    Expect(')', "after the pragma " + nameText);
    if (isInclude) {
      m_sink.OnInclude(m_source.name, position, text);
    } else {
      ParseNamespace(text);
    }
    return;
  }
  if (!IsOldPragma(nameText)) {
    Warn(name.position, "unknown pragma '" + nameText.substr(0, 40) + "' is ignored");
  }
  SkipPragma(name.position.line);
}

void TMofParser::SkipPragma(unsigned int line) {
  m_open = {};
  const bool isParenthesized = IsSymbol('(');
  while (Peek().kind != EMofToken::kEnd && !IsSymbol(';') && !IsSymbol('[') &&
         !IsDeclarationStart() && (isParenthesized || Peek().position.line == line)) {
    const bool isClosing = IsSymbol(')');
    Take();
    if (isClosing && isParenthesized && m_open.parentheses == 0) {
      return;
    }
  }
}

void TMofParser::ParseNamespace(const std::string& text) {
  std::string name = text;
  std::replace(name.begin(), name.end(), '\\', '/');
  const std::size_t scheme = name.find("://");
  // What stands before the host, as in http://host:5988/root, has no slash itself.
  if (scheme != std::string::npos && scheme == name.find(':') && scheme < name.find('/')) {
    name.erase(0, scheme + 1);
  }
  if (name.compare(0, 2, "//") == 0) {
    const std::size_t end = name.find('/', name.find_first_not_of('/'));
    name.erase(0, end == std::string::npos ? name.size() : end);
  }
  name.erase(0, name.find_first_not_of('/'));
  // Where backslashes were doubled, as in other strings, each stands for one.
  const auto isDouble = [](char left, char right) { return left == '/' && right == '/'; };
  name.erase(std::unique(name.begin(), name.end(), isDouble), name.end());
  if (!name.empty() && name.back() == '/') {
    name.pop_back();
  }
  m_sink.OnNamespace(name);
}

}  // namespace NZEPQEL20
