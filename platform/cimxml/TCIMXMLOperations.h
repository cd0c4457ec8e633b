// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/cimxml/TServerOptions.h"
#include "platform/model/ICIMOperations.h"

namespace NZEPQEL20 {

/// The operations of a CIM server, over HTTP in XML (DSP0200, DSP0201).
///
/// Class declarations are fetched once. Enumerations use the pull operations where the server has
/// them. What does no harm is asked once more after a lost connection, a method call never.
/// Threads: safe from several.
class TCIMXMLOperations final : public ICIMOperations {
 public:
  /// Opens no connection yet.
  /// Errors: TQELException (kInvalidArgument) naming what of `options` is unusable.
  TCIMXMLOperations(const TServerOptions& options, const std::string& defaultNamespace);
  ~TCIMXMLOperations() override;

  std::shared_ptr<const TCIMClassDeclaration> GetClass(const std::string& nameSpace,
                                                       const std::string& className) override;
  std::vector<std::string> EnumerateClassNames(const std::string& nameSpace,
                                               const std::string& className, bool deep) override;
  /// Instances reach `sink` reply by reply; one that is lost half-way is an error.
  void EnumerateInstances(const std::string& nameSpace, const std::string& className,
                          const TInstanceSink& sink) override;
  std::vector<TCIMReference> EnumerateInstanceNames(const std::string& nameSpace,
                                                    const std::string& className) override;
  TCIMInstanceData GetInstance(const TCIMReference& path) override;
  TCIMReference CreateInstance(const std::string& nameSpace,
                               const TCIMInstanceData& instance) override;
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
  TCIMValue InvokeMethod(const TCIMReference& path, const std::string& method,
                         TKeyMap& parameters) override;
  /// What the server says of itself in its interop namespace; the default namespace alone when it
  /// says nothing.
  std::vector<std::string> GetNamespaces() override;
  /// The server as one provider of all classes of the default namespace.
  std::vector<TProviderInfo> GetProviders() override;

  /// The server as messages name it.
  const std::string& GetServerName() const;

  /// Jobs that method calls through this object have started: what they gave back as "Job", each
  /// once.
  std::vector<TCIMReference> GetStartedJobs() const;

  /// InvokeMethod() for a request about a job that is answered at once: with the time-outs of other
  /// operations, and without taking a job that it gives back for one that was started.
  TCIMValue InvokeOnJob(const TCIMReference& job, const std::string& method, TKeyMap& parameters);

  /// What has kept the server from answering so far, one line each and each once. What it answers,
  /// refusals included, is no problem.
  std::vector<std::string> GetProblems() const;

  /// The last of these, or refusal of a method call, since the previous call; empty for none.
  std::string TakeLastFailure();

 private:
  struct TParts;
  std::unique_ptr<TParts> m_parts;
};

}  // namespace NZEPQEL20
