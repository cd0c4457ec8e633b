// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "platform/contract/TCIMClassDeclaration.h"
#include "platform/contract/TCIMValue.h"
#include "platform/model/ICIMOperations.h"
#include "platform/model/TRemarks.h"

namespace NZEPQEL20 {

class ICIMNamespace;
class TRoutingNamespace;

/// One connection of the object model: what all its namespaces, classes and instances share.
/// Threads: safe from several.
class TModelContext {
 public:
  /// `id` is the "nspID" under which the connection is known; `operations` must not be null.
  TModelContext(std::string id, std::shared_ptr<ICIMOperations> operations);

  const std::string& GetId() const { return m_id; }
  ICIMOperations& GetOperations() const { return *m_operations; }

  /// Why tests did not start.
  TRemarks& GetRemarks() { return m_remarks; }

  /// The declaration, fetched once per namespace and class.
  /// Errors: what the operations throw for an unknown class.
  std::shared_ptr<const TCIMClassDeclaration> GetDeclaration(const std::string& nameSpace,
                                                             const std::string& className);
  /// The same, null for a class that cannot be had.
  std::shared_ptr<const TCIMClassDeclaration> FindDeclaration(
      const std::string& nameSpace, const std::string& className) noexcept;

  /// The namespace that leads to the other connections; may be gone or never set.
  void SetRouter(const boost::shared_ptr<TRoutingNamespace>& router);
  /// The namespace that `keys` chooses among all connections.
  /// Errors: TQELException naming the "nspID" when nothing routes it.
  boost::shared_ptr<ICIMNamespace> Route(const TKeyMap& keys) const;

 private:
  const std::string m_id;
  const std::shared_ptr<ICIMOperations> m_operations;
  TRemarks m_remarks;
  mutable std::mutex m_mutex;
  boost::weak_ptr<TRoutingNamespace> m_router;
  std::unordered_map<std::string, std::shared_ptr<const TCIMClassDeclaration>> m_declarations;
};

/// The "nspID" that `keys` asks for; empty when it asks for none.
std::string GetContextId(const TKeyMap& keys);

}  // namespace NZEPQEL20
