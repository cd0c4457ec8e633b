// SPDX-License-Identifier: Apache-2.0
// The chapter of TAssociationWalk about asking one provider.
#include <algorithm>

#include "platform/cmpi/TAssociationWalk.h"
#include "platform/cmpi/TNoDerivation.h"
#include "platform/cmpi/TWantedProperties.h"

namespace NZEPQEL20 {

using namespace cmpi;

using TWalk = TCMPIOperations::TParts::TAssociationWalk;

namespace {

using EKind = TBrokerResult::EKind;

/// Drops what `passes` refuses.
template <class TResult, class TPasses>
void Keep(std::vector<TResult>& results, const TPasses& passes) {
  results.erase(std::remove_if(results.begin(), results.end(),
                               [&](const TResult& result) { return !passes(result); }),
                results.end());
}

std::vector<TCIMReference> NamesOf(const std::vector<TCIMInstanceData>& instances) {
  std::vector<TCIMReference> names;
  names.reserve(instances.size());
  for (const TCIMInstanceData& data : instances) names.push_back(data.path);
  return names;
}

}  // namespace

TCallOutcome TWalk::CallFunction(
    TGroup& group, const char* name, EKind kind,
    const std::function<CMPIStatus(CMPIAssociationMI&, const CMPIContext*, const CMPIResult*,
                                   const CMPIObjectPath*)>& function) {
  const TService& service = group.services.front();
  if (!group.hasFunctions) {
    throw TQELException(
        TQELStatusCode::kCIMError,
        m_what + ": " + service.provider->Describe() + " is not registered for associations",
        CMPI_RC_ERR_NOT_SUPPORTED);
  }
  const auto functions = service.provider->GetAssociationMI(m_providers.GetBroker());
  CMPIAssociationMI& mi = *functions;
  const TPassedPath given(m_parts.ToContent(m_from));
  return m_parts.Call(
      service, name, m_what, m_from.GetNamespaceName(), kind,
      [&](auto* ctx, auto* result) { return function(mi, ctx, result, given.Get()); });
}

TWalk::TInstances TWalk::CallAssociators(TGroup& group) {
  TCallOutcome outcome = CallFunction(
      group, "associators", EKind::kInstances, [&](auto& mi, auto* ctx, auto* result, auto* path) {
        return mi.ft->associators == nullptr
                   ? NoSuchFunction()
                   : mi.ft->associators(&mi, ctx, result, path, OrNull(m_filter.associationClass),
                                        OrNull(m_filter.resultClass), OrNull(m_filter.role),
                                        OrNull(m_filter.resultRole), m_wanted);
      });
  TInstances found;
  for (auto& content : outcome.content.instances) {
    if (!PassesClass(content->path.className, m_filter.resultClass)) continue;
    found.push_back(m_parts.Finish(content, m_from.GetNamespaceName(), m_filter.resultClass));
  }
  return found;
}

TWalk::TNames TWalk::CallAssociatorNames(TGroup& group) {
  TCallOutcome outcome = CallFunction(
      group, "associatorNames", EKind::kPaths, [&](auto& mi, auto* ctx, auto* result, auto* path) {
        return mi.ft->associatorNames == nullptr
                   ? NoSuchFunction()
                   : mi.ft->associatorNames(&mi, ctx, result, path,
                                            OrNull(m_filter.associationClass),
                                            OrNull(m_filter.resultClass), OrNull(m_filter.role),
                                            OrNull(m_filter.resultRole));
      });
  TNames found;
  for (TPathContent& content : outcome.content.paths) {
    if (!PassesClass(content.className, m_filter.resultClass)) continue;
    found.push_back(m_parts.Finish(content, m_from.GetNamespaceName(), m_filter.resultClass));
  }
  return found;
}

TWalk::TInstances TWalk::CallReferences(TGroup& group, const TFilter& filter, const char** wanted) {
  TCallOutcome outcome = CallFunction(
      group, "references", EKind::kInstances, [&](auto& mi, auto* ctx, auto* result, auto* path) {
        return mi.ft->references == nullptr
                   ? NoSuchFunction()
                   : mi.ft->references(&mi, ctx, result, path, OrNull(filter.resultClass),
                                       OrNull(filter.role), wanted);
      });
  const std::string& className = group.services.front().registration->className;
  TInstances found;
  for (auto& content : outcome.content.instances) {
    found.push_back(m_parts.Finish(content, group.nameSpace, className));
  }
  Keep(found, [&](const TCIMInstanceData& data) { return PassesReference(LinkOf(data), filter); });
  return found;
}

TWalk::TNames TWalk::CallReferenceNames(TGroup& group, const TFilter& filter) {
  TCallOutcome outcome = CallFunction(
      group, "referenceNames", EKind::kPaths, [&](auto& mi, auto* ctx, auto* result, auto* path) {
        return mi.ft->referenceNames == nullptr
                   ? NoSuchFunction()
                   : mi.ft->referenceNames(&mi, ctx, result, path, OrNull(filter.resultClass),
                                           OrNull(filter.role));
      });
  const std::string& className = group.services.front().registration->className;
  TNames found;
  for (TPathContent& content : outcome.content.paths) {
    found.push_back(m_parts.Finish(content, group.nameSpace, className));
  }
  Keep(found, [&](const TCIMReference& path) { return PassesReference(LinkOf(path), filter); });
  return found;
}

bool TWalk::IsServed(const TCIMReference& path) const {
  return !m_providers
              .FindServicesOfObject(path.GetNamespaceName(), path.GetClassName(), ERole::kInstance)
              .empty();
}

TCIMInstanceData TWalk::FromName(const TCIMReference& path) const {
  if (!IsComplete(LinkOf(path))) {
    throw TQELException(TQELStatusCode::kCIMError,
                        m_what + ": " + path.GetPath() +
                            " does not tell what it joins, and nobody serves its instance",
                        CMPI_RC_ERR_NOT_SUPPORTED);
  }
  TCIMInstanceData data{path, {}};
  for (const auto& [name, value] : path.GetKeys()) data.properties.push_back({name, value});
  return data;
}

TWalk::TInstances TWalk::GetEach(const TNames& names, const char** wanted) {
  TWorstFailure failed;
  TInstances found;
  for (const TCIMReference& name : names) {
    TCIMReference path = name;
    path.SetNamespaceName(m_providers.FindNamespace(
        path.GetNamespaceName().empty() ? m_from.GetNamespaceName() : path.GetNamespaceName(),
        path.GetClassName()));
    try {
      const TWantedProperties scope(wanted);
      found.push_back(m_providers.GetOperations().GetInstance(path));
    } catch (const TQELException& failure) {
      const auto declaration = m_providers.FindClass(path.GetClassName());
      if (declaration != nullptr && declaration->isAssociation &&
          (IsRefusal(failure) || !IsServed(path))) {
        found.push_back(FromName(path));
        continue;
      }
      // It may have gone since it was named.
      if (failure.GetCIMStatus() == CMPI_RC_ERR_NOT_FOUND) continue;
      m_providers.ReportFailure(failure);
      failed.Add(failure);
    }
  }
  if (found.empty()) failed.ThrowIfAny();
  return found;
}

TWalk::TInstances TWalk::EnumerateReferences(TGroup& group) {
  const TNoDerivation guard;
  TInstances found;
  bool isServed = false;
  for (const TService& service : group.services) {
    const std::string& className = service.registration->className;
    isServed =
        isServed || !m_providers.FindServices(group.nameSpace, className, ERole::kInstance).empty();
    m_providers.GetOperations().EnumerateInstances(
        group.nameSpace, className, [&](TCIMInstanceData&& data) {
          const TLink link = LinkOf(data);
          const bool isMine = std::any_of(link.ends.begin(), link.ends.end(),
                                          [&](const TEnd& end) { return IsFrom(end); });
          if (isMine) found.push_back(std::move(data));
          return true;
        });
  }
  if (isServed) return found;
  throw TQELException(
      TQELStatusCode::kCIMError,
      m_what + ": " + group.services.front().provider->Describe() + " answers no such question",
      CMPI_RC_ERR_NOT_SUPPORTED);
}

TWalk::TInstances TWalk::AskReferences(TGroup& group, const TFilter& filter, const char** wanted) {
  try {
    return CallReferences(group, filter, wanted);
  } catch (const TQELException& failure) {
    if (!IsRefusal(failure)) throw;
  }
  try {
    return GetEach(CallReferenceNames(group, filter), wanted);
  } catch (const TQELException& failure) {
    if (!IsRefusal(failure)) throw;
  }
  const TWantedProperties all(nullptr);
  TInstances found = EnumerateReferences(group);
  Keep(found, [&](const TCIMInstanceData& data) { return PassesReference(LinkOf(data), filter); });
  return found;
}

TWalk::TNames TWalk::AskReferenceNames(TGroup& group, const TFilter& filter) {
  try {
    return CallReferenceNames(group, filter);
  } catch (const TQELException& failure) {
    if (!IsRefusal(failure)) throw;
  }
  return NamesOf(AskReferences(group, filter, nullptr));
}

std::vector<TWalk::TLink> TWalk::AskLinks(TGroup& group) {
  const TFilter all;
  std::vector<TLink> links;
  for (const TCIMReference& path : AskReferenceNames(group, all)) links.push_back(LinkOf(path));
  const bool areComplete =
      std::all_of(links.begin(), links.end(), [&](const TLink& link) { return IsComplete(link); });
  if (areComplete) return links;
  // The keys of such an association do not tell its ends.
  links.clear();
  for (const TCIMInstanceData& data : AskReferences(group, all, nullptr)) {
    links.push_back(LinkOf(data));
  }
  return links;
}

template <class TResult, class TPathOf>
void TWalk::DropStrangers(TGroup& group, std::vector<TResult>& results, const TPathOf& pathOf) {
  const bool isNeeded = !m_filter.role.empty() || !m_filter.resultRole.empty() || !group.isCovered;
  if (!isNeeded || results.empty()) return;
  std::vector<TLink> links;
  try {
    links = AskLinks(group);
  } catch (const TQELException&) {
    // Nothing shows that the provider is wrong.
    return;
  }
  const TEvidence evidence = Weigh(links);
  Keep(results, [&](const TResult& result) { return Supports(evidence, pathOf(result)); });
}

TWalk::TNames TWalk::AskAssociatorNames(TGroup& group) {
  try {
    TNames found = CallAssociatorNames(group);
    DropStrangers(group, found, [](const TCIMReference& path) { return path; });
    return found;
  } catch (const TQELException& failure) {
    if (!IsRefusal(failure)) throw;
  }
  std::vector<TLink> links;
  try {
    links = AskLinks(group);
  } catch (const TQELException& failure) {
    if (!IsRefusal(failure)) throw;
    return NamesOf(CallAssociators(group));
  }
  TNames found;
  for (const TLink& link : links) {
    for (const TEnd* end : FarEnds(link)) {
      found.push_back(end->object);
      if (end->object.GetNamespaceName().empty()) {
        found.back().SetNamespaceName(m_from.GetNamespaceName());
      }
    }
  }
  return found;
}

TWalk::TInstances TWalk::AskAssociators(TGroup& group) {
  try {
    TInstances found = CallAssociators(group);
    DropStrangers(group, found, [](const TCIMInstanceData& data) { return data.path; });
    return found;
  } catch (const TQELException& failure) {
    if (!IsRefusal(failure)) throw;
  }
  return GetEach(AskAssociatorNames(group), m_wanted);
}

}  // namespace NZEPQEL20
