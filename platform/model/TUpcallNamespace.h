// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "platform/model/IRoutedNamespace.h"
#include "platform/model/TModelNamespace.h"

namespace NZEPQEL20 {

/// All registered namespaces of one connection as one, as a provider's own upcall sees them: an
/// object is found wherever it lives. The key maps are not consulted.
/// Threads: safe from several.
class TUpcallNamespace final : public ICIMNamespace,
                               public IRoutedNamespace,
                               public boost::enable_shared_from_this<TUpcallNamespace> {
 public:
  explicit TUpcallNamespace(boost::shared_ptr<TModelNamespace> connection);

  boost::shared_ptr<ICIMClass> FindClass(const std::string& className,
                                         const TKeyMap& keys) override;
  /// Looks in the path's own namespace first. When it is nowhere, the most telling reason is
  /// thrown: a real failure before "not found".
  boost::shared_ptr<ICIMInstance> GetInstance(const TCIMReference& path, TKeyMap keys) override;
  void EnumerateProviders(const boost::function<bool(boost::shared_ptr<IProvider>)>& callback,
                          const TKeyMap& keys) override;
  /// Always itself.
  boost::shared_ptr<ICIMNamespace> Select(const TKeyMap& keys) override;

 private:
  std::vector<std::string> GetNamespaceNames(const std::string& first) const;

  const boost::shared_ptr<TModelNamespace> m_connection;
};

}  // namespace NZEPQEL20
