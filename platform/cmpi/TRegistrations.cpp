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
#include "platform/schema/TMofOutlines.h"
#include "platform/schema/TMofQualifierTable.h"
#include "platform/schema/TMofSource.h"

namespace NZEPQEL20 {

namespace {

using EForm = TRegistrations::EForm;

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
  if (OutlineMof(text).registersProviders) return EForm::kMof;
  return IsMofName(file) ? EForm::kNone : FindTextForm(text, file);
}

/// What an entry is known by: the same for all that say something of one class and provider.
std::string MakeKey(const TRegistration& entry) {
  constexpr char kSeparator = '\x1F';
  return FoldName(entry.className + kSeparator + entry.nameSpace) + kSeparator +
         entry.providerName + kSeparator + entry.library;
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

std::string TrimSlashes(const std::string& nameSpace) {
  const std::size_t start = nameSpace.find_first_not_of('/');
  if (start == std::string::npos) return {};
  return nameSpace.substr(start, nameSpace.find_last_not_of('/') + 1 - start);
}

std::string TRegistrationProblem::ToString() const {
  return text + "; " + remedy + "; see rule " + rule;
}

void TRegistrations::Load(const std::string& file) {
  const std::string folder = GetFolderOf(file);
  TMofOutlines outlines;
  ReadFiles({file}, TLibraryFinder(folder, ListVendorFiles(folder, 0).files), outlines);
}

void TRegistrations::LoadText(const std::string& text, const std::string& file) {
  const TLibraryFinder libraries(GetFolderOf(file), {});
  TRegistrationTaker taker(*this, libraries);
  const EForm form = ReadText(text, file, taker);
  if (form != EForm::kMof) return;
  if (!ReadRegistrationMofText(text, file, taker)) m_pureFiles.push_back(file);
}

void TRegistrations::LoadFolder(const std::string& folder, const std::vector<std::string>& files) {
  TMofOutlines outlines;
  LoadFolder(folder, files, outlines);
}

void TRegistrations::LoadFolder(const std::string& folder, const std::vector<std::string>& files,
                                TMofOutlines& outlines) {
  std::vector<std::string> candidates;
  std::copy_if(files.begin(), files.end(), std::back_inserter(candidates),
               [](const std::string& file) { return IsRegistrationName(file) || IsMofName(file); });
  ReadFiles(candidates, TLibraryFinder(folder, files), outlines);
}

void TRegistrations::ReadFiles(const std::vector<std::string>& files,
                               const TLibraryFinder& libraries, TMofOutlines& outlines) {
  TRegistrationTaker taker(*this, libraries);
  std::vector<std::string> declarations;
  // A vendor's folder may hold a schema of many files, which need not be read at every start.
  const auto isMereSchema = [&](const std::string& file) {
    if (!IsMofName(file)) return false;
    const TMofOutline* const outline = outlines.Find(file);
    return outline == nullptr ? files.size() > 1 : !outline->registersProviders;
  };
  for (const std::string& file : files) {
    if (isMereSchema(file)) continue;
    try {
      if (ReadText(ReadBounded(file), file, taker) == EForm::kMof) declarations.push_back(file);
    } catch (const TQELException& failure) {
      // Whoever loads the schema says so of a MOF file.
      if (IsMofName(file) && files.size() > 1) continue;
      if (!IsMofName(file)) m_files.push_back(file);
      taker.Fail(file + ": cannot be read: " + failure.what(), "make it a readable file", "R1");
    }
  }
  const std::vector<std::string> mixed = ReadRegistrationMof(declarations, outlines, taker);
  for (const std::string& file : declarations) {
    const bool isMixed = std::find(mixed.begin(), mixed.end(), file) != mixed.end();
    if (!isMixed) m_pureFiles.push_back(file);
  }
}

TRegistrations::EForm TRegistrations::ReadText(const std::string& text, const std::string& file,
                                               TRegistrationTaker& taker) {
  const EForm form = FindForm(text, file);
  if (form != EForm::kNone) m_files.push_back(file);
  if (form == EForm::kLines) ReadRegistrationLines(text, file, taker);
  if (form == EForm::kSections) ReadRegistrationSections(text, file, taker);
  return form;
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
  if (known.parameters.empty()) known.parameters = entry.parameters;
}

}  // namespace NZEPQEL20
