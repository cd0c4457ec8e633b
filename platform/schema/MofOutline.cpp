// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/MofOutline.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "platform/contract/TCIMInstanceData.h"

namespace NZEPQEL20 {

namespace {

bool IsLineEnd(char c) {
  return c == '\n' || c == '\r';
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\f' || c == '\v' || IsLineEnd(c);
}

std::size_t FindLineEnd(const std::string& text, std::size_t at) {
  return std::min(text.find_first_of("\r\n", at), text.size());
}

/// The place behind the comment that begins at `at`; `at` itself where none does.
std::size_t SkipComment(const std::string& text, std::size_t at) {
  if (text.compare(at, 2, "//") == 0) {
    return FindLineEnd(text, at);
  }
  if (text.compare(at, 2, "/*") == 0) {
    const std::size_t end = text.find("*/", at + 2);
    return end == std::string::npos ? text.size() : end + 2;
  }
  return at;
}

/// The place behind the string that begins at `at`; one that is not closed ends with its line.
std::size_t SkipString(const std::string& text, std::size_t at) {
  for (++at; at < text.size() && !IsLineEnd(text[at]); ++at) {
    if (text[at] == '"') {
      return at + 1;
    }
    at += text[at] == '\\' && at + 1 < text.size() && !IsLineEnd(text[at + 1]) ? 1 : 0;
  }
  return at;
}

/// The place behind the quotation mark as a character at `at`, or behind the quote alone.
std::size_t SkipCharacter(const std::string& text, std::size_t at) {
  for (const char* const mark : {"'\"'", "'\\\"'"}) {
    const std::size_t length = std::char_traits<char>::length(mark);
    if (text.compare(at, length, mark) == 0) {
      return at + length;
    }
  }
  return at + 1;
}

/// Moves `at` behind blanks, comments and `word`; false when another word stands there.
bool Skip(const std::string& text, std::size_t& at, std::string_view word) {
  for (std::size_t before = at + 1; before != at;) {
    while (at < text.size() && IsBlank(text[at])) {
      ++at;
    }
    before = at;
    at = SkipComment(text, at);
  }
  const auto isSame = [](char letter, char spelt) {
    return letter == (spelt >= 'A' && spelt <= 'Z' ? static_cast<char>(spelt - 'A' + 'a') : spelt);
  };
  if (text.size() - at < word.size() ||
      !std::equal(word.begin(), word.end(), text.begin() + static_cast<std::ptrdiff_t>(at),
                  isSame)) {
    return false;
  }
  at += word.size();
  return true;
}

/// The path behind "#pragma include" at `at`, which moves behind it; empty, and `at` is where it
/// was, when something else stands there.
std::string TakeIncluded(const std::string& text, std::size_t& at) {
  std::size_t next = at;
  for (const char* word : {"#", "pragma", "include", "(", "\""}) {
    if (!Skip(text, next, word)) {
      return {};
    }
  }
  const std::size_t end = text.find_first_of("\"\r\n", next);
  if (end == std::string::npos || text[end] != '"') {
    return {};
  }
  at = end + 1;
  return text.substr(next, end - next);
}

std::vector<std::string> FindIncludes(const std::string& text) {
  std::vector<std::string> found;
  // Few files of a schema have one, and only those are looked through letter by letter.
  const std::size_t last = text.rfind('#');
  if (last == std::string::npos) {
    return found;
  }
  for (std::size_t at = 0; at <= last;) {
    const std::size_t before = at;
    if (text[at] == '"') {
      at = SkipString(text, at);
    } else if (text[at] == '\'') {
      at = SkipCharacter(text, at);
    } else if (text[at] == '/') {
      at = SkipComment(text, at);
    } else if (text[at] == '#') {
      const std::string path = TakeIncluded(text, at);
      if (!path.empty()) {
        found.push_back(path);
      }
    }
    at += at == before ? 1 : 0;
  }
  return found;
}

/// Whether "PG_Provider" stands where `text` has "_" at `place`.
bool IsProviderName(const std::string& text, std::size_t place) {
  constexpr char kBefore[] = "PG";
  constexpr char kBehind[] = "_Provider";
  constexpr std::size_t kLength = sizeof kBefore - 1;
  return place >= kLength && IsSameName(text.substr(place - kLength, kLength), kBefore) &&
         IsSameName(text.substr(place, sizeof kBehind - 1), kBehind);
}

/// Whether "of" and blanks stand in front of `start`, as before the class of an instance.
bool IsBehindOf(const std::string& text, std::size_t start) {
  const std::size_t end = start == 0 ? start : text.find_last_not_of(" \t\r\n\f", start - 1);
  return end != std::string::npos && end > 0 && end + 1 < start &&
         IsSameName(text.substr(end - 1, 2), "of");
}

}  // namespace

TMofOutline OutlineMof(const std::string& text) {
  TMofOutline outline;
  outline.includes = FindIncludes(text);
  outline.isMereSchema = !text.empty();
  // Few letters of a schema are this one, and there may be megabytes of it.
  for (std::size_t at = text.find('_'); at != std::string::npos; at = text.find('_', at + 1)) {
    if (!IsProviderName(text, at)) {
      continue;
    }
    outline.isMereSchema = false;
    outline.registersProviders = outline.registersProviders || IsBehindOf(text, at - 2);
  }
  return outline;
}

}  // namespace NZEPQEL20
