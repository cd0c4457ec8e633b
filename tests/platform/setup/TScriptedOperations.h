// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/contract/TQELException.h"
#include "platform/model/ICIMOperations.h"

namespace NZEPQEL20 {

/// Operations over a few jobs that a test sets up; they keep what was invoked. Whatever else is
/// asked of them is refused.
class TScriptedOperations : public ICIMOperations {
 public:
  std::vector<std::string> namespaces = {"root/cimv2"};
  std::map<std::string, std::vector<TCIMInstanceData>> jobs;  ///< By namespace.
  std::vector<std::string> refusing;  ///< Namespaces and job paths that answer with a failure.
  std::vector<std::string> invoked;   ///< "path method RequestedState".

  std::vector<std::string> GetNamespaces() override { return namespaces; }
  void EnumerateInstances(const std::string& nameSpace, const std::string& className,
                          const TInstanceSink& sink) override {
    CheckAllowed(nameSpace);
    if (className != "CIM_ConcreteJob") Refuse(className);
    for (TCIMInstanceData job : jobs[nameSpace]) {
      if (!sink(std::move(job))) return;
    }
  }
  TCIMValue InvokeMethod(const TCIMReference& path, const std::string& method,
                         TKeyMap& parameters) override {
    CheckAllowed(path.GetPath());
    invoked.push_back(path.GetPath() + " " + method + " " +
                      parameters.at("RequestedState").ToString(10));
    return TCIMValue::UInt32(0);
  }

  std::shared_ptr<const TCIMClassDeclaration> GetClass(const std::string& /*nameSpace*/,
                                                       const std::string& className) override {
    Refuse(className);
  }
  std::vector<std::string> EnumerateClassNames(const std::string& /*nameSpace*/,
                                               const std::string& className,
                                               bool /*deep*/) override {
    Refuse(className);
  }
  std::vector<TCIMReference> EnumerateInstanceNames(const std::string& /*nameSpace*/,
                                                    const std::string& className) override {
    Refuse(className);
  }
  TCIMInstanceData GetInstance(const TCIMReference& path) override {
    CheckAllowed(path.GetNamespaceName());
    for (const TCIMInstanceData& job : jobs[path.GetNamespaceName()]) {
      if (job.path == path) return job;
    }
    Refuse(path.GetPath());
  }
  TCIMReference CreateInstance(const std::string& nameSpace,
                               const TCIMInstanceData& /*instance*/) override {
    Refuse(nameSpace);
  }
  void ModifyInstance(const TCIMInstanceData& instance) override {
    Refuse(instance.path.GetPath());
  }
  void DeleteInstance(const TCIMReference& path) override { Refuse(path.GetPath()); }
  void Associators(const TCIMReference& path, const TAssociationFilter& /*filter*/,
                   const TInstanceSink& /*sink*/) override {
    Refuse(path.GetPath());
  }
  std::vector<TCIMReference> AssociatorNames(const TCIMReference& path,
                                             const TAssociationFilter& /*filter*/) override {
    Refuse(path.GetPath());
  }
  void References(const TCIMReference& path, const TAssociationFilter& /*filter*/,
                  const TInstanceSink& /*sink*/) override {
    Refuse(path.GetPath());
  }
  std::vector<TCIMReference> ReferenceNames(const TCIMReference& path,
                                            const TAssociationFilter& /*filter*/) override {
    Refuse(path.GetPath());
  }
  std::vector<TProviderInfo> GetProviders() override { Refuse("providers"); }

 private:
  [[noreturn]] static void Refuse(const std::string& thing) {
    throw TQELException(TQELStatusCode::kNotSupported, thing + ": refused");
  }
  void CheckAllowed(const std::string& thing) const {
    for (const std::string& name : refusing) {
      if (name == thing) Refuse(thing);
    }
  }
};

}  // namespace NZEPQEL20
