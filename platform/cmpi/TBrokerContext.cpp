// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBrokerContext.h"

#include "platform/cmpi/TBrokerArgs.h"
#include "platform/cmpi/TBrokerString.h"
#include "platform/cmpi/UserName.h"
#include "platform/cmpi/Values.h"

namespace NZEPQEL20::cmpi {

namespace {

/// Where providers look for the parameters of their registration.
constexpr const char* kParametersEntry = "sfcbProviderParameters";

CMPIData GetEntry(const CMPIContext* self, const char* name, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TNamedValues& entries = TBrokerContext::From(self).GetEntries();
    const auto* entry = FindNamed(entries, RequireName(name, "entry name"));
    if (entry == nullptr) {
      throw TBrokerFault(CMPI_RC_ERR_NO_SUCH_PROPERTY, std::string("no context entry ") + name);
    }
    return ToCMPI(entry->value);
  });
}

CMPIData GetEntryAt(const CMPIContext* self, CMPICount index, CMPIString** name,
                    CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TNamedValues& entries = TBrokerContext::From(self).GetEntries();
    if (index >= entries.size()) {
      throw TBrokerFault(CMPI_RC_ERR_NO_SUCH_PROPERTY, "index beyond the last context entry");
    }
    if (name != nullptr) *name = MakeString(entries[index].name);
    return ToCMPI(entries[index].value);
  });
}

CMPICount GetEntryCount(const CMPIContext* self, CMPIStatus* rc) noexcept {
  return Answer(
      rc, [&] { return static_cast<CMPICount>(TBrokerContext::From(self).GetEntries().size()); });
}

CMPIStatus AddEntry(const CMPIContext* self, const char* name, const CMPIValue* value,
                    const CMPIType type) noexcept {
  return AnswerStatus([&] {
    TNamedValues& entries = TBrokerContext::From(self).GetEntries();
    SetNamed(entries, ToUtf8(RequireName(name, "entry name")), FromCMPI(value, type));
  });
}

}  // namespace

TNamedValues TBrokerContext::EntriesFor(const std::string& nameSpace,
                                        const std::string& parameters) {
  TNamedValues entries = {{CMPIInvocationFlags, TCIMValue::UInt32(0)},
                          {CMPIPrincipal, TCIMValue(GetEffectiveUserName())},
                          {CMPIInitNameSpace, TCIMValue(nameSpace)},
                          {CMPIRole, TCIMValue("")},
                          {CMPIAcceptLanguage, TCIMValue("")},
                          {CMPIContentLanguage, TCIMValue("")}};
  if (!parameters.empty()) entries.push_back({kParametersEntry, TCIMValue(ToUtf8(parameters))});
  return entries;
}

std::string TBrokerContext::Describe() const {
  return '(' + DescribeNamed(m_entries) + ')';
}

const CMPIContextFT TBrokerContext::kTable = {kBrokerVersion, Release,       Clone,   GetEntry,
                                              GetEntryAt,     GetEntryCount, AddEntry};

}  // namespace NZEPQEL20::cmpi
