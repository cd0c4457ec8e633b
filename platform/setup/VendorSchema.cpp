// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/VendorSchema.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TQELException.h"
#include "platform/schema/TMofSource.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\f' || c == '\r';
}

/// Moves `at` behind blanks and `word`; false when another word stands there.
bool Skip(const std::string& text, std::size_t& at, const std::string& word) {
  while (at < text.size() && IsBlank(text[at])) ++at;
  if (!IsSameName(text.substr(at, word.size()), word)) return false;
  at += word.size();
  return true;
}

/// The path behind "#pragma include" at `at`; empty when something else stands there.
std::string GetIncluded(const std::string& text, std::size_t at) {
  for (const char* word : {"#", "pragma", "include", "(", "\""}) {
    if (!Skip(text, at, word)) return {};
  }
  const std::size_t end = text.find_first_of("\"\n", at);
  return end == std::string::npos ? std::string() : text.substr(at, end - at);
}

}  // namespace

std::string MakeCanonical(const std::string& file) {
  std::error_code error;
  const fs::path real = fs::canonical(file, error);
  return error ? file : real.string();
}

std::vector<std::string> FindIncludes(const std::string& file) {
  std::vector<std::string> found;
  try {
    const std::string text = TMofSource::ReadFile(file).text;
    for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
      const std::string path = GetIncluded(text, at);
      if (!path.empty()) found.push_back(ResolveMofPath(path, file));
      if (text.find('\n', at) == std::string::npos) break;
    }
  } catch (const TQELException&) {
    // Loading it says why.
    found.clear();
  }
  return found;
}

std::vector<std::string> FindAllIncludes(const std::vector<std::string>& files) {
  std::vector<std::string> found;
  std::vector<std::string> open = files;
  std::set<std::string> seen;
  while (!open.empty()) {
    const std::string file = open.back();
    open.pop_back();
    if (!seen.insert(MakeCanonical(file)).second) continue;
    for (const std::string& other : FindIncludes(file)) {
      std::error_code error;
      if (!fs::exists(other, error)) continue;
      found.push_back(fs::path(other).lexically_normal().string());
      open.push_back(other);
    }
  }
  return found;
}

std::vector<std::string> OrderByIncludes(const std::vector<std::string>& files) {
  if (files.size() < 2) return files;
  std::set<std::string> included;
  for (const std::string& file : files) {
    for (const std::string& other : FindIncludes(file)) included.insert(MakeCanonical(other));
  }
  std::vector<std::string> ordered = files;
  std::stable_partition(ordered.begin(), ordered.end(), [&](const std::string& file) {
    return included.count(MakeCanonical(file)) == 0;
  });
  return ordered;
}

}  // namespace NZEPQEL20::setup
