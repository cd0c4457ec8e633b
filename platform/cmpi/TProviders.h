// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/cmpi/IBrokerHost.h"
#include "platform/cmpi/ProviderCall.h"
#include "platform/cmpi/TProvider.h"
#include "platform/cmpi/TRegistrations.h"
#include "platform/schema/TClassRepository.h"

namespace NZEPQEL20::cmpi {

/// What a provider is asked as.
enum class ERole { kInstance, kAssociation, kMethod, kProperty };

/// The registered providers: who serves which class where, and the broker between them.
/// Threads: safe from several.
class TProviders : public IBrokerHost {
 public:
  /// A class that a provider serves.
  struct TService {
    const TRegistration* registration;
    TProvider* provider;
  };
  using TServices = std::vector<TService>;

  /// How many problems are kept: a provider may word each of its failures anew.
  static constexpr std::size_t kMaxProblems = 1000;

  /// How long the end waits, for all providers together, for calls that have not come back. Less
  /// than a host should wait for the end: who is next gets its cleanup before the host leaves.
  static constexpr std::chrono::seconds kEndPatience{15};

  TProviders(std::shared_ptr<const TClassRepository> classes, TRegistrations registrations,
             ICIMOperations& operations);
  /// Ends every provider.
  ~TProviders() override;
  TProviders(const TProviders&) = delete;
  TProviders& operator=(const TProviders&) = delete;

  ICIMOperations& GetOperations() override { return m_operations; }
  std::string FindNamespace(const std::string& nameSpace,
                            const std::string& className) const override;
  std::string FindMethodNamespace(const std::string& nameSpace,
                                  const std::string& className) const override;
  std::shared_ptr<const TCIMClassDeclaration> FindClass(
      const std::string& className) const override {
    return m_classes->Find(className);
  }
  bool IsA(const std::string& className, const std::string& superclass) const override;
  std::optional<TCIMValue> GetProperty(const TCIMReference& path, const std::string& name) override;
  bool SetProperty(const TCIMReference& path, const std::string& name,
                   const TCIMValue& value) override;

  /// Who serves `className` or a class below it.
  TServices FindServices(const std::string& nameSpace, const std::string& className,
                         ERole role) const;
  /// Who serves an object of `className`: the class itself, else the nearest class above it, else
  /// those below it.
  TServices FindServicesOfObject(const std::string& nameSpace, const std::string& className,
                                 ERole role) const;
  /// Who serves the very class.
  TServices FindExact(const std::string& nameSpace, const std::string& className, ERole role) const;
  /// All of a role in a namespace.
  TServices FindAll(const std::string& nameSpace, ERole role) const;
  /// All of a role in any other namespace.
  TServices FindAllElsewhere(const std::string& nameSpace, ERole role) const;

  const std::vector<TService>& GetServices() const { return m_services; }
  const TClassRepository& GetClasses() const { return *m_classes; }
  TBroker& GetBroker() const { return m_broker; }

  /// Opens every library, so that what cannot be loaded is known.
  void OpenLibraries();
  /// Keeps and logs `problem` unless that was done before, or too many are kept. Of those with the
  /// same `subject` only the first is told.
  void Report(const std::string& problem, const std::string& subject = {});
  /// The same for what a provider failed at; where TUnasked holds it is logged alone, as often as
  /// problems are kept.
  void ReportFailure(const TQELException& failure);
  std::vector<std::string> GetProblems() const;

 private:
  TProvider& GetProvider(const TRegistration& registration);
  /// Tells of classes that are registered and that nobody declares.
  void ReportUndeclared();
  using TPropertyCall = std::function<CMPIStatus(CMPIPropertyMI&, const CMPIContext*,
                                                 const CMPIResult*, const CMPIObjectPath*)>;
  std::optional<TCallOutcome> CallProperty(const char* function, const std::string& what,
                                           const TCIMReference& path, const TPropertyCall& call);
  using TIsAsked = std::function<bool(const TRegistration&)>;
  /// Where a class is served by one of the registrations asked: here, else anywhere.
  std::optional<std::string> FindPlace(const std::string& nameSpace, const std::string& className,
                                       const TIsAsked& isAsked) const;
  using TIsWanted = std::function<bool(const std::string& className)>;
  /// The services of a role in a namespace, each provider once for a class.
  TServices FindWhere(const std::string& nameSpace, ERole role, const TIsWanted& isWanted) const;

  std::shared_ptr<const TClassRepository> m_classes;
  const TRegistrations m_registrations;
  ICIMOperations& m_operations;
  std::map<std::string, std::unique_ptr<TProviderLibrary>> m_libraries;
  std::map<std::pair<std::string, std::string>, std::unique_ptr<TProvider>> m_providers;
  std::vector<TService> m_services;
  bool m_hasAny = false;  ///< A service is registered for any namespace.
  mutable std::mutex m_mutex;
  std::vector<std::string> m_problems;
  std::set<std::string> m_reported;
  std::set<std::string> m_logged;
  TBroker& m_broker;
};

/// Whether a registration holds in a namespace.
bool IsServedIn(const TRegistration& registration, const std::string& nameSpace);

/// Whether two namespaces are the same: without case, and without slashes at either end.
bool IsSameNamespace(const std::string& left, const std::string& right);

}  // namespace NZEPQEL20::cmpi
