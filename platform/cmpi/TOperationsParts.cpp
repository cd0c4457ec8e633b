// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TOperationsParts.h"

#include <optional>

#include "platform/model/Typing.h"

namespace NZEPQEL20 {

using namespace cmpi;

void TCMPIOperations::TParts::AskAll(const TServices& services, const TAsk& ask,
                                     const TTake& take) {
  std::optional<TQELException> failed;
  bool hasSucceeded = false;
  for (const TService& service : services) {
    TCallOutcome outcome;
    try {
      outcome = ask(service);
    } catch (const TQELException& failure) {
      if (failure.GetCIMStatus() != CMPI_RC_ERR_NOT_FOUND) {
        providers.Report(failure.what());
        if (!failed) failed = failure;
        continue;
      }
    }
    hasSucceeded = true;
    if (!take(service, outcome)) return;
  }
  if (failed && !hasSucceeded) throw TQELException(*failed);
}

TCallOutcome TCMPIOperations::TParts::AskFirst(const TServices& services, const TAsk& ask,
                                               const std::string& missing) {
  std::optional<TQELException> refused;
  for (const TService& service : services) {
    try {
      return ask(service);
    } catch (const TQELException& failure) {
      const bool isElsewhere = failure.GetCIMStatus() == CMPI_RC_ERR_NOT_SUPPORTED ||
                               failure.GetCIMStatus() == CMPI_RC_ERR_NOT_FOUND;
      if (!isElsewhere) throw;
      refused = failure;
    }
  }
  if (refused) throw TQELException(*refused);
  throw TQELException(TQELStatusCode::kCIMError, missing, CMPI_RC_ERR_NOT_FOUND);
}

TCallOutcome TCMPIOperations::TParts::Call(const TService& service, const std::string& what,
                                           const std::string& nameSpace, TBrokerResult::EKind kind,
                                           const TProviderFunction& function) {
  const TCallSite site{nameSpace, service.registration->parameters};
  TCallOutcome outcome = CallProvider(providers.GetBroker(), site, kind, function);
  if (outcome.code != CMPI_RC_OK) {
    throw outcome.ToException(what + " failed in " + service.provider->Describe());
  }
  return outcome;
}

TCIMInstanceData TCMPIOperations::TParts::Finish(std::shared_ptr<TInstanceContent>& content,
                                                 const std::string& nameSpace,
                                                 const std::string& className) const {
  // A provider may have kept a clone; nobody else shares the content once the call has ended.
  if (content.use_count() > 1) content = std::make_shared<TInstanceContent>(*content);
  if (content->path.nameSpace.empty()) content->path.nameSpace = nameSpace;
  if (content->path.className.empty()) content->path.className = className;
  return std::move(*content).Take(&providers);
}

TCIMReference TCMPIOperations::TParts::Finish(TPathContent& content, const std::string& nameSpace,
                                              const std::string& className) const {
  if (content.nameSpace.empty()) content.nameSpace = nameSpace;
  if (content.className.empty()) content.className = className;
  return content.ToReference();
}

TPathContent TCMPIOperations::TParts::ToContent(const TCIMReference& path) const {
  const auto declaration = providers.FindClass(path.GetClassName());
  return TPathContent::From(ConvertKeys(path, declaration.get()));
}

}  // namespace NZEPQEL20
