// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TCMPIOperations.h"

#include <algorithm>

#include "platform/cmpi/TOperationsParts.h"

namespace NZEPQEL20 {

using namespace cmpi;

TCMPIOperations::TCMPIOperations(std::shared_ptr<const TClassRepository> classes,
                                 TRegistrations registrations, std::string defaultNamespace)
    : m_parts(std::make_unique<TParts>(std::move(classes), std::move(registrations), *this,
                                       std::move(defaultNamespace))) {}

TCMPIOperations::~TCMPIOperations() = default;

void TCMPIOperations::OpenLibraries() {
  m_parts->providers.OpenLibraries();
}

const cmpi::TProviders& TCMPIOperations::GetHosted() const {
  return m_parts->providers;
}

std::vector<std::string> TCMPIOperations::GetProblems() const {
  return m_parts->providers.GetProblems();
}

std::vector<TCIMReference> TCMPIOperations::GetStartedJobs() const {
  return m_parts->work.GetJobs();
}

bool TCMPIOperations::IsBusyWith(const std::string& className) const {
  const TProviders& providers = m_parts->providers;
  const auto& services = providers.GetServices();
  return std::any_of(services.begin(), services.end(), [&](const auto& service) {
    return m_parts->work.IsBusy(service.provider) &&
           providers.IsA(className, service.registration->className);
  });
}

std::shared_ptr<const TCIMClassDeclaration> TCMPIOperations::GetClass(
    const std::string& nameSpace, const std::string& className) {
  auto declaration = m_parts->providers.FindClass(className);
  if (declaration == nullptr) {
    throw TQELException(TQELStatusCode::kNotFound,
                        "GetClass of " + nameSpace + ':' + className + ": no such class",
                        CMPI_RC_ERR_INVALID_CLASS);
  }
  return declaration;
}

std::vector<std::string> TCMPIOperations::EnumerateClassNames(const std::string& nameSpace,
                                                              const std::string& className,
                                                              bool deep) {
  if (!className.empty()) GetClass(nameSpace, className);
  return m_parts->providers.GetClasses().GetSubclasses(className, deep);
}

std::vector<std::string> TCMPIOperations::GetNamespaces() {
  std::vector<std::string> found = {m_parts->defaultNamespace};
  for (const auto& service : m_parts->providers.GetServices()) {
    const std::string& name = service.registration->nameSpace;
    if (name == "*") continue;
    const bool isKnown = std::any_of(found.begin(), found.end(), [&](const std::string& known) {
      return IsSameNamespace(known, name);
    });
    if (!isKnown) found.push_back(name);
  }
  return found;
}

std::vector<ICIMOperations::TProviderInfo> TCMPIOperations::GetProviders() {
  std::vector<TProviderInfo> found;
  for (const auto& service : m_parts->providers.GetServices()) {
    const TRegistration& registration = *service.registration;
    // Who serves any namespace is named with the one that is looked in.
    const std::string& nameSpace =
        registration.nameSpace == "*" ? m_parts->defaultNamespace : registration.nameSpace;
    auto entry = std::find_if(found.begin(), found.end(), [&](const TProviderInfo& info) {
      return info.name == registration.providerName && IsSameNamespace(info.nameSpace, nameSpace);
    });
    if (entry == found.end()) {
      found.push_back({registration.providerName, nameSpace, {}});
      entry = found.end() - 1;
    }
    entry->classNames.push_back(registration.className);
  }
  return found;
}

}  // namespace NZEPQEL20
