// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/MofOutline.h"

#include <cstddef>

#include "platform/contract/TCIMInstanceData.h"

namespace NZEPQEL20 {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\f' || c == '\r';
}

/// Moves `at` behind blanks and `word`; false when another word stands there.
bool Skip(const std::string& text, std::size_t& at, const std::string& word) {
  while (at < text.size() && IsBlank(text[at])) {
    ++at;
  }
  if (!IsSameName(text.substr(at, word.size()), word)) {
    return false;
  }
  at += word.size();
  return true;
}

/// The path behind "#pragma include" at `at`; empty when something else stands there.
std::string GetIncluded(const std::string& text, std::size_t at) {
  for (const char* word : {"#", "pragma", "include", "(", "\""}) {
    if (!Skip(text, at, word)) {
      return {};
    }
  }
  const std::size_t end = text.find_first_of("\"\n", at);
  const bool isClosed = end != std::string::npos && text[end] == '"';
  return isClosed ? text.substr(at, end - at) : std::string();
}

std::vector<std::string> FindIncludes(const std::string& text) {
  std::vector<std::string> found;
  for (std::size_t at = 0; at < text.size();) {
    const std::string path = GetIncluded(text, at);
    if (!path.empty()) {
      found.push_back(path);
    }
    const std::size_t end = text.find('\n', at);
    if (end == std::string::npos) {
      break;
    }
    at = end + 1;
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
