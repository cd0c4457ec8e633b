// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBrokerSelectExp.h"

#include "platform/cmpi/QueryObjects.h"
#include "platform/cmpi/TBrokerInstance.h"
#include "platform/cmpi/TBrokerSelectCond.h"
#include "platform/cmpi/TBrokerString.h"
#include "platform/cmpi/THostLease.h"

namespace NZEPQEL20::cmpi {

namespace {

CMPIBoolean Matches(const TQuery& query, const CMPIInstance* instance) {
  const TInstanceContent& content = TBrokerInstance::From(instance).GetContent();
  const THostLease host(nullptr);
  const TQueriedInstance object(content.path.className, content.properties, host.Get());
  return static_cast<CMPIBoolean>(query.Matches(object) ? 1 : 0);
}

CMPIBoolean Evaluate(const CMPISelectExp* self, const CMPIInstance* instance,
                     CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return Matches(TBrokerSelectExp::From(self).GetQuery(), instance); });
}

CMPIString* GetString(const CMPISelectExp* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return MakeString(TBrokerSelectExp::From(self).GetQuery().GetText()); });
}

CMPISelectCond* MakeCondition(const CMPISelectExp* self, bool isConjunctive) {
  const TQuery& query = TBrokerSelectExp::From(self).GetQuery();
  std::vector<TClause> clauses;
  if (query.GetCondition() != nullptr) clauses = Normalize(*query.GetCondition(), isConjunctive);
  return Make<TBrokerSelectCond>(isConjunctive, std::move(clauses));
}

CMPISelectCond* GetDOC(const CMPISelectExp* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return MakeCondition(self, false); });
}

CMPISelectCond* GetCOD(const CMPISelectExp* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return MakeCondition(self, true); });
}

CMPIBoolean EvaluateUsingAccessor(const CMPISelectExp* self, CMPIAccessor* accessor, void* user,
                                  CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TQuery& query = TBrokerSelectExp::From(self).GetQuery();
    const THostLease host(nullptr);
    const TQueriedAccessor object(accessor, user, host.Get());
    return static_cast<CMPIBoolean>(query.Matches(object) ? 1 : 0);
  });
}

CMPIBoolean Match(const CMPIEnumerationFilter* self, const CMPIInstance* instance,
                  CMPIStatus* rc) noexcept {
  return Answer(rc,
                [&] { return Matches(TBrokerEnumerationFilter::From(self).GetQuery(), instance); });
}

}  // namespace

std::shared_ptr<const TQuery> ReadQuery(const char* text, const char* language) {
  if (text == nullptr) throw TBrokerFault(CMPI_RC_ERR_INVALID_PARAMETER, "no query given");
  return std::make_shared<TQuery>(TQuery::Parse(ToUtf8(text), ToUtf8(TextOrEmpty(language))));
}

const CMPISelectExpFT TBrokerSelectExp::kTable = {
    kBrokerVersion, Release, Clone, Evaluate, GetString, GetDOC, GetCOD, EvaluateUsingAccessor};

const CMPIEnumerationFilterFT TBrokerEnumerationFilter::kTable = {kBrokerVersion, Release, Clone,
                                                                  Match};

}  // namespace NZEPQEL20::cmpi
