// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/contract/TCIMClassDeclaration.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TCIMReference.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20 {

/// The generic operations of DSP0200, by plain data: the one seam between the object model and
/// whatever carries the requests.
///
/// Paths that are passed in hold namespace, class and keys; their namespace handles are not used.
/// Paths that come back hold namespace and class, and no handle.
/// Errors: TQELException with the sender's CIM status and words in every operation.
/// Threads: every implementation takes calls from several threads at once.
class ICIMOperations {
 public:
  /// Which related objects an association operation is about; empty texts do not filter.
  struct TAssociationFilter {
    std::string associationClass;
    std::string resultClass;
    std::string role;
    std::string resultRole;
  };
  /// Takes one result; false ends the enumeration.
  using TInstanceSink = std::function<bool(TCIMInstanceData&&)>;

  virtual ~ICIMOperations() = default;

  /// The declaration with everything inherited. One that is unknown throws with kNotFound and the
  /// CIM status that said so, usually 5; some servers say 6.
  virtual std::shared_ptr<const TCIMClassDeclaration> GetClass(const std::string& nameSpace,
                                                               const std::string& className) = 0;
  /// Names of the subclasses of `className`, of the top classes when it is empty; `deep` adds
  /// those below.
  virtual std::vector<std::string> EnumerateClassNames(const std::string& nameSpace,
                                                       const std::string& className, bool deep) = 0;
  /// Instances of the class and all its subclasses.
  virtual void EnumerateInstances(const std::string& nameSpace, const std::string& className,
                                  const TInstanceSink& sink) = 0;
  virtual std::vector<TCIMReference> EnumerateInstanceNames(const std::string& nameSpace,
                                                            const std::string& className) = 0;
  /// One that is not there throws (CIM status 6).
  virtual TCIMInstanceData GetInstance(const TCIMReference& path) = 0;
  virtual TCIMReference CreateInstance(const std::string& nameSpace,
                                       const TCIMInstanceData& instance) = 0;
  virtual void ModifyInstance(const TCIMInstanceData& instance) = 0;
  virtual void DeleteInstance(const TCIMReference& path) = 0;
  /// Objects at the other end of the associations of `path`.
  virtual void Associators(const TCIMReference& path, const TAssociationFilter& filter,
                           const TInstanceSink& sink) = 0;
  virtual std::vector<TCIMReference> AssociatorNames(const TCIMReference& path,
                                                     const TAssociationFilter& filter) = 0;
  /// Association instances that refer to `path`; `resultClass` and `role` of the filter count.
  virtual void References(const TCIMReference& path, const TAssociationFilter& filter,
                          const TInstanceSink& sink) = 0;
  virtual std::vector<TCIMReference> ReferenceNames(const TCIMReference& path,
                                                    const TAssociationFilter& filter) = 0;
  /// Invokes an extrinsic method; `parameters` holds the in-parameters and receives exactly the
  /// out-parameters. An exception leaves it as it was.
  virtual TCIMValue InvokeMethod(const TCIMReference& path, const std::string& method,
                                 TKeyMap& parameters) = 0;

  /// Every namespace in which something is registered, the default one first.
  virtual std::vector<std::string> GetNamespaces() = 0;

  /// A provider and the classes it serves.
  struct TProviderInfo {
    std::string name;
    std::string nameSpace;
    std::vector<std::string> classNames;
  };
  /// One entry per provider and namespace.
  virtual std::vector<TProviderInfo> GetProviders() = 0;
};

}  // namespace NZEPQEL20
