// SPDX-License-Identifier: Apache-2.0
// The chapter of TCMPIOperations about associations.
#include <algorithm>

#include "platform/cmpi/TOperationsParts.h"

namespace NZEPQEL20 {

using namespace cmpi;

namespace {

using EKind = TBrokerResult::EKind;
using TFilter = ICIMOperations::TAssociationFilter;

bool AreRelated(const TProviders& providers, const std::string& left, const std::string& right) {
  return providers.IsA(left, right) || providers.IsA(right, left);
}

/// Whether objects of `className` can be at an end of the association; true when the schema does
/// not know.
bool CanRefer(const TProviders& providers, const std::string& association,
              const std::string& className) {
  const auto declaration = providers.FindClass(association);
  if (declaration == nullptr || providers.FindClass(className) == nullptr) return true;
  bool hasReference = false;
  for (const TCIMPropertyDeclaration& property : declaration->properties) {
    if (property.type != ECIMType::kReference) continue;
    hasReference = true;
    if (property.referenceClass.empty() ||
        AreRelated(providers, property.referenceClass, className)) {
      return true;
    }
  }
  return !hasReference;
}

/// The association providers to ask about `path`, each once: a provider answers for all its
/// classes at a time.
TProviders::TServices FindRelevant(const TProviders& providers, const TCIMReference& path,
                                   const std::string& association) {
  TProviders::TServices found;
  for (const auto& service : providers.FindAll(path.GetNamespaceName(), ERole::kAssociation)) {
    const std::string& className = service.registration->className;
    if (!association.empty() && !AreRelated(providers, className, association)) continue;
    if (!CanRefer(providers, className, path.GetClassName())) continue;
    const bool isKnown = std::any_of(
        found.begin(), found.end(),
        [&](const TProviders::TService& known) { return known.provider == service.provider; });
    if (!isKnown) found.push_back(service);
  }
  return found;
}

/// Whether the filter lets a result of `className` pass; what the schema does not know passes.
bool Passes(const TProviders& providers, const std::string& className, const std::string& wanted) {
  return wanted.empty() || className.empty() || providers.FindClass(className) == nullptr ||
         providers.IsA(className, wanted);
}

}  // namespace

void TCMPIOperations::Associators(const TCIMReference& path, const TAssociationFilter& filter,
                                  const TInstanceSink& sink) {
  TProviders& providers = m_parts->providers;
  const std::string& nameSpace = path.GetNamespaceName();
  const std::string what = "Associators of " + path.GetPath();
  const auto ask = [&](const TParts::TService& service) {
    CMPIAssociationMI& mi = service.provider->GetAssociationMI(providers.GetBroker());
    const TPassedPath given(m_parts->ToContent(path));
    return m_parts->Call(service, what, nameSpace, EKind::kInstances, [&](auto* ctx, auto* result) {
      return mi.ft->associators == nullptr
                 ? NoSuchFunction()
                 : mi.ft->associators(&mi, ctx, result, given.Get(),
                                      OrNull(filter.associationClass), OrNull(filter.resultClass),
                                      OrNull(filter.role), OrNull(filter.resultRole), nullptr);
    });
  };
  const auto take = [&](const TParts::TService&, TCallOutcome& outcome) {
    for (auto& content : outcome.content.instances) {
      if (!Passes(providers, content->path.className, filter.resultClass)) continue;
      if (!sink(m_parts->Finish(content, nameSpace, filter.resultClass))) return false;
    }
    return true;
  };
  m_parts->AskAll(FindRelevant(providers, path, filter.associationClass), ask, take);
}

std::vector<TCIMReference> TCMPIOperations::AssociatorNames(const TCIMReference& path,
                                                            const TAssociationFilter& filter) {
  TProviders& providers = m_parts->providers;
  const std::string& nameSpace = path.GetNamespaceName();
  const std::string what = "AssociatorNames of " + path.GetPath();
  const auto ask = [&](const TParts::TService& service) {
    CMPIAssociationMI& mi = service.provider->GetAssociationMI(providers.GetBroker());
    const TPassedPath given(m_parts->ToContent(path));
    return m_parts->Call(service, what, nameSpace, EKind::kPaths, [&](auto* ctx, auto* result) {
      return mi.ft->associatorNames == nullptr
                 ? NoSuchFunction()
                 : mi.ft->associatorNames(
                       &mi, ctx, result, given.Get(), OrNull(filter.associationClass),
                       OrNull(filter.resultClass), OrNull(filter.role), OrNull(filter.resultRole));
    });
  };
  std::vector<TCIMReference> found;
  const auto take = [&](const TParts::TService&, TCallOutcome& outcome) {
    for (TPathContent& content : outcome.content.paths) {
      if (!Passes(providers, content.className, filter.resultClass)) continue;
      found.push_back(m_parts->Finish(content, nameSpace, filter.resultClass));
    }
    return true;
  };
  m_parts->AskAll(FindRelevant(providers, path, filter.associationClass), ask, take);
  return found;
}

void TCMPIOperations::References(const TCIMReference& path, const TAssociationFilter& filter,
                                 const TInstanceSink& sink) {
  TProviders& providers = m_parts->providers;
  const std::string& nameSpace = path.GetNamespaceName();
  const std::string what = "References of " + path.GetPath();
  const auto ask = [&](const TParts::TService& service) {
    CMPIAssociationMI& mi = service.provider->GetAssociationMI(providers.GetBroker());
    const TPassedPath given(m_parts->ToContent(path));
    return m_parts->Call(service, what, nameSpace, EKind::kInstances, [&](auto* ctx, auto* result) {
      return mi.ft->references == nullptr
                 ? NoSuchFunction()
                 : mi.ft->references(&mi, ctx, result, given.Get(), OrNull(filter.resultClass),
                                     OrNull(filter.role), nullptr);
    });
  };
  const auto take = [&](const TParts::TService& service, TCallOutcome& outcome) {
    for (auto& content : outcome.content.instances) {
      if (!Passes(providers, content->path.className, filter.resultClass)) continue;
      if (!sink(m_parts->Finish(content, nameSpace, service.registration->className))) return false;
    }
    return true;
  };
  m_parts->AskAll(FindRelevant(providers, path, filter.resultClass), ask, take);
}

std::vector<TCIMReference> TCMPIOperations::ReferenceNames(const TCIMReference& path,
                                                           const TAssociationFilter& filter) {
  TProviders& providers = m_parts->providers;
  const std::string& nameSpace = path.GetNamespaceName();
  const std::string what = "ReferenceNames of " + path.GetPath();
  const auto ask = [&](const TParts::TService& service) {
    CMPIAssociationMI& mi = service.provider->GetAssociationMI(providers.GetBroker());
    const TPassedPath given(m_parts->ToContent(path));
    return m_parts->Call(service, what, nameSpace, EKind::kPaths, [&](auto* ctx, auto* result) {
      return mi.ft->referenceNames == nullptr
                 ? NoSuchFunction()
                 : mi.ft->referenceNames(&mi, ctx, result, given.Get(), OrNull(filter.resultClass),
                                         OrNull(filter.role));
    });
  };
  std::vector<TCIMReference> found;
  const auto take = [&](const TParts::TService& service, TCallOutcome& outcome) {
    for (TPathContent& content : outcome.content.paths) {
      if (!Passes(providers, content.className, filter.resultClass)) continue;
      found.push_back(m_parts->Finish(content, nameSpace, service.registration->className));
    }
    return true;
  };
  m_parts->AskAll(FindRelevant(providers, path, filter.resultClass), ask, take);
  return found;
}

}  // namespace NZEPQEL20
