// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/cmpi/abi/cmpi.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20::cmpi {

/// What a condition is tested on.
class IQueryObject {
 public:
  virtual ~IQueryObject() = default;

  /// The value of a property; names of embedded instances' properties are joined with dots. None
  /// when there is no such property.
  virtual std::optional<TCIMValue> Find(const std::string& name) const = 0;
  /// The class of the object itself; empty when it is not known.
  virtual std::string GetClassName() const = 0;
  /// Whether `className` is `superclass` or inherits from it.
  virtual bool IsA(const std::string& className, const std::string& superclass) const = 0;
};

/// One comparison: a property with a value, with another property, or with nothing.
struct TPredicate {
  std::string property;  ///< Empty for the object itself (ISA only).
  CMPIPredOp op = CMPI_PredOp_Equals;
  TCIMValue value;            ///< String, sint64, uint64, real64 or boolean; a class name for ISA.
  std::string otherProperty;  ///< Stands for `value` unless empty.

  /// None when a value is missing or cannot be compared.
  std::optional<bool> Test(const IQueryObject& object) const;
  /// The comparison that holds when this one does not.
  TPredicate Negate() const;
};

/// A condition: a comparison, or several under AND, OR, NOT.
struct TCondition {
  enum class EKind { kPredicate, kAnd, kOr, kNot };

  EKind kind = EKind::kPredicate;
  TPredicate predicate;                                     ///< Of kPredicate.
  std::vector<std::shared_ptr<const TCondition>> operands;  ///< Of the others; one of kNot.

  /// None when it depends on what is missing.
  std::optional<bool> Test(const IQueryObject& object) const;
};

using TClause = std::vector<TPredicate>;

/// `condition` as a list of clauses: OR over clauses of AND, or with `isConjunctive` AND over
/// clauses of OR. No NOT is left.
/// Errors: TBrokerFault (CMPI_RC_ERR_QUERY_FEATURE_NOT_SUPPORTED) for more than 4096 clauses.
std::vector<TClause> Normalize(const TCondition& condition, bool isConjunctive);

/// Whether `text` matches `pattern`, in which "%" stands for any text and "_" for any character.
bool IsLike(const std::string& text, const std::string& pattern);

}  // namespace NZEPQEL20::cmpi
