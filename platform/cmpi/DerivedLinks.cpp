// SPDX-License-Identifier: Apache-2.0
// The chapter of TCMPIOperations about the instances of an association class whose provider
// enumerates none, but answers for the objects that they join.
#include <algorithm>
#include <set>
#include <utility>

#include "platform/cmpi/ObjectIdentity.h"
#include "platform/cmpi/TAssociationWalk.h"
#include "platform/cmpi/TNoDerivation.h"
#include "platform/cmpi/TUnasked.h"

namespace NZEPQEL20 {

using namespace cmpi;

namespace {

using TServices = TProviders::TServices;

bool HasEnds(const TProviders& providers, const std::string& className) {
  const auto declaration = providers.FindClass(className);
  return declaration != nullptr &&
         std::any_of(declaration->properties.begin(), declaration->properties.end(),
                     [](const auto& property) { return property.type == ECIMType::kReference; });
}

bool HasResults(const TCallOutcome& outcome) {
  return !outcome.content.instances.empty() || !outcome.content.paths.empty();
}

/// A class whose objects are at an end of an association, and how many serve it.
struct TEndClass {
  std::string name;
  std::size_t services = 0;
};

/// `className`, else the nearest class above it that is served; none when nobody serves any.
TEndClass FindServed(const TProviders& providers, const std::string& nameSpace,
                     const std::string& className) {
  TEndClass end{className};
  for (unsigned int i = 0; i < TClassRepository::kMaxInheritance && !end.name.empty(); ++i) {
    end.services = providers.FindServices(nameSpace, end.name, ERole::kInstance).size();
    if (end.services != 0) return end;
    const auto declaration = providers.FindClass(end.name);
    end.name = declaration == nullptr ? std::string() : declaration->superclass;
  }
  return {};
}

/// The classes at the ends of an association, those that the fewest serve first: an end may be
/// declared as wide as all managed elements.
std::vector<TEndClass> FindEndClasses(const TProviders& providers, const std::string& nameSpace,
                                      const std::string& className) {
  std::vector<TEndClass> found;
  const auto declaration = providers.FindClass(className);
  if (declaration == nullptr) return found;
  for (const TCIMPropertyDeclaration& property : declaration->properties) {
    if (property.type != ECIMType::kReference) continue;
    TEndClass end = FindServed(providers, nameSpace, property.referenceClass);
    const bool isKnown = std::any_of(found.begin(), found.end(), [&](const TEndClass& other) {
      return IsSameName(other.name, end.name);
    });
    if (end.services != 0 && !isKnown) found.push_back(std::move(end));
  }
  std::stable_sort(found.begin(), found.end(), [](const TEndClass& left, const TEndClass& right) {
    return left.services < right.services;
  });
  return found;
}

}  // namespace

TServices TCMPIOperations::TParts::FindEnumerable(const std::string& nameSpace,
                                                  const std::string& className) const {
  TServices found = providers.FindServices(nameSpace, className, ERole::kInstance);
  if (TNoDerivation::Holds()) return found;
  for (const TService& service :
       providers.FindServices(nameSpace, className, ERole::kAssociation)) {
    const std::string& name = service.registration->className;
    const bool isKnown = std::any_of(found.begin(), found.end(), [&](const TService& other) {
      return IsSameName(other.registration->className, name);
    });
    if (!isKnown && HasEnds(providers, name)) found.push_back(service);
  }
  // Whoever serves the class above may have objects of this one.
  if (found.empty()) found = providers.FindServicesOfObject(nameSpace, className, ERole::kInstance);
  return found;
}

TCallOutcome TCMPIOperations::TParts::AskOrDerive(const TService& service,
                                                  const TQuestion& question, const TAsk& ask,
                                                  const TAskAbout& askAbout) {
  TWorstFailure failed;
  bool hasAnswered = false;
  if (service.registration->isInstance) {
    const std::string& className = service.registration->className;
    const bool isDerivable =
        !TNoDerivation::Holds() &&
        !providers.FindExact(question.nameSpace, className, ERole::kAssociation).empty();
    try {
      TCallOutcome outcome = ask(service);
      // Many leave the enumeration of an association empty, and answer references alone.
      if (!isDerivable || HasResults(outcome)) return outcome;
      hasAnswered = true;
    } catch (const TQELException& failure) {
      if (!isDerivable || !IsRefusal(failure)) throw;
      failed.Add(failure);
    }
  }
  const TUnasked unasked(hasAnswered);
  try {
    return Derive(service, question, askAbout);
  } catch (const TQELException& failure) {
    failed.Add(failure);
  }
  if (!hasAnswered) failed.ThrowIfAny();
  return {};
}

TCallOutcome TCMPIOperations::TParts::Derive(const TService& service, const TQuestion& question,
                                             const TAskAbout& askAbout) {
  const TNoDerivation guard;
  const std::string& className = service.registration->className;
  TWorstFailure failed;
  bool isEnumerated = false;
  bool hasSucceeded = false;
  for (const TEndClass& end : FindEndClasses(providers, question.nameSpace, className)) {
    std::vector<TCIMReference> objects;
    try {
      objects = providers.GetOperations().EnumerateInstanceNames(question.nameSpace, end.name);
      isEnumerated = true;
    } catch (const TQELException& failure) {
      failed.Add(failure);
    }
    TCallOutcome outcome;
    for (const TCIMReference& object : objects) {
      try {
        TAssociationWalk walk(*this, question.what + " by way of " + object.GetPath(), object,
                              {{}, className, {}, {}}, className);
        askAbout(walk, outcome);
        hasSucceeded = true;
      } catch (const TQELException& failure) {
        // The walk has told it.
        failed.Add(failure);
      }
    }
    if (HasResults(outcome)) return outcome;
  }
  if (!isEnumerated) {
    failed.Add(TQELException(TQELStatusCode::kCIMError,
                             question.what + ": " + service.provider->Describe() +
                                 " does not enumerate " + className +
                                 ", and nobody enumerates the objects that it joins",
                             CMPI_RC_ERR_NOT_SUPPORTED));
  }
  if (!hasSucceeded) failed.ThrowIfAny();
  return {};
}

TCallOutcome TCMPIOperations::TParts::AskInstances(const TService& service,
                                                   const TQuestion& question) {
  std::set<std::string> seen;
  const auto askAbout = [&](TAssociationWalk& walk, TCallOutcome& outcome) {
    walk.References([&](TCIMInstanceData&& data) {
      const bool isNew = data.path.GetKeys().empty() ||
                         seen.insert(GetIdentity(data.path, question.nameSpace)).second;
      if (isNew) {
        outcome.content.instances.push_back(
            std::make_shared<TInstanceContent>(TInstanceContent::From(data)));
      }
      return true;
    });
  };
  return AskOrDerive(
      service, question, [&](const TService& asked) { return AskEnumerate(asked, question); },
      askAbout);
}

TCallOutcome TCMPIOperations::TParts::AskInstanceNames(const TService& service,
                                                       const TQuestion& question) {
  std::set<std::string> seen;
  const auto askAbout = [&](TAssociationWalk& walk, TCallOutcome& outcome) {
    for (const TCIMReference& name : walk.ReferenceNames()) {
      const bool isNew =
          name.GetKeys().empty() || seen.insert(GetIdentity(name, question.nameSpace)).second;
      if (isNew) outcome.content.paths.push_back(TPathContent::From(name));
    }
  };
  return AskOrDerive(
      service, question, [&](const TService& asked) { return AskEnumerateNames(asked, question); },
      askAbout);
}

}  // namespace NZEPQEL20
