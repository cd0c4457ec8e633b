// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBrokerSelectCond.h"

#include "platform/cmpi/QueryObjects.h"
#include "platform/cmpi/TBrokerString.h"
#include "platform/cmpi/THostLease.h"

namespace NZEPQEL20::cmpi {

namespace {

/// Errors: TBrokerFault (CMPI_RC_ERR_NO_SUCH_PROPERTY) beyond the end, as for all counted things.
template <class T>
const T& At(const std::vector<T>& list, CMPICount index) {
  if (index >= list.size()) {
    throw TBrokerFault(CMPI_RC_ERR_NO_SUCH_PROPERTY, "index beyond the last condition");
  }
  return list[index];
}

CMPICount GetCountAndType(const CMPISelectCond* self, int* kind, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TBrokerSelectCond& condition = TBrokerSelectCond::From(self);
    if (kind != nullptr) *kind = condition.IsConjunctive() ? CMPI_COND_COD : CMPI_COND_DOC;
    return static_cast<CMPICount>(condition.GetClauses().size());
  });
}

CMPISubCond* GetSubCondAt(const CMPISelectCond* self, CMPICount index, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPISubCond* {
    return Make<TBrokerSubCond>(At(TBrokerSelectCond::From(self).GetClauses(), index));
  });
}

CMPICount GetCount(const CMPISubCond* self, CMPIStatus* rc) noexcept {
  return Answer(
      rc, [&] { return static_cast<CMPICount>(TBrokerSubCond::From(self).GetClause().size()); });
}

CMPIPredicate* GetPredicateAt(const CMPISubCond* self, CMPICount index, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIPredicate* {
    return Make<TBrokerPredicate>(At(TBrokerSubCond::From(self).GetClause(), index));
  });
}

CMPIPredicate* GetPredicateFor(const CMPISubCond* self, const char* property,
                               CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIPredicate* {
    const std::string name = RequireName(property, "property name");
    for (const TPredicate& predicate : TBrokerSubCond::From(self).GetClause()) {
      if (IsSameName(predicate.property, name)) return Make<TBrokerPredicate>(predicate);
    }
    throw TBrokerFault(CMPI_RC_ERR_NO_SUCH_PROPERTY, "no condition about " + name);
  });
}

/// What kind of thing stands on the right of a comparison.
CMPIType OperandType(const TPredicate& predicate) {
  if (!predicate.otherProperty.empty()) return CMPI_nameString;
  if (predicate.op == CMPI_PredOp_Isa || predicate.op == CMPI_PredOp_NotIsa) {
    return CMPI_classNameString;
  }
  switch (predicate.value.GetType()) {
    case ECIMType::kSInt64:
    case ECIMType::kUInt64:
      return CMPI_integerString;
    case ECIMType::kReal64:
      return CMPI_realString;
    case ECIMType::kBoolean:
      return CMPI_booleanString;
    default:
      return CMPI_charString;
  }
}

std::string RightSide(const TPredicate& predicate) {
  return predicate.otherProperty.empty() ? predicate.value.ToString(10) : predicate.otherProperty;
}

CMPIStatus GetData(const CMPIPredicate* self, CMPIType* type, CMPIPredOp* op, CMPIString** left,
                   CMPIString** right) noexcept {
  return AnswerStatus([&] {
    const TPredicate& predicate = TBrokerPredicate::From(self).GetPredicate();
    if (type != nullptr) *type = OperandType(predicate);
    if (op != nullptr) *op = predicate.op;
    if (left != nullptr) *left = MakeString(predicate.property);
    if (right != nullptr) *right = MakeString(RightSide(predicate));
  });
}

CMPIBoolean EvaluateUsingAccessor(const CMPIPredicate* self, CMPIAccessor* accessor, void* user,
                                  CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TPredicate& predicate = TBrokerPredicate::From(self).GetPredicate();
    const THostLease host(nullptr);
    const TQueriedAccessor object(accessor, user, host.Get());
    return static_cast<CMPIBoolean>(predicate.Test(object).value_or(false) ? 1 : 0);
  });
}

const char* GetOperatorText(CMPIPredOp op) {
  constexpr const char* kTexts[] = {"=",   "<>",      "<",    ">=",       ">",           "<=",
                                    "ISA", "NOT ISA", "LIKE", "NOT LIKE", "IS NOT NULL", "IS NULL"};
  return kTexts[op - CMPI_PredOp_Equals];
}

std::string DescribeClause(const TClause& clause, const char* link) {
  std::string text;
  for (const TPredicate& predicate : clause) {
    if (!text.empty()) text += link;
    text += predicate.property + ' ' + GetOperatorText(predicate.op);
    const std::string right = RightSide(predicate);
    if (!right.empty()) text += ' ' + right;
  }
  return text;
}

}  // namespace

std::string TBrokerSelectCond::Describe() const {
  std::string text;
  for (const TClause& clause : m_clauses) {
    if (!text.empty()) text += m_isConjunctive ? " AND " : " OR ";
    text += '(' + DescribeClause(clause, m_isConjunctive ? " OR " : " AND ") + ')';
  }
  return text;
}

std::string TBrokerSubCond::Describe() const {
  return DescribeClause(m_clause, ", ");
}

std::string TBrokerPredicate::Describe() const {
  return DescribeClause({m_predicate}, "");
}

const CMPISelectCondFT TBrokerSelectCond::kTable = {kBrokerVersion, Release, Clone, GetCountAndType,
                                                    GetSubCondAt};

const CMPISubCondFT TBrokerSubCond::kTable = {kBrokerVersion, Release,        Clone,
                                              GetCount,       GetPredicateAt, GetPredicateFor};

const CMPIPredicateFT TBrokerPredicate::kTable = {kBrokerVersion, Release, Clone, GetData,
                                                  EvaluateUsingAccessor};

}  // namespace NZEPQEL20::cmpi
