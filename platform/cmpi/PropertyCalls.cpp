// SPDX-License-Identifier: Apache-2.0
// The chapter of TProviders about providers of single properties.
#include "platform/cmpi/TBrokerPath.h"
#include "platform/cmpi/TProviders.h"
#include "platform/cmpi/Values.h"
#include "platform/model/Typing.h"

namespace NZEPQEL20::cmpi {

std::optional<TCallOutcome> TProviders::CallProperty(const char* function, const std::string& what,
                                                     const TCIMReference& path,
                                                     const TPropertyCall& call) {
  const std::string& nameSpace = path.GetNamespaceName();
  const auto declaration = FindClass(path.GetClassName());
  for (const TService& service :
       FindServicesOfObject(nameSpace, path.GetClassName(), ERole::kProperty)) {
    const auto functions = service.provider->GetPropertyMI(m_broker);
    CMPIPropertyMI& mi = *functions;
    const TPassedPath given(TPathContent::From(ConvertKeys(path, declaration.get())));
    const TCallSite site{nameSpace, service.registration->parameters,
                         service.provider->GetCallee(function)};
    TCallOutcome outcome = CallProvider(
        m_broker, site, TBrokerResult::EKind::kData,
        [&](auto* context, auto* result) { return call(mi, context, result, given.Get()); });
    if (outcome.code == CMPI_RC_OK) return outcome;
    // Another provider, or the instance as a whole, may have what this one has not.
    if (outcome.code == CMPI_RC_ERR_NOT_SUPPORTED) continue;
    throw outcome.ToException(what + " of " + path.GetPath() + " failed in " +
                              service.provider->Describe());
  }
  return std::nullopt;
}

std::optional<TCIMValue> TProviders::GetProperty(const TCIMReference& path,
                                                 const std::string& name) {
  const auto outcome =
      CallProperty("getProperty", "GetProperty " + name, path,
                   [&](CMPIPropertyMI& mi, auto* context, auto* result, auto* given) {
                     return mi.ft->getProperty == nullptr
                                ? NoSuchFunction()
                                : mi.ft->getProperty(&mi, context, result, given, name.c_str());
                   });
  if (!outcome) return std::nullopt;
  return outcome->content.data.empty() ? TCIMValue() : outcome->content.data.front();
}

bool TProviders::SetProperty(const TCIMReference& path, const std::string& name,
                             const TCIMValue& value) {
  const auto outcome = CallProperty(
      "setProperty", "SetProperty " + name, path,
      [&](CMPIPropertyMI& mi, auto* context, auto* result, auto* given) {
        // The value's objects are made inside the call, so that they end with it.
        return mi.ft->setProperty == nullptr
                   ? NoSuchFunction()
                   : mi.ft->setProperty(&mi, context, result, given, name.c_str(), ToCMPI(value));
      });
  return outcome.has_value();
}

}  // namespace NZEPQEL20::cmpi
