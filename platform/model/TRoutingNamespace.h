// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <functional>
#include <map>
#include <string>

#include "platform/contract/ICIMNamespace.h"

namespace NZEPQEL20 {

/// The namespace that a host hands to the runner: "nspID" in a key map chooses the provider
/// context, an empty map stands for "cmpi".
///
/// "plugin" is the "cmpi" context, seen as the namespace whose upcalls find any object.
/// Threads: contexts are added before the first use; the rest is safe from several.
class TRoutingNamespace final : public ICIMNamespace,
                                public boost::enable_shared_from_this<TRoutingNamespace> {
 public:
  /// Makes the namespace of a context, for example from "nsp" in the key map.
  using TFactory = std::function<boost::shared_ptr<ICIMNamespace>(const TKeyMap& keys)>;

  /// A context of the same id is replaced.
  void AddContext(const std::string& id, TFactory factory);

  /// The namespace of the context that `keys` chooses.
  /// Errors: TQELException (kNotFound) naming an id that is not configured.
  boost::shared_ptr<ICIMNamespace> Select(const TKeyMap& keys) const;

  boost::shared_ptr<ICIMClass> FindClass(const std::string& className,
                                         const TKeyMap& keys) override;
  boost::shared_ptr<ICIMInstance> GetInstance(const TCIMReference& path, TKeyMap keys) override;
  void EnumerateProviders(const boost::function<bool(boost::shared_ptr<IProvider>)>& callback,
                          const TKeyMap& keys) override;

 private:
  std::map<std::string, TFactory> m_factories;
};

}  // namespace NZEPQEL20
