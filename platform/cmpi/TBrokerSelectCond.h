// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/cmpi/TBrokerObjectOf.h"
#include "platform/cmpi/query/TCondition.h"

namespace NZEPQEL20::cmpi {

/// CMPISelectCond: a condition in a normal form; without clauses everything meets it.
class TBrokerSelectCond : public TBrokerObjectOf<TBrokerSelectCond, CMPISelectCond> {
 public:
  static const CMPISelectCondFT kTable;

  /// With `isConjunctive` AND over clauses of OR, otherwise OR over clauses of AND.
  TBrokerSelectCond(bool isConjunctive, std::vector<TClause> clauses)
      : m_isConjunctive(isConjunctive), m_clauses(std::move(clauses)) {}

  bool IsConjunctive() const { return m_isConjunctive; }
  const std::vector<TClause>& GetClauses() const { return m_clauses; }
  std::string Describe() const override;
  std::unique_ptr<TBrokerSelectCond> Copy() const {
    return std::make_unique<TBrokerSelectCond>(m_isConjunctive, m_clauses);
  }

 private:
  bool m_isConjunctive;
  std::vector<TClause> m_clauses;
};

/// CMPISubCond: one clause.
class TBrokerSubCond : public TBrokerObjectOf<TBrokerSubCond, CMPISubCond> {
 public:
  static const CMPISubCondFT kTable;

  explicit TBrokerSubCond(TClause clause) : m_clause(std::move(clause)) {}

  const TClause& GetClause() const { return m_clause; }
  std::string Describe() const override;
  std::unique_ptr<TBrokerSubCond> Copy() const {
    return std::make_unique<TBrokerSubCond>(m_clause);
  }

 private:
  TClause m_clause;
};

/// CMPIPredicate: one comparison.
class TBrokerPredicate : public TBrokerObjectOf<TBrokerPredicate, CMPIPredicate> {
 public:
  static const CMPIPredicateFT kTable;

  explicit TBrokerPredicate(TPredicate predicate) : m_predicate(std::move(predicate)) {}

  const TPredicate& GetPredicate() const { return m_predicate; }
  std::string Describe() const override;
  std::unique_ptr<TBrokerPredicate> Copy() const {
    return std::make_unique<TBrokerPredicate>(m_predicate);
  }

 private:
  TPredicate m_predicate;
};

}  // namespace NZEPQEL20::cmpi
