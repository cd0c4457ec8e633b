// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TRegistrations.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include "platform/contract/TCIMInstanceData.h"

namespace NZEPQEL20 {

namespace {

constexpr std::size_t kMaxLine = 4096;

/// The words of `line` before its comment.
std::vector<std::string> Split(const std::string& line) {
  std::istringstream words(line.substr(0, line.find('#')));
  std::vector<std::string> found;
  for (std::string word; words >> word;) found.push_back(word);
  return found;
}

bool IsName(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
  });
}

/// Sets the mark for a type word; false for one that does not exist.
bool MarkType(TRegistration& entry, const std::string& type) {
  if (IsSameName(type, "instance")) {
    entry.isInstance = true;
  } else if (IsSameName(type, "association")) {
    entry.isAssociation = true;
  } else if (IsSameName(type, "method")) {
    entry.isMethod = true;
  } else if (IsSameName(type, "property")) {
    entry.isProperty = true;
  } else {
    return IsSameName(type, "indication");
  }
  return true;
}

/// Why the words are no registration; empty when they are.
std::string FindFault(const std::vector<std::string>& words) {
  if (words.size() < 5) {
    return "expected: Class Namespace ProviderName Library type..., found " +
           std::to_string(words.size()) + " words";
  }
  if (!IsName(words[0])) return "\"" + words[0] + "\" is not a class name";
  if (!IsName(words[2])) return "\"" + words[2] + "\" is not a provider name";
  if (words[3].find('/') != std::string::npos) {
    return "library \"" + words[3] + "\" must be a plain name without \"/\"";
  }
  return {};
}

}  // namespace

void TRegistrations::Load(const std::string& file) {
  struct stat status = {};
  std::ifstream stream(file);
  if (stat(file.c_str(), &status) != 0 || !stream) {
    m_problems.push_back(file + ": cannot be read: " + std::strerror(errno));
    return;
  }
  if (!S_ISREG(status.st_mode)) {
    m_problems.push_back(file + ": not a regular file");
    return;
  }
  const std::size_t slash = file.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : file.substr(0, slash);
  unsigned int number = 0;
  for (std::string line; std::getline(stream, line);) {
    ReadLine(line, folder, file + ':' + std::to_string(++number));
  }
}

void TRegistrations::ReadLine(const std::string& line, const std::string& folder,
                              const std::string& source) {
  if (line.size() > kMaxLine || line.find('\0') != std::string::npos) {
    m_problems.push_back(source + ": not a line of text");
    return;
  }
  const std::vector<std::string> words = Split(line);
  if (words.empty()) return;
  std::string fault = FindFault(words);
  TRegistration entry;
  for (std::size_t i = 4; i < words.size() && fault.empty(); ++i) {
    if (!MarkType(entry, words[i])) fault = "unknown provider type \"" + words[i] + "\"";
  }
  if (!fault.empty()) {
    m_problems.push_back(source + ": " + fault);
    return;
  }
  entry.className = words[0];
  entry.nameSpace = words[1];
  entry.providerName = words[2];
  entry.library = folder + "/lib" + words[3] + ".so";
  entry.source = source;
  Add(entry);
}

void TRegistrations::Add(const TRegistration& entry) {
  for (TRegistration& known : m_entries) {
    if (IsSameName(known.className, entry.className) &&
        IsSameName(known.nameSpace, entry.nameSpace) && known.library == entry.library &&
        known.providerName == entry.providerName) {
      known.isInstance = known.isInstance || entry.isInstance;
      known.isAssociation = known.isAssociation || entry.isAssociation;
      known.isMethod = known.isMethod || entry.isMethod;
      known.isProperty = known.isProperty || entry.isProperty;
      return;
    }
  }
  m_entries.push_back(entry);
}

}  // namespace NZEPQEL20
