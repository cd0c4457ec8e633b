// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TProviders.h"

#include <algorithm>

#include "platform/cmpi/OneLine.h"
#include "platform/cmpi/TUnasked.h"
#include "platform/model/CoreLog.h"

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

/// Whether the same provider was found for the same class: it may be registered for a namespace and
/// for any.
bool IsAmong(const TProviders::TServices& found, const TProviders::TService& service) {
  return std::any_of(found.begin(), found.end(), [&](const TProviders::TService& other) {
    return other.provider == service.provider &&
           IsSameName(other.registration->className, service.registration->className);
  });
}

void Log(const std::string& text) {
  LogToCore(ILogger::kWarning, text);
}

/// Undeclared classes of one registration file that are told one by one.
constexpr std::size_t kMaxUndeclared = 3;

}  // namespace

bool IsServedIn(const TRegistration& registration, const std::string& nameSpace) {
  return registration.nameSpace == "*" || IsSameNamespace(registration.nameSpace, nameSpace);
}

bool IsSameNamespace(const std::string& left, const std::string& right) {
  return IsSameName(left, right) || IsSameName(TrimSlashes(left), TrimSlashes(right));
}

TProviders::TProviders(std::shared_ptr<const TClassRepository> classes,
                       TRegistrations registrations, ICIMOperations& operations)
    : m_classes(std::move(classes)),
      m_registrations(std::move(registrations)),
      m_operations(operations),
      m_broker(TBroker::Take(*this)) {
  for (const TRegistration& registration : m_registrations.GetEntries()) {
    m_services.push_back({&registration, &GetProvider(registration)});
    m_hasAny = m_hasAny || registration.nameSpace == "*";
  }
  for (const TRegistrationProblem& finding : m_registrations.GetFindings()) {
    // A warning names nothing that is missing, so only the log has it.
    finding.isWarning ? Log(finding.ToString()) : Report(finding.ToString());
  }
  ReportUndeclared();
}

void TProviders::ReportUndeclared() {
  std::map<std::string, std::vector<const TRegistration*>> undeclared;
  for (const TService& service : m_services) {
    const TRegistration& registration = *service.registration;
    if (m_classes->Find(registration.className) == nullptr) {
      undeclared[registration.file].push_back(&registration);
    }
  }
  for (const auto& [file, registrations] : undeclared) {
    if (registrations.size() > kMaxUndeclared) {
      // Mostly the MOF is missing as a whole.
      Report(file + ": " + std::to_string(registrations.size()) + " of its classes, such as " +
             registrations.front()->className +
             ", are not declared; add the MOF files that declare them; see rule R3");
      continue;
    }
    for (const TRegistration* registration : registrations) {
      Report(registration->source + ": class " + registration->className +
             " is not declared; add the MOF file that declares it; see rule R3");
    }
  }
}

TProviders::~TProviders() {
  const auto deadline = std::chrono::steady_clock::now() + kEndPatience;
  for (auto& [key, provider] : m_providers) provider->Cleanup(m_broker, deadline);
  m_broker.Retire();
}

TProvider& TProviders::GetProvider(const TRegistration& registration) {
  auto& library = m_libraries[registration.library];
  if (library == nullptr) {
    library = std::make_unique<TProviderLibrary>(registration.library, registration.folder);
  }
  auto& provider = m_providers[{registration.library, registration.providerName}];
  if (provider == nullptr) {
    const bool isAnywhere = registration.nameSpace == "*";
    provider = std::make_unique<TProvider>(
        registration.providerName, *library,
        TCallSite{isAnywhere ? std::string() : registration.nameSpace, registration.parameters});
  }
  return *provider;
}

bool TProviders::IsA(const std::string& className, const std::string& superclass) const {
  return IsSameName(className, superclass) || m_classes->IsA(className, superclass);
}

TProviders::TServices TProviders::FindWhere(const std::string& nameSpace, ERole role,
                                            const TIsWanted& isWanted) const {
  TServices found;
  for (const TService& service : m_services) {
    if (HasRole(*service.registration, role) && IsServedIn(*service.registration, nameSpace) &&
        isWanted(service.registration->className) && !(m_hasAny && IsAmong(found, service))) {
      found.push_back(service);
    }
  }
  return found;
}

TProviders::TServices TProviders::FindServices(const std::string& nameSpace,
                                               const std::string& className, ERole role) const {
  return FindWhere(nameSpace, role,
                   [&](const std::string& served) { return IsA(served, className); });
}

TProviders::TServices TProviders::FindExact(const std::string& nameSpace,
                                            const std::string& className, ERole role) const {
  return FindWhere(nameSpace, role,
                   [&](const std::string& served) { return IsSameName(served, className); });
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
  return FindWhere(nameSpace, role, [](const std::string&) { return true; });
}

TProviders::TServices TProviders::FindAllElsewhere(const std::string& nameSpace, ERole role) const {
  TServices found;
  for (const TService& service : m_services) {
    if (HasRole(*service.registration, role) && !IsServedIn(*service.registration, nameSpace)) {
      found.push_back(service);
    }
  }
  return found;
}

std::optional<std::string> TProviders::FindPlace(const std::string& nameSpace,
                                                 const std::string& className,
                                                 const TIsAsked& isAsked) const {
  const TService* elsewhere = nullptr;
  for (const TService& service : m_services) {
    const TRegistration& registration = *service.registration;
    const bool isServed = isAsked(registration) && (IsA(registration.className, className) ||
                                                    IsA(className, registration.className));
    if (!isServed) continue;
    if (registration.nameSpace == "*") return nameSpace;
    // Providers compare namespaces letter by letter.
    if (IsSameNamespace(registration.nameSpace, nameSpace)) return registration.nameSpace;
    if (elsewhere == nullptr) elsewhere = &service;
  }
  if (elsewhere == nullptr) return std::nullopt;
  return elsewhere->registration->nameSpace;
}

std::string TProviders::FindNamespace(const std::string& nameSpace,
                                      const std::string& className) const {
  return FindPlace(nameSpace, className, [](const TRegistration&) { return true; })
      .value_or(nameSpace);
}

std::string TProviders::FindMethodNamespace(const std::string& nameSpace,
                                            const std::string& className) const {
  const auto place = FindPlace(nameSpace, className, [](const TRegistration& registration) {
    return registration.isMethod;
  });
  return place ? *place : FindNamespace(nameSpace, className);
}

void TProviders::OpenLibraries() {
  for (auto& [path, library] : m_libraries) {
    try {
      library->Open();
      const std::string doubt = library->GetDoubt();
      if (!doubt.empty()) Report(doubt);
    } catch (const TQELException& failure) {
      Report(failure.what());
    }
  }
}

void TProviders::Report(const std::string& words, const std::string& subject) {
  const std::string problem = ToOneLine(words);
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_problems.size() > kMaxProblems ||
        !m_reported.insert(subject.empty() ? problem : subject).second) {
      return;
    }
    const bool isLast = m_problems.size() == kMaxProblems;
    m_problems.push_back(isLast ? "there are more problems; they are not told" : problem);
  }
  Log(problem);
}

void TProviders::ReportFailure(const TQELException& failure) {
  if (!TUnasked::Holds()) {
    Report(failure.what());
    return;
  }
  const std::string line = ToOneLine(failure.what());
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_logged.size() >= kMaxProblems || !m_logged.insert(line).second) return;
  }
  Log(line);
}

std::vector<std::string> TProviders::GetProblems() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_problems;
}

}  // namespace NZEPQEL20::cmpi
