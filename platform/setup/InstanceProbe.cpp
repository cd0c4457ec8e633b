// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/InstanceProbe.h"

#include "platform/cmpi/ProviderCall.h"
#include "platform/cmpi/TBrokerPath.h"

namespace NZEPQEL20::setup {
namespace {

using cmpi::CallProvider;
using cmpi::NoSuchFunction;
using cmpi::TBrokerResult;
using cmpi::TCallOutcome;
using cmpi::TCallSite;
using cmpi::TPassedPath;

TCallOutcome AskForInstances(cmpi::TBroker& broker, CMPIInstanceMI& mi, const TCallSite& site,
                             const TPassedPath& path) {
  return CallProvider(
      broker, site, TBrokerResult::EKind::kInstances, [&](auto* context, auto* result) {
        return mi.ft->enumerateInstances == nullptr
                   ? NoSuchFunction()
                   : mi.ft->enumerateInstances(&mi, context, result, path.Get(), nullptr);
      });
}

TCallOutcome AskForNames(cmpi::TBroker& broker, CMPIInstanceMI& mi, const TCallSite& site,
                         const TPassedPath& path) {
  return CallProvider(broker, site, TBrokerResult::EKind::kPaths, [&](auto* context, auto* result) {
    return mi.ft->enumerateInstanceNames == nullptr
               ? NoSuchFunction()
               : mi.ft->enumerateInstanceNames(&mi, context, result, path.Get());
  });
}

}  // namespace

std::string DescribeEnumeration(const TRegistration& entry, const std::string& nameSpace) {
  return "enumerating class " + entry.className + " in " + nameSpace + " by provider " +
         entry.providerName;
}

std::optional<TProviderFinding> ProbeInstances(const cmpi::TProviders& providers,
                                               const cmpi::TProviders::TService& service,
                                               const std::string& nameSpace) {
  const TRegistration& entry = *service.registration;
  cmpi::TBroker& broker = providers.GetBroker();
  const auto functions = service.provider->GetInstanceMI(broker);
  CMPIInstanceMI& mi = *functions;
  const TCallSite site = {nameSpace, entry.parameters};
  const TPassedPath path(cmpi::TPathContent{{}, nameSpace, entry.className, {}});
  TCallOutcome outcome = AskForInstances(broker, mi, site, path);
  if (outcome.code == CMPI_RC_ERR_NOT_SUPPORTED) outcome = AskForNames(broker, mi, site, path);
  // "Not found" counts as none, and an association class may be found by what it joins.
  if (outcome.code == CMPI_RC_OK || outcome.code == CMPI_RC_ERR_NOT_SUPPORTED ||
      outcome.code == CMPI_RC_ERR_NOT_FOUND) {
    return std::nullopt;
  }
  const std::string words = outcome.message == cmpi::GetCodeName(outcome.code)
                                ? outcome.message
                                : cmpi::GetCodeName(outcome.code) + ": " + outcome.message;
  return TProviderFinding{
      true, kEnumerationRule,
      entry.library + ": " + DescribeEnumeration(entry, nameSpace) + " failed: " + words,
      "answer OK without instances where there is nothing to be found"};
}

}  // namespace NZEPQEL20::setup
