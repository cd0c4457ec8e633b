// SPDX-License-Identifier: Apache-2.0
// The chapter of TCMPIOperations about asking one provider for instances, also one that answers
// only some of the questions.
#include "platform/cmpi/ObjectIdentity.h"
#include "platform/cmpi/TOperationsParts.h"

namespace NZEPQEL20 {

using namespace cmpi;

namespace {

using EKind = TBrokerResult::EKind;

TPathContent ClassPath(const TQuestion& question, const TProviders::TService& service) {
  return {{}, question.nameSpace, service.registration->className, {}};
}

}  // namespace

TCallOutcome TCMPIOperations::TParts::CallEnumerate(const TService& service,
                                                    const TQuestion& question) {
  const auto functions = service.provider->GetInstanceMI(providers.GetBroker());
  CMPIInstanceMI& mi = *functions;
  const TPassedPath path(ClassPath(question, service));
  return Call(service, "enumerateInstances", question.what, question.nameSpace, EKind::kInstances,
              [&](auto* ctx, auto* result) {
                return mi.ft->enumerateInstances == nullptr
                           ? NoSuchFunction()
                           : mi.ft->enumerateInstances(&mi, ctx, result, path.Get(),
                                                       question.wanted);
              });
}

TCallOutcome TCMPIOperations::TParts::CallEnumerateNames(const TService& service,
                                                         const TQuestion& question) {
  const auto functions = service.provider->GetInstanceMI(providers.GetBroker());
  CMPIInstanceMI& mi = *functions;
  const TPassedPath path(ClassPath(question, service));
  return Call(service, "enumerateInstanceNames", question.what, question.nameSpace, EKind::kPaths,
              [&](auto* ctx, auto* result) {
                return mi.ft->enumerateInstanceNames == nullptr
                           ? NoSuchFunction()
                           : mi.ft->enumerateInstanceNames(&mi, ctx, result, path.Get());
              });
}

TCallOutcome TCMPIOperations::TParts::CallGet(const TService& service, const TQuestion& question,
                                              const TPathContent& path) {
  const auto functions = service.provider->GetInstanceMI(providers.GetBroker());
  CMPIInstanceMI& mi = *functions;
  const TPassedPath given(path);
  TCallOutcome outcome =
      Call(service, "getInstance", question.what, question.nameSpace, EKind::kInstances,
           [&](auto* ctx, auto* result) {
             return mi.ft->getInstance == nullptr
                        ? NoSuchFunction()
                        : mi.ft->getInstance(&mi, ctx, result, given.Get(), question.wanted);
           });
  if (!outcome.content.instances.empty()) return outcome;
  // Whoever asked may pass over what is not there; this is another matter.
  const std::string who = service.provider->Describe();
  providers.Report(
      question.what + ": " + who +
          " answered OK and returned no instance; it counts as not found; see rule R18",
      who + service.registration->className);
  throw TQELException(TQELStatusCode::kCIMError,
                      question.what + ": " + who + " returned no instance", CMPI_RC_ERR_NOT_FOUND);
}

TCallOutcome TCMPIOperations::TParts::AskEnumerate(const TService& service,
                                                   const TQuestion& question) {
  try {
    return CallEnumerate(service, question);
  } catch (const TQELException& failure) {
    if (!IsRefusal(failure)) throw;
  }
  TCallOutcome outcome = CallEnumerateNames(service, question);
  std::optional<TQELException> failed;
  for (TPathContent& path : outcome.content.paths) {
    if (path.nameSpace.empty()) path.nameSpace = question.nameSpace;
    if (path.className.empty()) path.className = service.registration->className;
    try {
      const auto instance = CallGet(service, question, path).content.instances.front();
      if (instance->path.keys.empty()) instance->path.keys = path.keys;
      outcome.content.instances.push_back(instance);
    } catch (const TQELException& failure) {
      // It may have gone since it was named.
      if (failure.GetCIMStatus() == CMPI_RC_ERR_NOT_FOUND) continue;
      providers.ReportFailure(failure);
      if (!failed) failed = failure;
    }
  }
  if (failed && outcome.content.instances.empty()) throw TQELException(*failed);
  return outcome;
}

TCallOutcome TCMPIOperations::TParts::AskEnumerateNames(const TService& service,
                                                        const TQuestion& question) {
  try {
    return CallEnumerateNames(service, question);
  } catch (const TQELException& failure) {
    if (!IsRefusal(failure)) throw;
  }
  TCallOutcome outcome = CallEnumerate(service, {question.what, question.nameSpace, nullptr});
  for (const auto& instance : outcome.content.instances) {
    outcome.content.paths.push_back(instance->GetPath(&providers));
  }
  return outcome;
}

TCallOutcome TCMPIOperations::TParts::AskGet(const TService& service, const TQuestion& question,
                                             const TPathContent& path) {
  try {
    return CallGet(service, question, path);
  } catch (const TQELException& failure) {
    if (!IsRefusal(failure)) throw;
  }
  const TCIMReference wanted = path.ToReference();
  // All properties, because the keys tell which instance it is.
  TCallOutcome outcome = CallEnumerate(service, {question.what, question.nameSpace, nullptr});
  for (auto& instance : outcome.content.instances) {
    if (!IsSameObject(providers, instance->GetPath(&providers).ToReference(), wanted)) continue;
    std::swap(outcome.content.instances.front(), instance);
    return outcome;
  }
  throw TQELException(TQELStatusCode::kCIMError,
                      question.what + ": " + service.provider->Describe() + " has no such instance",
                      CMPI_RC_ERR_NOT_FOUND);
}

}  // namespace NZEPQEL20
