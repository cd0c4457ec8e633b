// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/query/TCondition.h"

#include <cmath>
#include <cstddef>

#include "platform/cmpi/Border.h"
#include "platform/cmpi/TBrokerDateTime.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/model/DateTimeText.h"

namespace NZEPQEL20::cmpi {

namespace {

constexpr std::size_t kMaxClauses = 4096;

/// How two values stand to each other: below 0, 0 or above 0; none when they do not compare.
using TOrder = std::optional<int>;

template <class T>
int Order(const T& left, const T& right) {
  return left < right ? -1 : static_cast<int>(right < left);
}

bool IsSigned(ECIMType type) {
  return type >= ECIMType::kSInt8 && type <= ECIMType::kSInt64;
}
bool IsUnsigned(ECIMType type) {
  return type >= ECIMType::kUInt8 && type <= ECIMType::kUInt64;
}
bool IsReal(ECIMType type) {
  return type == ECIMType::kReal32 || type == ECIMType::kReal64;
}
bool IsNumber(ECIMType type) {
  return IsSigned(type) || IsUnsigned(type) || IsReal(type);
}

double AsReal(const TCIMValue& value) {
  if (IsReal(value.GetType())) return value.ToReal();
  return IsSigned(value.GetType()) ? static_cast<double>(value.ToSigned())
                                   : static_cast<double>(value.ToUnsigned());
}

TOrder OrderNumbers(const TCIMValue& left, const TCIMValue& right) {
  if (IsReal(left.GetType()) || IsReal(right.GetType())) {
    const double one = AsReal(left);
    const double other = AsReal(right);
    if (std::isnan(one) || std::isnan(other)) return std::nullopt;
    return Order(one, other);
  }
  const bool isLeftNegative = IsSigned(left.GetType()) && left.ToSigned() < 0;
  const bool isRightNegative = IsSigned(right.GetType()) && right.ToSigned() < 0;
  if (isLeftNegative != isRightNegative) return isLeftNegative ? -1 : 1;
  if (isLeftNegative) return Order(left.ToSigned(), right.ToSigned());
  const auto magnitude = [](const TCIMValue& value) {
    return IsSigned(value.GetType()) ? static_cast<std::uint64_t>(value.ToSigned())
                                     : value.ToUnsigned();
  };
  return Order(magnitude(left), magnitude(right));
}

/// Points in time compare with each other, and lengths of time do.
TOrder OrderTimes(const std::string& left, const std::string& right) {
  if (!IsDateTimeText(left) || !IsDateTimeText(right)) return std::nullopt;
  const TBrokerDateTime one(left);
  const TBrokerDateTime other(right);
  if (one.IsInterval() != other.IsInterval()) return std::nullopt;
  return Order(one.GetMicroseconds(), other.GetMicroseconds());
}

bool IsText(ECIMType type) {
  return type == ECIMType::kString || type == ECIMType::kChar16 || type == ECIMType::kReference;
}

TOrder Compare(const TCIMValue& left, const TCIMValue& right) {
  if (left.IsNull() || right.IsNull() || left.IsArray() || right.IsArray()) return std::nullopt;
  const ECIMType one = left.GetType();
  const ECIMType other = right.GetType();
  if (IsNumber(one) && IsNumber(other)) return OrderNumbers(left, right);
  const auto isTime = [](ECIMType type) { return type == ECIMType::kDateTime; };
  if ((isTime(one) || isTime(other)) && (isTime(one) || IsText(one)) &&
      (isTime(other) || IsText(other))) {
    return OrderTimes(left.ToString(10), right.ToString(10));
  }
  if (IsText(one) && IsText(other)) return Order(left.ToString(10), right.ToString(10));
  if (one == ECIMType::kBoolean && other == ECIMType::kBoolean) {
    return Order(left.ToBoolean(), right.ToBoolean());
  }
  return std::nullopt;
}

std::optional<bool> Holds(CMPIPredOp op, const TOrder& order) {
  if (!order) return std::nullopt;
  switch (op) {
    case CMPI_PredOp_Equals:
      return *order == 0;
    case CMPI_PredOp_NotEquals:
      return *order != 0;
    case CMPI_PredOp_LessThan:
      return *order < 0;
    case CMPI_PredOp_LessThanOrEquals:
      return *order <= 0;
    case CMPI_PredOp_GreaterThan:
      return *order > 0;
    default:
      return *order >= 0;
  }
}

std::optional<bool> TestIsA(const TPredicate& predicate, const IQueryObject& object) {
  std::string className = object.GetClassName();
  if (!predicate.property.empty()) {
    const auto value = object.Find(predicate.property);
    if (!value || value->IsNull() || value->IsArray()) return std::nullopt;
    if (value->GetType() == ECIMType::kInstance) {
      className = value->ToInstance()->path.GetClassName();
    } else if (value->GetType() == ECIMType::kReference) {
      className = static_cast<TCIMReference>(*value).GetClassName();
    } else {
      return std::nullopt;
    }
  }
  if (className.empty()) return std::nullopt;
  return object.IsA(className, predicate.value.ToString(10)) == (predicate.op == CMPI_PredOp_Isa);
}

std::size_t CharacterLength(const std::string& text, std::size_t at) {
  std::size_t length = 1;
  while (at + length < text.size() &&
         (static_cast<unsigned char>(text[at + length]) & 0xC0U) == 0x80U) {
    ++length;
  }
  return length;
}

using TClauses = std::vector<TClause>;

/// Every clause of one side joined with every clause of the other.
TClauses Multiply(const TClauses& left, const TClauses& right) {
  if (left.size() * right.size() > kMaxClauses) {
    throw TBrokerFault(CMPI_RC_ERR_QUERY_FEATURE_NOT_SUPPORTED,
                       "the query has too many alternatives");
  }
  TClauses result;
  for (const TClause& one : left) {
    for (const TClause& other : right) {
      result.push_back(one);
      result.back().insert(result.back().end(), other.begin(), other.end());
    }
  }
  return result;
}

TClauses Expand(const TCondition& condition, bool isNegated, bool isConjunctive) {
  using EKind = TCondition::EKind;
  if (condition.kind == EKind::kPredicate) {
    return {{isNegated ? condition.predicate.Negate() : condition.predicate}};
  }
  if (condition.kind == EKind::kNot) {
    return Expand(*condition.operands.front(), !isNegated, isConjunctive);
  }
  // One of AND and OR lists its operands' clauses, the other one distributes over them.
  const bool isAnd = (condition.kind == EKind::kAnd) != isNegated;
  const bool isList = isAnd == isConjunctive;
  TClauses result;
  if (!isList) result.emplace_back();
  for (const auto& operand : condition.operands) {
    TClauses clauses = Expand(*operand, isNegated, isConjunctive);
    if (isList) {
      result.insert(result.end(), clauses.begin(), clauses.end());
    } else {
      result = Multiply(result, clauses);
    }
  }
  if (result.size() > kMaxClauses) Multiply(result, {{}});
  return result;
}

}  // namespace

bool IsLike(const std::string& text, const std::string& pattern) {
  std::size_t at = 0;
  std::size_t in = 0;
  // Where to go on when what follows the latest "%" does not match.
  std::size_t retryIn = std::string::npos;
  std::size_t retryAt = 0;
  while (at < text.size()) {
    if (in < pattern.size() && pattern[in] == '%') {
      retryIn = ++in;
      retryAt = at;
    } else if (in < pattern.size() && pattern[in] == '_') {
      at += CharacterLength(text, at);
      ++in;
    } else if (in < pattern.size() && pattern[in] == text[at]) {
      ++at;
      ++in;
    } else if (retryIn != std::string::npos) {
      in = retryIn;
      at = ++retryAt;
    } else {
      return false;
    }
  }
  while (in < pattern.size() && pattern[in] == '%') ++in;
  return in == pattern.size();
}

std::optional<bool> TPredicate::Test(const IQueryObject& object) const {
  if (op == CMPI_PredOp_Isa || op == CMPI_PredOp_NotIsa) return TestIsA(*this, object);
  const auto found = object.Find(property);
  if (op == CMPI_PredOp_Null) return !found || found->IsNull();
  if (op == CMPI_PredOp_Not_Null) return found && !found->IsNull();
  const auto other =
      otherProperty.empty() ? std::optional<TCIMValue>(value) : object.Find(otherProperty);
  if (!found || !other) return std::nullopt;
  if (op != CMPI_PredOp_Like && op != CMPI_PredOp_NotLike) {
    return Holds(op, Compare(*found, *other));
  }
  if (found->IsNull() || other->IsNull() || found->IsArray()) return std::nullopt;
  return IsLike(found->ToString(10), other->ToString(10)) == (op == CMPI_PredOp_Like);
}

TPredicate TPredicate::Negate() const {
  constexpr CMPIPredOp kPairs[][2] = {{CMPI_PredOp_Equals, CMPI_PredOp_NotEquals},
                                      {CMPI_PredOp_LessThan, CMPI_PredOp_GreaterThanOrEquals},
                                      {CMPI_PredOp_GreaterThan, CMPI_PredOp_LessThanOrEquals},
                                      {CMPI_PredOp_Isa, CMPI_PredOp_NotIsa},
                                      {CMPI_PredOp_Like, CMPI_PredOp_NotLike},
                                      {CMPI_PredOp_Null, CMPI_PredOp_Not_Null}};
  TPredicate negated = *this;
  for (const auto& pair : kPairs) {
    if (op == pair[0]) negated.op = pair[1];
    if (op == pair[1]) negated.op = pair[0];
  }
  return negated;
}

std::optional<bool> TCondition::Test(const IQueryObject& object) const {
  if (kind == EKind::kPredicate) return predicate.Test(object);
  if (kind == EKind::kNot) {
    const auto inner = operands.front()->Test(object);
    return inner ? std::optional<bool>(!*inner) : std::nullopt;
  }
  // FALSE decides an AND and TRUE an OR, whatever is unknown besides.
  const bool decisive = kind == EKind::kOr;
  std::optional<bool> result = !decisive;
  for (const auto& operand : operands) {
    const auto one = operand->Test(object);
    if (one && *one == decisive) return decisive;
    if (!one) result = std::nullopt;
  }
  return result;
}

std::vector<TClause> Normalize(const TCondition& condition, bool isConjunctive) {
  return Expand(condition, false, isConjunctive);
}

}  // namespace NZEPQEL20::cmpi
