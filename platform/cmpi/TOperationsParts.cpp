// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TOperationsParts.h"

#include <algorithm>

#include "platform/model/Typing.h"

namespace NZEPQEL20 {

using namespace cmpi;

namespace cmpi {

namespace {

/// A reference without a namespace means an object beside the one that has it.
void PlaceReference(TCIMValue& value, const std::string& nameSpace) {
  if (value.GetType() != ECIMType::kReference || value.IsArray() || value.IsNull()) return;
  auto path = static_cast<TCIMReference>(value);
  if (!path.GetNamespaceName().empty()) return;
  path.SetNamespaceName(nameSpace);
  value = TCIMValue(path);
}

int Weigh(const TQELException& failure) {
  switch (failure.GetCIMStatus()) {
    case CMPI_RC_ERR_NOT_SUPPORTED:
      return 0;
    case CMPI_RC_ERR_INVALID_NAMESPACE:
    case CMPI_RC_ERR_INVALID_CLASS:
    case CMPI_RC_ERR_NOT_FOUND:
      return 1;
    default:
      return 2;
  }
}

// Then another provider may have what is asked for; a method that is not there has done nothing.
bool SaysNothingIsThere(const TQELException& failure) {
  switch (failure.GetCIMStatus()) {
    case CMPI_RC_ERR_NOT_FOUND:
    case CMPI_RC_ERR_METHOD_NOT_AVAILABLE:
    case CMPI_RC_ERR_METHOD_NOT_FOUND:
      return true;
    default:
      return IsRefusal(failure);
  }
}

}  // namespace

void TWorstFailure::Add(const TQELException& failure) {
  if (!m_failure || Weigh(failure) > Weigh(*m_failure)) m_failure = failure;
}

void TWorstFailure::ThrowIfAny() const {
  if (m_failure) throw TQELException(*m_failure);
}

}  // namespace cmpi

void TCMPIOperations::TParts::AskAll(const TServices& services, const TAsk& ask,
                                     const TTake& take) {
  TWorstFailure failed;
  bool hasSucceeded = false;
  for (const TService& service : services) {
    TCallOutcome outcome;
    try {
      outcome = ask(service);
    } catch (const TQELException& failure) {
      if (failure.GetCIMStatus() != CMPI_RC_ERR_NOT_FOUND) {
        providers.ReportFailure(failure);
        failed.Add(failure);
        continue;
      }
    }
    hasSucceeded = true;
    if (!take(service, outcome)) return;
  }
  if (!hasSucceeded) failed.ThrowIfAny();
}

TCallOutcome TCMPIOperations::TParts::AskFirst(const TServices& services, const TAsk& ask,
                                               const std::string& missing, bool isReading) {
  TWorstFailure failed;
  for (const TService& service : services) {
    try {
      return ask(service);
    } catch (const TQELException& failure) {
      const bool isElsewhere = SaysNothingIsThere(failure);
      // Whoever asks may say no more than that nothing came. A provider's own question is its own.
      if (!isElsewhere && !TScope::IsInCall()) providers.ReportFailure(failure);
      if (!isElsewhere && !isReading) throw;
      failed.Add(failure);
    }
  }
  failed.ThrowIfAny();
  throw TQELException(TQELStatusCode::kCIMError, missing, CMPI_RC_ERR_NOT_FOUND);
}

TCallOutcome TCMPIOperations::TParts::Call(const TService& service, const char* name,
                                           const std::string& what, const std::string& nameSpace,
                                           TBrokerResult::EKind kind,
                                           const TProviderFunction& function) {
  const TCallSite site{nameSpace, service.registration->parameters,
                       service.provider->GetCallee(name)};
  TCallOutcome outcome = CallProvider(providers.GetBroker(), site, kind, function);
  if (outcome.code != CMPI_RC_OK) {
    throw outcome.ToException(what + " failed in " + service.provider->Describe());
  }
  return outcome;
}

TCIMValue TCMPIOperations::TParts::ToDeclared(const TCIMPropertyDeclaration& declared,
                                              const TCIMPropertyData& given,
                                              const TPathContent& owner) {
  const std::string what = owner.className + '.' + declared.name;
  try {
    TCIMValue value = ConvertGiven(declared, given.value, what);
    PlaceReference(value, owner.nameSpace);
    return value;
  } catch (const TQELException& failure) {
    providers.Report(
        owner.nameSpace + ": " + failure.what() + "; the value counts as NULL; see rule R23", what);
    return TCIMValue::Null(declared.type, declared.isArray);
  }
}

void TCMPIOperations::TParts::TypeValues(TInstanceContent& content) {
  const auto declaration = providers.FindClass(content.path.className);
  if (declaration == nullptr) return;
  for (const TCIMPropertyDeclaration& declared : declaration->properties) {
    for (TCIMPropertyData& property : content.properties) {
      if (property.value.GetType() == declared.type &&
          property.value.IsArray() == declared.isArray) {
        PlaceReference(property.value, content.path.nameSpace);
        continue;
      }
      if (property.name.size() != declared.name.size()) continue;
      if (!IsSameName(property.name, declared.name)) continue;
      property.value = ToDeclared(declared, property, content.path);
    }
  }
}

void TCMPIOperations::TParts::TypeEnds(TPathContent& path) {
  const bool hasText = std::any_of(path.keys.begin(), path.keys.end(), [](const auto& key) {
    return key.value.GetType() == ECIMType::kString;
  });
  const auto declaration = hasText ? providers.FindClass(path.className) : nullptr;
  if (declaration == nullptr || !declaration->isAssociation) return;
  for (TCIMPropertyData& key : path.keys) {
    const TCIMPropertyDeclaration* declared = declaration->FindProperty(key.name);
    const bool isEnd = declared != nullptr && declared->type == ECIMType::kReference;
    if (isEnd) key.value = ToDeclared(*declared, key, path);
  }
}

TCIMInstanceData TCMPIOperations::TParts::Finish(std::shared_ptr<TInstanceContent>& content,
                                                 const std::string& nameSpace,
                                                 const std::string& className) {
  // A provider may have kept a clone; nobody else shares the content once the call has ended.
  if (content.use_count() > 1) content = std::make_shared<TInstanceContent>(*content);
  if (content->path.nameSpace.empty()) content->path.nameSpace = nameSpace;
  if (content->path.className.empty()) content->path.className = className;
  TypeEnds(content->path);
  TypeValues(*content);
  return std::move(*content).Take(&providers);
}

TCIMReference TCMPIOperations::TParts::Finish(TPathContent& content, const std::string& nameSpace,
                                              const std::string& className) {
  if (content.nameSpace.empty()) content.nameSpace = nameSpace;
  if (content.className.empty()) content.className = className;
  TypeEnds(content);
  return content.ToReference();
}

TPathContent TCMPIOperations::TParts::ToContent(const TCIMReference& path) const {
  const auto declaration = providers.FindClass(path.GetClassName());
  TPathContent content = TPathContent::From(ConvertKeys(path, declaration.get()));
  // Providers compare names letter by letter.
  if (declaration != nullptr) content.className = declaration->name;
  return content;
}

TPathContent TCMPIOperations::TParts::ForService(const TService& service, TPathContent path) const {
  const std::string& own = service.registration->className;
  if (providers.IsA(own, path.className)) path.className = own;
  return path;
}

}  // namespace NZEPQEL20
