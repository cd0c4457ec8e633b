// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace NZEPQEL20 {

/// One class that a provider serves in one namespace.
struct TRegistration {
  std::string className;
  std::string nameSpace;
  std::string providerName;
  std::string library;     ///< Path of the library file.
  std::string source;      ///< `file:line`, for messages.
  std::string parameters;  ///< Free text for the provider, handed to it with every call.
  bool isInstance = false;
  bool isAssociation = false;
  bool isMethod = false;
  bool isProperty = false;
};

/// What the registration files of an installation say.
///
/// A line is `Class Namespace ProviderName Library type...`, the types being `instance`,
/// `association`, `method`, `property` and `indication`; the last one is accepted and never
/// called. `#` starts a comment. `Library` stands for `lib<Library>.so` beside the file.
/// A faulty line is a problem, and all others count.
/// Threads: loading must be alone; reading is safe from several.
class TRegistrations {
 public:
  /// Adds what `file` says. A file that cannot be read is a problem.
  void Load(const std::string& file);

  const std::vector<TRegistration>& GetEntries() const { return m_entries; }
  /// One line each: `file:line: reason`.
  const std::vector<std::string>& GetProblems() const { return m_problems; }

 private:
  void ReadLine(const std::string& line, const std::string& folder, const std::string& source);
  void Add(const TRegistration& entry);

  std::vector<TRegistration> m_entries;
  std::vector<std::string> m_problems;
};

}  // namespace NZEPQEL20
