// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/cmpi/query/TCondition.h"

namespace NZEPQEL20::cmpi {

/// A query in one of the languages that providers use:
///   `SELECT * FROM Class`, `SELECT a, b FROM Class WHERE condition`
///       in "WQL", "CQL", "CIM:CQL" and "DMTF:CQL";
///   `condition` alone in "DMTF:FQL" and "FQL".
///
/// A condition compares properties with =, <>, !=, <, <=, >, >=, LIKE, ISA, IS NULL and IS NOT NULL
/// under AND, OR, NOT and brackets; values are texts in single or double quotes, integers, also
/// hexadecimal ones, reals, TRUE, FALSE and NULL. Words and names have no case, texts do. What
/// depends on a missing or NULL property does not match.
/// Immutable. Threads: safe from several.
class TQuery {
 public:
  /// Errors: TBrokerFault: CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED naming the language;
  /// CMPI_RC_ERR_INVALID_QUERY with the position and what was expected, also for one that is too
  /// long or nested too deeply.
  static TQuery Parse(const std::string& text, const std::string& language);

  const std::string& GetText() const { return m_text; }
  /// Empty for a condition alone.
  const std::string& GetClassName() const { return m_className; }
  bool SelectsAll() const { return m_properties.empty(); }
  /// The properties that are selected; empty for all.
  const std::vector<std::string>& GetProperties() const { return m_properties; }
  /// Null when everything matches.
  const TCondition* GetCondition() const { return m_condition.get(); }

  /// Whether `object` is of the class asked for, as far as that is known, and meets the condition.
  bool Matches(const IQueryObject& object) const;

 private:
  friend class TQueryParser;

  std::string m_text;
  std::string m_className;
  std::vector<std::string> m_properties;
  std::shared_ptr<const TCondition> m_condition;
};

}  // namespace NZEPQEL20::cmpi
