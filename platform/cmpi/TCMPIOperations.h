// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/cmpi/TRegistrations.h"
#include "platform/model/ICIMOperations.h"
#include "platform/schema/TClassRepository.h"

namespace NZEPQEL20 {

namespace cmpi {
class TProviders;
}

/// The generic operations, carried out by CMPI provider libraries in this process.
///
/// A request for a class goes to the providers of the class and of its subclasses; when one of
/// them fails, the results of the others stand and the failure is reported once. Each byte
/// of providers' texts that is not UTF-8 counts as ISO 8859-1.
/// Errors: TQELException with the provider's CMPI number (kCIMError) naming the operation, class or
/// path, provider and the provider's words.
/// Threads: safe from several; a provider may come back in its own calls.
class TCMPIOperations : public ICIMOperations {
 public:
  /// What the chapters of the implementation share; nobody else's.
  struct TParts;

  /// Opens no library yet. `classes` is complete and does not change any more.
  TCMPIOperations(std::shared_ptr<const TClassRepository> classes, TRegistrations registrations,
                  std::string defaultNamespace = "root/cimv2");
  /// Ends every provider; their libraries stay loaded.
  ~TCMPIOperations() override;
  TCMPIOperations(const TCMPIOperations&) = delete;
  TCMPIOperations& operator=(const TCMPIOperations&) = delete;

  /// Opens every registered library now instead of at its first use.
  void OpenLibraries();

  /// The providers themselves, for whoever checks them.
  const cmpi::TProviders& GetHosted() const;

  /// What could not be read or loaded, or failed so far: thing, reason, and what would mend it.
  std::vector<std::string> GetProblems() const;

  /// The jobs that method calls have given back so far, other than those for a change of state.
  std::vector<TCIMReference> GetStartedJobs() const;
  /// Whether a method runs now in a provider that serves `className`.
  bool IsBusyWith(const std::string& className) const;

  std::shared_ptr<const TCIMClassDeclaration> GetClass(const std::string& nameSpace,
                                                       const std::string& className) override;
  std::vector<std::string> EnumerateClassNames(const std::string& nameSpace,
                                               const std::string& className, bool deep) override;
  void EnumerateInstances(const std::string& nameSpace, const std::string& className,
                          const TInstanceSink& sink) override;
  std::vector<TCIMReference> EnumerateInstanceNames(const std::string& nameSpace,
                                                    const std::string& className) override;
  TCIMInstanceData GetInstance(const TCIMReference& path) override;
  TCIMReference CreateInstance(const std::string& nameSpace,
                               const TCIMInstanceData& instance) override;
  /// Hands on exactly the properties that `instance` has.
  void ModifyInstance(const TCIMInstanceData& instance) override;
  void DeleteInstance(const TCIMReference& path) override;
  void Associators(const TCIMReference& path, const TAssociationFilter& filter,
                   const TInstanceSink& sink) override;
  std::vector<TCIMReference> AssociatorNames(const TCIMReference& path,
                                             const TAssociationFilter& filter) override;
  void References(const TCIMReference& path, const TAssociationFilter& filter,
                  const TInstanceSink& sink) override;
  std::vector<TCIMReference> ReferenceNames(const TCIMReference& path,
                                            const TAssociationFilter& filter) override;
  /// In-parameters are converted to the types that the class declares for them.
  TCIMValue InvokeMethod(const TCIMReference& path, const std::string& method,
                         TKeyMap& parameters) override;
  std::vector<std::string> GetNamespaces() override;
  std::vector<TProviderInfo> GetProviders() override;

 private:
  std::unique_ptr<TParts> m_parts;
};

}  // namespace NZEPQEL20
