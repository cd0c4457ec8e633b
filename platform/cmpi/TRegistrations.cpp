// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TRegistrations.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "platform/cmpi/TLibraryFinder.h"
#include "platform/cmpi/TRegistrationTaker.h"
#include "platform/cmpi/VendorFiles.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TQELException.h"
#include "platform/schema/TMofSource.h"

namespace NZEPQEL20 {

namespace {

enum class EForm { kNone, kLines, kSections, kMof };

/// Whether an instance declaration stands where `text` has "_" at `place`: "of PG_Provider".
bool IsProviderInstance(const std::string& text, std::size_t place) {
  constexpr char kBefore[] = "PG";
  constexpr char kBehind[] = "_Provider";
  constexpr std::size_t kLength = sizeof kBefore - 1;
  if (place < kLength || !IsSameName(text.substr(place - kLength, kLength), kBefore)) return false;
  if (!IsSameName(text.substr(place, sizeof kBehind - 1), kBehind)) return false;
  if (place == kLength) return false;
  const std::size_t end = text.find_last_not_of(" \t\r\n\f", place - kLength - 1);
  return end != std::string::npos && end > 0 && end + 1 < place - kLength &&
         IsSameName(text.substr(end - 1, 2), "of");
}

/// Whether `text` holds an instance of one of the classes that register providers. A vendor's
/// folder may hold a schema of megabytes, which is looked through at every start.
bool DeclaresProviders(const std::string& text) {
  for (std::size_t at = text.find('_'); at != std::string::npos; at = text.find('_', at + 1)) {
    if (IsProviderInstance(text, at)) return true;
  }
  return false;
}

/// What the first line that is no comment looks like.
EForm FindTextForm(const std::string& text, const std::string& file) {
  for (const TTextLine& line : SplitLines(text, file)) {
    const std::string words = Trim(line.text);
    if (words.empty() || words.front() == '#') continue;
    return words.front() == '[' ? EForm::kSections : EForm::kLines;
  }
  return EForm::kLines;
}

EForm FindForm(const std::string& text, const std::string& file) {
  if (DeclaresProviders(text)) return EForm::kMof;
  return IsMofName(file) ? EForm::kNone : FindTextForm(text, file);
}

/// What an entry is known by: the same for all that say something of one class and provider.
std::string MakeKey(const TRegistration& entry) {
  constexpr char kSeparator = '\x1F';
  std::string key = entry.className + kSeparator + entry.nameSpace;
  std::transform(key.begin(), key.end(), key.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return key + kSeparator + entry.providerName + kSeparator + entry.library;
}

/// Errors: TQELException with the reason, as TMofSource::ReadFile().
std::string ReadBounded(const std::string& file) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file, error);
  if (!error && !IsMofName(file) && size > TRegistrations::kMaxFileSize) {
    throw TQELException(TQELStatusCode::kFailed, "larger than 4 MiB");
  }
  std::string text = TMofSource::ReadFile(file).text;
  if (IsBinary(text)) {
    throw TQELException(TQELStatusCode::kFailed, "holds binary data and no registration");
  }
  return text;
}

}  // namespace

std::string TRegistrationProblem::ToString() const {
  return text + "; " + remedy + "; see rule " + rule;
}

void TRegistrations::Load(const std::string& file) {
  const std::size_t slash = file.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : file.substr(0, slash);
  ReadFiles({file}, TLibraryFinder(folder, ListVendorFiles(folder, 0).files));
}

void TRegistrations::LoadFolder(const std::string& folder, const std::vector<std::string>& files) {
  std::vector<std::string> candidates;
  std::copy_if(files.begin(), files.end(), std::back_inserter(candidates),
               [](const std::string& file) { return IsRegistrationName(file) || IsMofName(file); });
  ReadFiles(candidates, TLibraryFinder(folder, files));
}

void TRegistrations::ReadFiles(const std::vector<std::string>& files,
                               const TLibraryFinder& libraries) {
  TRegistrationTaker taker(*this, libraries);
  std::vector<std::string> declarations;
  for (const std::string& file : files) {
    try {
      const std::string text = ReadBounded(file);
      const EForm form = FindForm(text, file);
      if (form == EForm::kNone) continue;
      m_files.push_back(file);
      if (form == EForm::kMof) declarations.push_back(file);
      if (form == EForm::kLines) ReadRegistrationLines(text, file, taker);
      if (form == EForm::kSections) ReadRegistrationSections(text, file, taker);
    } catch (const TQELException& failure) {
      // Whoever loads the schema says so of a MOF file.
      if (IsMofName(file) && files.size() > 1) continue;
      if (!IsMofName(file)) m_files.push_back(file);
      taker.Fail(file + ": cannot be read: " + failure.what(), "make it a readable file", "R1");
    }
  }
  const std::vector<std::string> mixed = ReadRegistrationMof(declarations, taker);
  for (const std::string& file : declarations) {
    const bool isMixed = std::find(mixed.begin(), mixed.end(), file) != mixed.end();
    if (!isMixed) m_pureFiles.push_back(file);
  }
}

std::vector<std::string> TRegistrations::GetProblems() const {
  std::vector<std::string> problems;
  for (const TRegistrationProblem& finding : m_findings) {
    if (!finding.isWarning) problems.push_back(finding.ToString());
  }
  return problems;
}

void TRegistrations::Add(const TRegistration& entry) {
  const auto [place, isNew] = m_places.emplace(MakeKey(entry), m_entries.size());
  if (isNew) {
    m_entries.push_back(entry);
    return;
  }
  TRegistration& known = m_entries[place->second];
  known.isInstance = known.isInstance || entry.isInstance;
  known.isAssociation = known.isAssociation || entry.isAssociation;
  known.isMethod = known.isMethod || entry.isMethod;
  known.isProperty = known.isProperty || entry.isProperty;
  known.isIndication = known.isIndication || entry.isIndication;
  known.neverUnload = known.neverUnload || entry.neverUnload;
  if (known.parameters.empty()) known.parameters = entry.parameters;
}

}  // namespace NZEPQEL20
