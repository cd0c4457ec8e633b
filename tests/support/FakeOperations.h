// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/contract/TQELException.h"
#include "platform/model/ICIMOperations.h"

namespace NZEPQEL20 {

/// Operations on classes and instances in memory, with a list of what was asked and with failures
/// on request. Associations are not followed.
/// Threads: safe from several.
class TFakeOperations final : public ICIMOperations {
 public:
  using TMethod = std::function<TCIMValue(const TCIMReference&, const std::string&, TKeyMap&)>;

  /// Namespaces in the order of their first mention here are what GetNamespaces() answers.
  void AddNamespace(const std::string& nameSpace);
  void AddClass(const std::string& nameSpace, const TCIMClassDeclaration& declaration);
  /// The instance's path is what it is found by; its namespace becomes `nameSpace`.
  void AddInstance(const std::string& nameSpace, TCIMInstanceData instance);
  void AddProvider(const TProviderInfo& provider);
  /// What every method call runs.
  void SetMethod(TMethod method);
  /// From now on `operation` in `nameSpace` throws.
  void Fail(const std::string& operation, const std::string& nameSpace,
            const TQELException& failure);

  /// One line per call: operation, blank, namespace, ":", class, and keys where there are any.
  std::vector<std::string> GetCalls() const;
  std::size_t CountCalls(const std::string& operation) const;

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
  void ModifyInstance(const TCIMInstanceData& instance) override;
  void DeleteInstance(const TCIMReference& path) override;
  /// Errors: this and the three below always throw CIM status 7.
  void Associators(const TCIMReference& path, const TAssociationFilter& filter,
                   const TInstanceSink& sink) override;
  std::vector<TCIMReference> AssociatorNames(const TCIMReference& path,
                                             const TAssociationFilter& filter) override;
  void References(const TCIMReference& path, const TAssociationFilter& filter,
                  const TInstanceSink& sink) override;
  std::vector<TCIMReference> ReferenceNames(const TCIMReference& path,
                                            const TAssociationFilter& filter) override;
  TCIMValue InvokeMethod(const TCIMReference& path, const std::string& method,
                         TKeyMap& parameters) override;
  std::vector<std::string> GetNamespaces() override;
  std::vector<TProviderInfo> GetProviders() override;

 private:
  struct TSpace {
    std::vector<std::shared_ptr<const TCIMClassDeclaration>> classes;
    std::vector<TCIMInstanceData> instances;
  };

  void Note(const std::string& operation, const TCIMReference& about);
  [[noreturn]] void RefuseAssociation(const std::string& operation, const TCIMReference& path);
  std::shared_ptr<const TCIMClassDeclaration> FindClass(const std::string& nameSpace,
                                                        const std::string& className) const;
  bool IsKindOf(const std::string& nameSpace, std::string className,
                const std::string& ancestor) const;
  std::vector<TCIMInstanceData> Select(const std::string& nameSpace, const std::string& className);
  TCIMInstanceData& Require(const TCIMReference& path);

  mutable std::mutex m_mutex;
  std::vector<std::string> m_order;
  std::map<std::string, TSpace> m_spaces;
  std::vector<TProviderInfo> m_providers;
  TMethod m_method;
  std::map<std::string, TQELException> m_failures;
  std::vector<std::string> m_calls;
};

}  // namespace NZEPQEL20
