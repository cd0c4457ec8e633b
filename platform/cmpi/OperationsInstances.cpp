// SPDX-License-Identifier: Apache-2.0
// The chapter of TCMPIOperations about instances.
#include <algorithm>
#include <set>

#include "platform/cmpi/ObjectIdentity.h"
#include "platform/cmpi/TBrokerInstance.h"
#include "platform/cmpi/TOperationsParts.h"
#include "platform/cmpi/TWantedProperties.h"

namespace NZEPQEL20 {

using namespace cmpi;

namespace {

using EKind = TBrokerResult::EKind;

/// Whether a provider asked for one class gave an object that belongs to another: providers
/// ignore the class that they are asked for.
bool IsForOther(const TProviders& providers, const TProviders::TServices& all,
                const TProviders::TService& asked, const std::string& className) {
  const std::string& wanted = asked.registration->className;
  if (className.empty() || IsSameName(className, wanted)) return false;
  if (providers.FindClass(className) == nullptr) return false;
  if (!providers.IsA(className, wanted)) return true;
  for (const auto& other : all) {
    if (other.provider == asked.provider && IsSameName(other.registration->className, className)) {
      return true;
    }
  }
  return false;
}

/// Whether `found` is no `wanted`, and comes of a provider that was asked because it serves a class
/// above that.
bool IsAbove(const TProviders& providers, const TProviders::TService& asked,
             const std::string& wanted, const std::string& found) {
  return !providers.IsA(asked.registration->className, wanted) && !providers.IsA(found, wanted);
}

/// Tells of an object that is left out, unless the provider gives it where it is asked for.
void TellStray(TProviders& providers, const TProviders::TService& asked,
               const std::string& className) {
  const auto& all = providers.GetServices();
  const bool isServed = std::any_of(all.begin(), all.end(), [&](const auto& other) {
    return other.provider == asked.provider &&
           providers.IsA(className, other.registration->className);
  });
  if (isServed) return;
  providers.Report(asked.provider->Describe() + " gave an object of " + className + " where " +
                   asked.registration->className + " was asked for; it is left out; see rule R18");
}

/// An enumeration of a class nobody serves is empty; one of an unknown class is an error.
void RequireKnown(const TProviders& providers, const TProviders::TServices& services,
                  const std::string& what, const std::string& className) {
  if (!services.empty() || providers.FindClass(className) != nullptr) return;
  throw TQELException(TQELStatusCode::kNotFound, what + ": no such class",
                      CMPI_RC_ERR_INVALID_CLASS);
}

/// Leaves out what several providers give. What a single one gives is its own affair.
class TSeen {
 public:
  explicit TSeen(const TProviders::TServices& services) {
    for (const auto& service : services) {
      m_isNeeded = m_isNeeded || service.provider != services.front().provider;
    }
  }
  bool IsNew(const TCIMReference& path) {
    return !m_isNeeded || path.GetKeys().empty() || m_seen.insert(GetIdentity(path, {})).second;
  }

 private:
  bool m_isNeeded = false;
  std::set<std::string> m_seen;
};

using TPassedInstance = TPassed<TBrokerInstance>;

}  // namespace

void TCMPIOperations::EnumerateInstances(const std::string& nameSpace, const std::string& className,
                                         const TInstanceSink& sink) {
  TProviders& providers = m_parts->providers;
  const auto services = m_parts->FindEnumerable(nameSpace, className);
  const TQuestion question{"EnumerateInstances of " + nameSpace + ':' + className, nameSpace,
                           TWantedProperties::Get()};
  RequireKnown(providers, services, question.what, className);
  TSeen seen(services);
  const auto take = [&](const TParts::TService& service, TCallOutcome& outcome) {
    for (auto& content : outcome.content.instances) {
      if (IsForOther(providers, services, service, content->path.className)) {
        TellStray(providers, service, content->path.className);
        continue;
      }
      TCIMInstanceData data = m_parts->Finish(content, nameSpace, service.registration->className);
      if (IsAbove(providers, service, className, data.path.GetClassName())) continue;
      if (seen.IsNew(data.path) && !sink(std::move(data))) return false;
    }
    return true;
  };
  m_parts->AskAll(
      services, [&](const auto& service) { return m_parts->AskInstances(service, question); },
      take);
}

std::vector<TCIMReference> TCMPIOperations::EnumerateInstanceNames(const std::string& nameSpace,
                                                                   const std::string& className) {
  TProviders& providers = m_parts->providers;
  const auto services = m_parts->FindEnumerable(nameSpace, className);
  const TQuestion question{"EnumerateInstanceNames of " + nameSpace + ':' + className, nameSpace,
                           nullptr};
  RequireKnown(providers, services, question.what, className);
  TSeen seen(services);
  std::vector<TCIMReference> found;
  const auto take = [&](const TParts::TService& service, TCallOutcome& outcome) {
    for (TPathContent& path : outcome.content.paths) {
      if (IsForOther(providers, services, service, path.className)) {
        TellStray(providers, service, path.className);
        continue;
      }
      TCIMReference name = m_parts->Finish(path, nameSpace, service.registration->className);
      if (IsAbove(providers, service, className, name.GetClassName())) continue;
      if (seen.IsNew(name)) found.push_back(std::move(name));
    }
    return true;
  };
  m_parts->AskAll(
      services, [&](const auto& service) { return m_parts->AskInstanceNames(service, question); },
      take);
  return found;
}

TCIMInstanceData TCMPIOperations::GetInstance(const TCIMReference& path) {
  TProviders& providers = m_parts->providers;
  const std::string& nameSpace = path.GetNamespaceName();
  const TQuestion question{"GetInstance of " + path.GetPath(), nameSpace, TWantedProperties::Get()};
  const TPathContent content = m_parts->ToContent(path);
  const auto ask = [&](const TParts::TService& service) {
    return m_parts->AskGet(service, question, m_parts->ForService(service, content));
  };
  TCallOutcome outcome = m_parts->AskFirst(
      providers.FindServicesOfObject(nameSpace, path.GetClassName(), ERole::kInstance), ask,
      question.what + ": no provider serves the class there", true);
  auto& instance = outcome.content.instances.front();
  // The path that was asked for is the instance's own, whatever the provider forgot of it.
  if (instance->path.keys.empty()) instance->path.keys = content.keys;
  return m_parts->Finish(instance, nameSpace, path.GetClassName());
}

TCIMReference TCMPIOperations::CreateInstance(const std::string& nameSpace,
                                              const TCIMInstanceData& instance) {
  TProviders& providers = m_parts->providers;
  const std::string& className = instance.path.GetClassName();
  const std::string what = "CreateInstance of " + nameSpace + ':' + className;
  const auto ask = [&](const TParts::TService& service) {
    const auto functions = service.provider->GetInstanceMI(providers.GetBroker());
    CMPIInstanceMI& mi = *functions;
    const TPassedInstance given(TInstanceContent::From(instance));
    TPathContent target = m_parts->ToContent(instance.path);
    target.nameSpace = nameSpace;
    const TPassedPath path(target);
    return m_parts->Call(
        service, "createInstance", what, nameSpace, EKind::kPaths, [&](auto* ctx, auto* result) {
          return mi.ft->createInstance == nullptr
                     ? NoSuchFunction()
                     : mi.ft->createInstance(&mi, ctx, result, path.Get(), given.Get());
        });
  };
  TCallOutcome outcome =
      m_parts->AskFirst(providers.FindServicesOfObject(nameSpace, className, ERole::kInstance), ask,
                        what + ": no provider serves the class there");
  if (outcome.content.paths.empty()) return instance.path;
  return m_parts->Finish(outcome.content.paths.front(), nameSpace, className);
}

void TCMPIOperations::ModifyInstance(const TCIMInstanceData& instance) {
  TProviders& providers = m_parts->providers;
  const TCIMReference& path = instance.path;
  const std::string what = "ModifyInstance of " + path.GetPath();
  const char** const wanted = TWantedProperties::Get();
  const auto ask = [&](const TParts::TService& service) {
    const auto functions = service.provider->GetInstanceMI(providers.GetBroker());
    CMPIInstanceMI& mi = *functions;
    const TPassedInstance given(TInstanceContent::From(instance));
    const TPassedPath target(m_parts->ForService(service, m_parts->ToContent(path)));
    return m_parts->Call(service, "modifyInstance", what, path.GetNamespaceName(), EKind::kNothing,
                         [&](auto* ctx, auto* result) {
                           return mi.ft->modifyInstance == nullptr
                                      ? NoSuchFunction()
                                      : mi.ft->modifyInstance(&mi, ctx, result, target.Get(),
                                                              given.Get(), wanted);
                         });
  };
  m_parts->AskFirst(providers.FindServicesOfObject(path.GetNamespaceName(), path.GetClassName(),
                                                   ERole::kInstance),
                    ask, what + ": no provider serves the class there");
}

void TCMPIOperations::DeleteInstance(const TCIMReference& path) {
  TProviders& providers = m_parts->providers;
  const std::string what = "DeleteInstance of " + path.GetPath();
  const auto ask = [&](const TParts::TService& service) {
    const auto functions = service.provider->GetInstanceMI(providers.GetBroker());
    CMPIInstanceMI& mi = *functions;
    const TPassedPath target(m_parts->ForService(service, m_parts->ToContent(path)));
    return m_parts->Call(service, "deleteInstance", what, path.GetNamespaceName(), EKind::kNothing,
                         [&](auto* ctx, auto* result) {
                           return mi.ft->deleteInstance == nullptr
                                      ? NoSuchFunction()
                                      : mi.ft->deleteInstance(&mi, ctx, result, target.Get());
                         });
  };
  m_parts->AskFirst(providers.FindServicesOfObject(path.GetNamespaceName(), path.GetClassName(),
                                                   ERole::kInstance),
                    ask, what + ": no provider serves the class there");
}

}  // namespace NZEPQEL20
