// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/model/ICIMOperations.h"

namespace bench {

/// A machine in memory that offers one test for each of its devices. What discovery does not ask
/// for answers with nothing.
class TBenchOperations final : public NZEPQEL20::ICIMOperations {
 public:
  explicit TBenchOperations(unsigned int devices);

  std::shared_ptr<const NZEPQEL20::TCIMClassDeclaration> GetClass(
      const std::string& nameSpace, const std::string& className) override;
  void EnumerateInstances(const std::string& nameSpace, const std::string& className,
                          const TInstanceSink& sink) override;
  NZEPQEL20::TCIMInstanceData GetInstance(const NZEPQEL20::TCIMReference& path) override;

  std::vector<std::string> EnumerateClassNames(const std::string& /*nameSpace*/,
                                               const std::string& /*className*/,
                                               bool /*deep*/) override {
    return {};
  }
  std::vector<NZEPQEL20::TCIMReference> EnumerateInstanceNames(
      const std::string& /*nameSpace*/, const std::string& /*className*/) override {
    return {};
  }
  NZEPQEL20::TCIMReference CreateInstance(const std::string& /*nameSpace*/,
                                          const NZEPQEL20::TCIMInstanceData& instance) override {
    return instance.path;
  }
  void ModifyInstance(const NZEPQEL20::TCIMInstanceData& /*instance*/) override {}
  void DeleteInstance(const NZEPQEL20::TCIMReference& /*path*/) override {}
  void Associators(const NZEPQEL20::TCIMReference& /*path*/, const TAssociationFilter& /*filter*/,
                   const TInstanceSink& /*sink*/) override {}
  std::vector<NZEPQEL20::TCIMReference> AssociatorNames(
      const NZEPQEL20::TCIMReference& /*path*/, const TAssociationFilter& /*filter*/) override {
    return {};
  }
  void References(const NZEPQEL20::TCIMReference& /*path*/, const TAssociationFilter& /*filter*/,
                  const TInstanceSink& /*sink*/) override {}
  std::vector<NZEPQEL20::TCIMReference> ReferenceNames(
      const NZEPQEL20::TCIMReference& /*path*/, const TAssociationFilter& /*filter*/) override {
    return {};
  }
  NZEPQEL20::TCIMValue InvokeMethod(const NZEPQEL20::TCIMReference& /*path*/,
                                    const std::string& /*method*/,
                                    NZEPQEL20::TKeyMap& parameters) override {
    parameters.clear();
    return {};
  }
  std::vector<std::string> GetNamespaces() override { return {"root/cimv2"}; }
  std::vector<TProviderInfo> GetProviders() override { return {}; }

 private:
  void AddService(unsigned int number);
  void AddDevice(unsigned int number);
  void Keep(NZEPQEL20::TCIMInstanceData instance);

  std::shared_ptr<const NZEPQEL20::TCIMClassDeclaration> m_declaration;
  std::vector<NZEPQEL20::TCIMInstanceData> m_associations;
  std::unordered_map<std::string, NZEPQEL20::TCIMInstanceData> m_instances;
};

}  // namespace bench
