// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TRegistrationTaker.h"

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <string_view>
#include <utility>

#include "platform/cmpi/OneLine.h"
#include "platform/cmpi/VendorFiles.h"
#include "platform/contract/TCIMInstanceData.h"

namespace NZEPQEL20 {

namespace {

bool IsNameCharacter(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

constexpr std::size_t kMaxLine = 65536;
constexpr char kBlanks[] = " \t\f\v\r";

}  // namespace

void TRegistrationTaker::Add(TRegistration entry, const std::string& location,
                             const std::string& registrationFile) {
  if (++m_entryCount > TRegistrations::kMaxEntries) {
    if (m_entryCount > TRegistrations::kMaxEntries + 1) return;
    return Fail(entry.source + ": the folder registers more than " +
                    std::to_string(TRegistrations::kMaxEntries) +
                    " classes; those from here on are left out",
                "register what is there once", "R1");
  }
  const std::string nameSpace = entry.nameSpace;
  entry.nameSpace = TrimSlashes(nameSpace);
  if (entry.nameSpace.empty()) {
    return Fail(entry.source + ": \"" + nameSpace + "\" is not a namespace",
                "write one as root/cimv2, or *", "R2");
  }
  if (entry.nameSpace.find_first_of(",;\\") != std::string::npos) {
    return Fail(entry.source + ": \"" + nameSpace + "\" is not a namespace",
                "write one with slashes, as root/cimv2; several take a line or an entry each",
                "R2");
  }
  const TFoundLibrary library = m_libraries.Find(location, GetFolderOf(registrationFile));
  if (location.find('/') != std::string::npos) {
    Warn(entry.source + ": library \"" + location + "\" is a path; " + library.path +
             " is meant here",
         "give the library its plain name", "R13");
  }
  if (!library.doubt.empty()) {
    Warn(entry.source + ": library \"" + location + "\" is there several times: " + library.doubt,
         "leave one of them in the folder, or put the one beside the registration", "R13");
  }
  entry.library = library.path;
  entry.hasLibrary = library.isThere;
  entry.folder = m_libraries.GetFolder();
  entry.file = registrationFile;
  m_registrations.Add(entry);
}

void TRegistrationTaker::Fail(const std::string& text, const std::string& remedy,
                              const std::string& rule) {
  Keep({ToOneLine(text), remedy, rule, false});
}

void TRegistrationTaker::Warn(const std::string& text, const std::string& remedy,
                              const std::string& rule) {
  Keep({ToOneLine(text), remedy, rule, true});
}

void TRegistrationTaker::Keep(TRegistrationProblem&& finding) {
  if (++m_findingCount > TRegistrations::kMaxFindings) {
    if (m_findingCount > TRegistrations::kMaxFindings + 1) return;
    finding = {m_libraries.GetFolder() + ": more is wrong with its registrations than is told",
               "mend what is told first", "R1", false};
  }
  m_registrations.m_findings.push_back(std::move(finding));
}

std::vector<TTextLine> SplitLines(const std::string& text, const std::string& file) {
  std::vector<TTextLine> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find_first_of("\r\n", at), text.size());
    lines.push_back({text.substr(at, end - at), file + ':' + std::to_string(lines.size() + 1)});
    const bool isPair = text.compare(end, 2, "\r\n") == 0;
    at = end + (isPair ? 2 : 1);
  }
  return lines;
}

std::string FindLineFault(const TTextLine& line) {
  if (line.text.size() > kMaxLine) {
    return "the line is longer than " + std::to_string(kMaxLine) + " bytes";
  }
  const std::size_t place = line.text.find('\0');
  if (place == std::string::npos) return {};
  return "not a line of text: there is a NUL byte in column " + std::to_string(place + 1);
}

std::string Trim(const std::string& text) {
  const std::size_t start = text.find_first_not_of(kBlanks);
  if (start == std::string::npos) return {};
  return text.substr(start, text.find_last_not_of(kBlanks) + 1 - start);
}

std::vector<std::string> SplitWords(const std::string& text) {
  std::istringstream words(text);
  std::vector<std::string> found;
  for (std::string word; words >> word && word.front() != '#';) found.push_back(word);
  return found;
}

bool IsPlainName(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), &IsNameCharacter);
}

bool IsProviderName(const std::string& text) {
  constexpr std::string_view kMore = ".-:+@";
  return !text.empty() && std::all_of(text.begin(), text.end(), [&](char c) {
    return IsNameCharacter(c) || kMore.find(c) != std::string_view::npos;
  });
}

bool MarkType(TRegistration& entry, const std::string& type) {
  struct TType {
    const char* word;
    bool TRegistration::*mark;
  };
  constexpr TType kTypes[] = {{"instance", &TRegistration::isInstance},
                              {"association", &TRegistration::isAssociation},
                              {"method", &TRegistration::isMethod},
                              {"property", &TRegistration::isProperty},
                              {"indication", &TRegistration::isIndication}};
  for (const TType& known : kTypes) {
    if (!IsSameName(type, known.word)) continue;
    entry.*known.mark = true;
    return true;
  }
  return false;
}

}  // namespace NZEPQEL20
