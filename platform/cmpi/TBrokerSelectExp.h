// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "platform/cmpi/TBrokerObjectOf.h"
#include "platform/cmpi/query/TQuery.h"

namespace NZEPQEL20::cmpi {

/// CMPISelectExp: a query.
class TBrokerSelectExp : public TBrokerObjectOf<TBrokerSelectExp, CMPISelectExp> {
 public:
  static const CMPISelectExpFT kTable;

  explicit TBrokerSelectExp(std::shared_ptr<const TQuery> query) : m_query(std::move(query)) {}

  const TQuery& GetQuery() const { return *m_query; }
  std::string Describe() const override { return m_query->GetText(); }
  std::unique_ptr<TBrokerSelectExp> Copy() const {
    return std::make_unique<TBrokerSelectExp>(m_query);
  }

 private:
  std::shared_ptr<const TQuery> m_query;
};

/// CMPIEnumerationFilter: a query that instances are matched with.
class TBrokerEnumerationFilter
    : public TBrokerObjectOf<TBrokerEnumerationFilter, CMPIEnumerationFilter> {
 public:
  static const CMPIEnumerationFilterFT kTable;

  explicit TBrokerEnumerationFilter(std::shared_ptr<const TQuery> query)
      : m_query(std::move(query)) {}

  const TQuery& GetQuery() const { return *m_query; }
  std::string Describe() const override { return m_query->GetText(); }
  std::unique_ptr<TBrokerEnumerationFilter> Copy() const {
    return std::make_unique<TBrokerEnumerationFilter>(m_query);
  }

 private:
  std::shared_ptr<const TQuery> m_query;
};

/// The query that a provider gives.
/// Errors: TBrokerFault, as TQuery::Parse(); CMPI_RC_ERR_INVALID_PARAMETER for a NULL text.
std::shared_ptr<const TQuery> ReadQuery(const char* text, const char* language);

}  // namespace NZEPQEL20::cmpi
