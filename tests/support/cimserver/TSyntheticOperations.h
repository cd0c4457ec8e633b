// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/support/cimserver/CimTypes.h"

namespace cimserver {

/// Generated objects for benchmarks: as many instances as wanted of BENCH_Record, with 20
/// properties of mixed types, and one BENCH_RecordOfHolder for each, which ties it to the one
/// BENCH_Holder. The same number gives the same objects.
class TSyntheticOperations final : public ICIMOperations {
 public:
  static constexpr char kNameSpace[] = "root/cimv2";
  static constexpr char kRecord[] = "BENCH_Record";
  static constexpr char kHolder[] = "BENCH_Holder";
  static constexpr char kAssociation[] = "BENCH_RecordOfHolder";

  explicit TSyntheticOperations(unsigned int count);

  std::shared_ptr<const TCIMClassDeclaration> GetClass(const std::string& nameSpace,
                                                       const std::string& className) override;
  std::vector<std::string> EnumerateClassNames(const std::string& nameSpace,
                                               const std::string& className, bool deep) override;
  void EnumerateInstances(const std::string& nameSpace, const std::string& className,
                          const TInstanceSink& sink) override;
  std::vector<TCIMReference> EnumerateInstanceNames(const std::string& nameSpace,
                                                    const std::string& className) override;
  TCIMInstanceData GetInstance(const TCIMReference& path) override;
  void Associators(const TCIMReference& path, const TAssociationFilter& filter,
                   const TInstanceSink& sink) override;
  std::vector<TCIMReference> AssociatorNames(const TCIMReference& path,
                                             const TAssociationFilter& filter) override;
  void References(const TCIMReference& path, const TAssociationFilter& filter,
                  const TInstanceSink& sink) override;
  std::vector<TCIMReference> ReferenceNames(const TCIMReference& path,
                                            const TAssociationFilter& filter) override;
  std::vector<std::string> GetNamespaces() override { return {kNameSpace}; }
  std::vector<TProviderInfo> GetProviders() override;

  /// Errors: these throw CIM status 7, always.
  TCIMReference CreateInstance(const std::string& nameSpace,
                               const TCIMInstanceData& instance) override;
  void ModifyInstance(const TCIMInstanceData& instance) override;
  void DeleteInstance(const TCIMReference& path) override;
  TCIMValue InvokeMethod(const TCIMReference& path, const std::string& method,
                         TKeyMap& parameters) override;

 private:
  std::vector<TCIMReference> FindRelated(const TCIMReference& path,
                                         const TAssociationFilter& filter,
                                         bool isAssociation) const;

  unsigned int m_count;
  std::vector<std::shared_ptr<const TCIMClassDeclaration>> m_classes;
};

}  // namespace cimserver
