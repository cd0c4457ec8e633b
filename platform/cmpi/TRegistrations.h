// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace NZEPQEL20 {

class TLibraryFinder;
class TMofOutlines;
class TRegistrationTaker;

/// One class that a provider serves in one namespace.
struct TRegistration {
  std::string className;
  std::string nameSpace;  ///< "*" stands for any.
  std::string providerName;
  std::string library;     ///< Path of the library file.
  std::string folder;      ///< The vendor's folder: where the library's siblings are.
  std::string file;        ///< The registration file that says so.
  std::string source;      ///< `file:line`, or the file and the object in it, for messages.
  std::string parameters;  ///< The provider's own words; empty when there are none.
  bool hasLibrary = true;  ///< Whether the library file is there.
  bool isInstance = false;
  bool isAssociation = false;
  bool isMethod = false;
  bool isProperty = false;
  bool isIndication = false;
};

/// `nameSpace` without the slashes that some write at either end.
std::string TrimSlashes(const std::string& nameSpace);

/// One thing that is wrong with a registration.
struct TRegistrationProblem {
  std::string text;        ///< `file:line: reason`.
  std::string remedy;      ///< What to do about it.
  std::string rule;        ///< Number in the rules for provider authors, such as "R2".
  bool isWarning = false;  ///< Nothing is missing because of it.

  /// In one line: "text; remedy; see rule R2".
  std::string ToString() const;
};

/// What the registration files of an installation say, in any of three forms: lines
/// `Class Namespace Provider Library type...`; `[Class]` sections of `key: value` lines; MOF with
/// PG_ProviderModule, PG_Provider and PG_ProviderCapabilities instances. The content tells the
/// form. A faulty entry is a problem, and all others count.
/// Threads: loading must be alone; reading is safe from several.
class TRegistrations {
 public:
  /// Entries of one vendor's folder that count; what is beyond them is one problem.
  static constexpr std::size_t kMaxEntries = 10000;
  /// Findings of one vendor's folder that are kept.
  static constexpr std::size_t kMaxFindings = 1000;
  /// Largest registration file that is read, in bytes. MOF may be larger.
  static constexpr std::size_t kMaxFileSize = std::size_t{4} * 1024 * 1024;

  /// What a text proves to be.
  enum class EForm { kNone, kLines, kSections, kMof };

  /// Adds what `file` says; its folder is the vendor's. A file that cannot be read is a problem.
  void Load(const std::string& file);

  /// Adds what `text` says, as if it were that of `file`, with no library beside it.
  void LoadText(const std::string& text, const std::string& file);

  /// Adds what the registrations among `files` say, which are those of the vendor's `folder`: the
  /// files named `.registration` or `.reg`, and those named `.mof` that declare providers.
  void LoadFolder(const std::string& folder, const std::vector<std::string>& files);
  /// The same, with what is known of MOF files: most of them need not be read.
  void LoadFolder(const std::string& folder, const std::vector<std::string>& files,
                  TMofOutlines& outlines);

  const std::vector<TRegistration>& GetEntries() const { return m_entries; }
  /// Without the warnings, one line each.
  std::vector<std::string> GetProblems() const;
  /// Warnings included, in reading order.
  const std::vector<TRegistrationProblem>& GetFindings() const { return m_findings; }

  /// The registration files, with those that could not be read.
  const std::vector<std::string>& GetFiles() const { return m_files; }
  /// Those of them that hold nothing that a schema could use: they declare no class.
  const std::vector<std::string>& GetPureFiles() const { return m_pureFiles; }

 private:
  friend class TRegistrationTaker;

  void ReadFiles(const std::vector<std::string>& files, const TLibraryFinder& libraries,
                 TMofOutlines& outlines);
  EForm ReadText(const std::string& text, const std::string& file, TRegistrationTaker& taker);
  void Add(const TRegistration& entry);

  std::vector<TRegistration> m_entries;
  std::unordered_map<std::string, std::size_t> m_places;  ///< Of the entries, by what they are.
  std::vector<TRegistrationProblem> m_findings;
  std::vector<std::string> m_files;
  std::vector<std::string> m_pureFiles;
};

}  // namespace NZEPQEL20
