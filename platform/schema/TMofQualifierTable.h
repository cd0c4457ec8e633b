// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <unordered_map>

#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20 {

/// What a qualifier is, by its declaration.
struct TMofQualifierType {
  std::string name;  ///< In the spelling of the declaration.
  ECIMType type = ECIMType::kString;
  bool isArray = false;
  TCIMValue defaultValue;  ///< Value of a qualifier that is named without one.
  bool isOverridable = true;
  bool toSubclass = true;
};

/// The declared qualifiers. The standard ones are there from the start, so that a single class
/// file can be read alone.
class TMofQualifierTable {
 public:
  TMofQualifierTable();

  /// Begins with those of `general`, which outlives this table. What is declared here does not
  /// count there.
  explicit TMofQualifierTable(const TMofQualifierTable* general) : m_general(general) {}

  /// Null when `name`, compared without case, is not declared.
  const TMofQualifierType* Find(const std::string& name) const;

  /// Whether the general table has a qualifier of this name that is of another type.
  bool IsForbidden(const TMofQualifierType& type) const;

  /// Adds a declaration or replaces an earlier one. Whether it differs from an earlier one that
  /// was not a standard one.
  bool Declare(const TMofQualifierType& type);

 private:
  struct TEntry {
    TMofQualifierType type;
    bool isStandard = false;
  };
  std::unordered_map<std::string, TEntry> m_types;
  const TMofQualifierTable* m_general = nullptr;
};

/// `name` with the ASCII letters in lower case: the form in which names are looked up.
std::string FoldName(const std::string& name);

}  // namespace NZEPQEL20
