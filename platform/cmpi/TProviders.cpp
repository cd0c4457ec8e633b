// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TProviders.h"

#include "platform/contract/TRootObject.h"

namespace NZEPQEL20::cmpi {

namespace {

bool HasRole(const TRegistration& registration, ERole role) {
  switch (role) {
    case ERole::kInstance:
      return registration.isInstance;
    case ERole::kAssociation:
      return registration.isAssociation;
    case ERole::kProperty:
      return registration.isProperty;
    default:
      return registration.isMethod;
  }
}

std::string WithoutSlash(const std::string& nameSpace) {
  const std::size_t start = nameSpace.find_first_not_of('/');
  return start == std::string::npos ? std::string() : nameSpace.substr(start);
}

}  // namespace

bool IsSameNamespace(const std::string& left, const std::string& right) {
  return IsSameName(WithoutSlash(left), WithoutSlash(right));
}

TProviders::TProviders(std::shared_ptr<const TClassRepository> classes,
                       TRegistrations registrations, ICIMOperations& operations)
    : m_classes(std::move(classes)),
      m_registrations(std::move(registrations)),
      m_operations(operations),
      m_broker(TBroker::Take(*this)) {
  for (const TRegistration& registration : m_registrations.GetEntries()) {
    m_services.push_back({&registration, &GetProvider(registration)});
  }
  for (const std::string& problem : m_registrations.GetProblems()) Report(problem);
  for (const TService& service : m_services) {
    if (m_classes->Find(service.registration->className) == nullptr) {
      Report(service.registration->source + ": class " + service.registration->className +
             " is not declared; add the MOF file that declares it");
    }
  }
}

TProviders::~TProviders() {
  for (auto& [key, provider] : m_providers) provider->Cleanup(m_broker);
  m_broker.Retire();
}

TProvider& TProviders::GetProvider(const TRegistration& registration) {
  auto& library = m_libraries[registration.library];
  if (library == nullptr) library = std::make_unique<TProviderLibrary>(registration.library);
  auto& provider = m_providers[{registration.library, registration.providerName}];
  if (provider == nullptr) {
    provider =
        std::make_unique<TProvider>(registration.providerName, *library,
                                    TCallSite{registration.nameSpace, registration.parameters});
  }
  return *provider;
}

bool TProviders::IsA(const std::string& className, const std::string& superclass) const {
  return IsSameName(className, superclass) || m_classes->IsA(className, superclass);
}

TProviders::TServices TProviders::FindServices(const std::string& nameSpace,
                                               const std::string& className, ERole role) const {
  TServices found;
  for (const TService& service : m_services) {
    if (HasRole(*service.registration, role) &&
        IsSameNamespace(service.registration->nameSpace, nameSpace) &&
        IsA(service.registration->className, className)) {
      found.push_back(service);
    }
  }
  return found;
}

TProviders::TServices TProviders::FindExact(const std::string& nameSpace,
                                            const std::string& className, ERole role) const {
  TServices found;
  for (const TService& service : m_services) {
    if (HasRole(*service.registration, role) &&
        IsSameNamespace(service.registration->nameSpace, nameSpace) &&
        IsSameName(service.registration->className, className)) {
      found.push_back(service);
    }
  }
  return found;
}

TProviders::TServices TProviders::FindServicesOfObject(const std::string& nameSpace,
                                                       const std::string& className,
                                                       ERole role) const {
  std::string at = className;
  for (unsigned int depth = 0; depth < TClassRepository::kMaxInheritance && !at.empty(); ++depth) {
    TServices found = FindExact(nameSpace, at, role);
    if (!found.empty()) return found;
    const auto declaration = FindClass(at);
    at = declaration == nullptr ? std::string() : declaration->superclass;
  }
  return FindServices(nameSpace, className, role);
}

TProviders::TServices TProviders::FindAll(const std::string& nameSpace, ERole role) const {
  TServices found;
  for (const TService& service : m_services) {
    if (HasRole(*service.registration, role) &&
        IsSameNamespace(service.registration->nameSpace, nameSpace)) {
      found.push_back(service);
    }
  }
  return found;
}

TProviders::TServices TProviders::FindAllElsewhere(const std::string& nameSpace, ERole role) const {
  TServices found;
  for (const TService& service : m_services) {
    if (HasRole(*service.registration, role) &&
        !IsSameNamespace(service.registration->nameSpace, nameSpace)) {
      found.push_back(service);
    }
  }
  return found;
}

std::string TProviders::FindNamespace(const std::string& nameSpace,
                                      const std::string& className) const {
  const TService* elsewhere = nullptr;
  for (const TService& service : m_services) {
    const TRegistration& registration = *service.registration;
    const bool isServed =
        IsA(registration.className, className) || IsA(className, registration.className);
    if (!isServed) continue;
    // Providers compare namespaces letter by letter.
    if (IsSameNamespace(registration.nameSpace, nameSpace)) return registration.nameSpace;
    if (elsewhere == nullptr) elsewhere = &service;
  }
  return elsewhere == nullptr ? nameSpace : elsewhere->registration->nameSpace;
}

void TProviders::OpenLibraries() {
  for (auto& [path, library] : m_libraries) {
    try {
      library->Open();
    } catch (const TQELException& failure) {
      Report(failure.what());
    }
  }
}

void TProviders::Report(const std::string& problem) {
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_reported.insert(problem).second) return;
    m_problems.push_back(problem);
  }
  ILogger* logger = TRootObject::GetCoreLogger();
  if (logger != nullptr) logger->Log(ILogger::kWarning, problem);
}

std::vector<std::string> TProviders::GetProblems() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_problems;
}

}  // namespace NZEPQEL20::cmpi
