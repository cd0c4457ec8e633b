// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TAssociationWalk.h"

#include <algorithm>

#include "platform/cmpi/ObjectIdentity.h"
#include "platform/cmpi/TWantedProperties.h"

namespace NZEPQEL20 {

using namespace cmpi;

using TWalk = TCMPIOperations::TParts::TAssociationWalk;

namespace {

bool AreRelated(const TProviders& providers, const std::string& left, const std::string& right) {
  return providers.IsA(left, right) || providers.IsA(right, left);
}

/// Class names as the schema spells them: providers compare them letter by letter.
ICIMOperations::TAssociationFilter SpellClasses(const TProviders& providers,
                                                ICIMOperations::TAssociationFilter filter) {
  for (std::string* name : {&filter.associationClass, &filter.resultClass}) {
    const auto declaration = providers.FindClass(*name);
    if (declaration != nullptr) *name = declaration->name;
  }
  return filter;
}

}  // namespace

TWalk::TAssociationWalk(TParts& parts, std::string what, const TCIMReference& from,
                        const TFilter& filter, const std::string& association)
    : m_parts(parts),
      m_providers(parts.providers),
      m_what(std::move(what)),
      m_from(from),
      m_filter(SpellClasses(parts.providers, filter)),
      m_wanted(TWantedProperties::Get()) {
  FindGroups(association);
}

bool TWalk::CanRefer(const std::string& className) const {
  const auto declaration = m_providers.FindClass(className);
  if (declaration == nullptr || m_providers.FindClass(m_from.GetClassName()) == nullptr) {
    return true;
  }
  bool hasReference = false;
  for (const TCIMPropertyDeclaration& property : declaration->properties) {
    if (property.type != ECIMType::kReference) continue;
    hasReference = true;
    if (property.referenceClass.empty() ||
        AreRelated(m_providers, property.referenceClass, m_from.GetClassName())) {
      return true;
    }
  }
  return !hasReference;
}

bool TWalk::IsRelevant(const std::string& className, const std::string& association) const {
  return (association.empty() || AreRelated(m_providers, className, association)) &&
         CanRefer(className);
}

void TWalk::AddService(const TService& service, bool hasFunctions, const std::string& nameSpace) {
  for (TGroup& group : m_groups) {
    const bool isSame = group.services.front().provider == service.provider &&
                        group.hasFunctions == hasFunctions && group.nameSpace == nameSpace;
    if (!isSame) continue;
    group.services.push_back(service);
    return;
  }
  TGroup group;
  group.services = {service};
  group.nameSpace = nameSpace;
  group.hasFunctions = hasFunctions;
  m_groups.push_back(std::move(group));
}

void TWalk::FindGroups(const std::string& association) {
  const std::string& here = m_from.GetNamespaceName();
  const auto add = [&](const TServices& services, bool isHere) {
    for (const TService& service : services) {
      const TRegistration& registration = *service.registration;
      if (!IsRelevant(registration.className, association)) continue;
      AddService(service, true, isHere ? here : registration.nameSpace);
    }
  };
  add(m_providers.FindAll(here, ERole::kAssociation), true);
  for (const TService& service : m_providers.FindAll(here, ERole::kInstance)) {
    const std::string& className = service.registration->className;
    const auto declaration = m_providers.FindClass(className);
    const bool isPlain = declaration != nullptr && declaration->isAssociation &&
                         m_providers.FindExact(here, className, ERole::kAssociation).empty();
    if (isPlain && IsRelevant(className, association)) AddService(service, false, here);
  }
  // An object may be associated by a provider that lives in another namespace.
  if (m_groups.empty()) add(m_providers.FindAllElsewhere(here, ERole::kAssociation), false);
  for (TGroup& group : m_groups) {
    for (const TService& other : m_providers.GetServices()) {
      const bool isOutside = other.provider == group.services.front().provider &&
                             other.registration->isAssociation && !association.empty() &&
                             !m_providers.IsA(other.registration->className, association);
      if (isOutside) group.isCovered = false;
    }
  }
}

template <class TResult>
void TWalk::AskGroups(const std::function<std::vector<TResult>(TGroup&)>& ask,
                      const std::function<bool(TResult&)>& take) {
  TWorstFailure failed;
  bool hasSucceeded = false;
  for (TGroup& group : m_groups) {
    std::vector<TResult> results;
    try {
      results = ask(group);
    } catch (const TQELException& failure) {
      if (failure.GetCIMStatus() != CMPI_RC_ERR_NOT_FOUND) {
        m_providers.ReportFailure(failure);
        failed.Add(failure);
        continue;
      }
    }
    hasSucceeded = true;
    for (TResult& result : results) {
      if (!take(result)) return;
    }
  }
  if (!hasSucceeded) failed.ThrowIfAny();
}

bool TWalk::IsNew(const TCIMReference& path) {
  return path.GetKeys().empty() ||
         m_seen.insert(GetIdentity(path, m_from.GetNamespaceName())).second;
}

void TWalk::Associators(const TInstanceSink& sink) {
  AskGroups<TCIMInstanceData>(
      [&](TGroup& group) { return AskAssociators(group); },
      [&](TCIMInstanceData& data) { return !IsNew(data.path) || sink(std::move(data)); });
}

std::vector<TCIMReference> TWalk::AssociatorNames() {
  TNames found;
  AskGroups<TCIMReference>([&](TGroup& group) { return AskAssociatorNames(group); },
                           [&](TCIMReference& path) {
                             if (IsNew(path)) found.push_back(std::move(path));
                             return true;
                           });
  return found;
}

void TWalk::References(const TInstanceSink& sink) {
  AskGroups<TCIMInstanceData>(
      [&](TGroup& group) { return AskReferences(group, m_filter, m_wanted); },
      [&](TCIMInstanceData& data) { return !IsNew(data.path) || sink(std::move(data)); });
}

std::vector<TCIMReference> TWalk::ReferenceNames() {
  TNames found;
  AskGroups<TCIMReference>([&](TGroup& group) { return AskReferenceNames(group, m_filter); },
                           [&](TCIMReference& path) {
                             if (IsNew(path)) found.push_back(std::move(path));
                             return true;
                           });
  return found;
}

TWalk::TLink TWalk::LinkOf(const TCIMReference& path) const {
  TLink link{path.GetClassName(), {}};
  for (const auto& [name, value] : path.GetKeys()) {
    const bool isEnd = value.GetType() == ECIMType::kReference && !value.IsArray();
    if (isEnd && !value.IsNull()) link.ends.push_back({name, static_cast<TCIMReference>(value)});
  }
  return link;
}

TWalk::TLink TWalk::LinkOf(const TCIMInstanceData& data) const {
  TLink link = LinkOf(data.path);
  for (const TCIMPropertyData& property : data.properties) {
    const TCIMValue& value = property.value;
    const bool isEnd = value.GetType() == ECIMType::kReference && !value.IsArray();
    if (!isEnd || value.IsNull()) continue;
    const bool isKnown = std::any_of(link.ends.begin(), link.ends.end(), [&](const TEnd& end) {
      return IsSameName(end.role, property.name);
    });
    if (!isKnown) link.ends.push_back({property.name, static_cast<TCIMReference>(value)});
  }
  return link;
}

bool TWalk::IsComplete(const TLink& link) const {
  const auto declaration = m_providers.FindClass(link.className);
  std::size_t wanted = 0;
  if (declaration != nullptr) {
    for (const TCIMPropertyDeclaration& property : declaration->properties) {
      if (property.type == ECIMType::kReference) ++wanted;
    }
  }
  return link.ends.size() >= std::max<std::size_t>(wanted, 2);
}

bool TWalk::IsFrom(const TEnd& end) const {
  return IsSameObject(m_providers, end.object, m_from);
}

bool TWalk::PassesClass(const std::string& className, const std::string& wanted) const {
  return wanted.empty() || className.empty() || m_providers.FindClass(className) == nullptr ||
         m_providers.IsA(className, wanted);
}

bool TWalk::PlaysRole(const TLink& link, const std::string& role) const {
  bool isOtherwiseThere = false;
  for (const TEnd& end : link.ends) {
    if (!IsFrom(end)) continue;
    if (IsSameName(end.role, role)) return true;
    isOtherwiseThere = true;
  }
  if (isOtherwiseThere) return false;
  // The object could not be recognised: the provider knows better, unless there is no such role.
  const auto declaration = m_providers.FindClass(link.className);
  if (declaration != nullptr) return declaration->FindProperty(role) != nullptr;
  return link.ends.empty() || std::any_of(link.ends.begin(), link.ends.end(), [&](const TEnd& end) {
           return IsSameName(end.role, role);
         });
}

bool TWalk::PassesReference(const TLink& link, const TFilter& filter) const {
  if (!PassesClass(link.className, filter.resultClass)) return false;
  const bool isAboutOthers =
      IsComplete(link) && std::none_of(link.ends.begin(), link.ends.end(), [&](const TEnd& end) {
        return DoKeysAgree(end.object, m_from);
      });
  return !isAboutOthers && (filter.role.empty() || PlaysRole(link, filter.role));
}

std::vector<const TWalk::TEnd*> TWalk::FarEnds(const TLink& link) const {
  std::vector<const TEnd*> found;
  if (!PassesClass(link.className, m_filter.associationClass)) return found;
  const auto isNear = [&](const TEnd& end) {
    return IsFrom(end) && (m_filter.role.empty() || IsSameName(end.role, m_filter.role));
  };
  for (const TEnd& end : link.ends) {
    if (!m_filter.resultRole.empty() && !IsSameName(end.role, m_filter.resultRole)) continue;
    if (!PassesClass(end.object.GetClassName(), m_filter.resultClass)) continue;
    const bool hasNear = std::any_of(link.ends.begin(), link.ends.end(), [&](const TEnd& other) {
      return &other != &end && isNear(other);
    });
    if (hasNear) found.push_back(&end);
  }
  return found;
}

TWalk::TEvidence TWalk::Weigh(const std::vector<TLink>& links) const {
  TEvidence evidence;
  const std::string& here = m_from.GetNamespaceName();
  for (const TLink& link : links) {
    for (const TEnd& end : link.ends) {
      evidence.mentionedTexts.insert(GetIdentity(end.object, here));
      evidence.mentioned.push_back(&end.object);
    }
    for (const TEnd* end : FarEnds(link)) {
      evidence.associatedTexts.insert(GetIdentity(end->object, here));
      evidence.associated.push_back(&end->object);
    }
  }
  return evidence;
}

bool TWalk::Supports(const TEvidence& evidence, const TCIMReference& object) const {
  // Most paths are spelled alike; only for the others all have to be compared.
  const std::string text = GetIdentity(object, m_from.GetNamespaceName());
  if (evidence.associatedTexts.count(text) != 0) return true;
  if (evidence.mentionedTexts.count(text) != 0) return false;
  const auto isAmong = [&](const std::vector<const TCIMReference*>& paths) {
    return std::any_of(paths.begin(), paths.end(), [&](const TCIMReference* path) {
      return IsSameObject(m_providers, *path, object);
    });
  };
  // Providers whose references do not cover all that they associate are not rare.
  return isAmong(evidence.associated) || !isAmong(evidence.mentioned);
}

}  // namespace NZEPQEL20
