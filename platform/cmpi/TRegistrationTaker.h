// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/cmpi/TLibraryFinder.h"
#include "platform/cmpi/TRegistrations.h"
#include "platform/schema/TMofOutlines.h"

namespace NZEPQEL20 {

/// Takes what the readers of the registration forms find in one vendor's folder.
class TRegistrationTaker {
 public:
  TRegistrationTaker(TRegistrations& registrations, const TLibraryFinder& libraries)
      : m_registrations(registrations), m_libraries(libraries) {}

  /// Finds the library that `location` names, and adds the entry, with its namespace free of
  /// slashes at either end. `registrationFile` is the one that says so.
  void Add(TRegistration entry, const std::string& location, const std::string& registrationFile);

  /// Something is missing: `rule` is the number of the rule that tells how it should be.
  void Fail(const std::string& text, const std::string& remedy, const std::string& rule);
  /// Nothing is missing, but what was written is not what happens.
  void Warn(const std::string& text, const std::string& remedy, const std::string& rule);

 private:
  void Keep(TRegistrationProblem&& finding);

  TRegistrations& m_registrations;
  const TLibraryFinder& m_libraries;
  std::size_t m_entryCount = 0;
  std::size_t m_findingCount = 0;
};

/// A line of a text, without its end.
struct TTextLine {
  std::string text;
  std::string source;  ///< `file:line`.
};

/// The lines of `text`, however they end.
std::vector<TTextLine> SplitLines(const std::string& text, const std::string& file);

/// Why `line` cannot be read as text; empty when it can.
std::string FindLineFault(const TTextLine& line);

/// `text` without blanks at either end.
std::string Trim(const std::string& text);

/// The words of `text`, without those from the first that starts with "#".
std::vector<std::string> SplitWords(const std::string& text);

/// Whether `text` can be the name of a class: letters, digits and "_".
bool IsPlainName(const std::string& text);

/// Whether `text` can be the name of a provider: what generic factories take may have "." or "-",
/// too.
bool IsProviderName(const std::string& text);

/// What mends a type word that does not exist.
inline constexpr char kTypeRemedy[] = "write instance, association, method, property or indication";

/// Sets the mark for a type word, in any case; false for one that does not exist.
bool MarkType(TRegistration& entry, const std::string& type);

/// The forms. Each reads what `text` says, `file` being where it comes from.
void ReadRegistrationLines(const std::string& text, const std::string& file,
                           TRegistrationTaker& taker);
void ReadRegistrationSections(const std::string& text, const std::string& file,
                              TRegistrationTaker& taker);
/// All MOF files of one vendor, whose instances name each other. Answers with those that declare
/// classes, too.
std::vector<std::string> ReadRegistrationMof(const std::vector<std::string>& files,
                                             TMofOutlines& outlines, TRegistrationTaker& taker);
/// One text, as if it were that of `file`. Answers whether it declares classes, too.
bool ReadRegistrationMofText(const std::string& text, const std::string& file,
                             TRegistrationTaker& taker);

}  // namespace NZEPQEL20
