// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <string>

#include "platform/contract/TCIMReference.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20 {

class ICIMClass;
class ICIMInstance;
class IProvider;

/// A CIM namespace. The key maps choose a provider context by "nspID"; an empty map stands for
/// the namespace's own. Every operation may throw TQELException.
class DIAGSPLATFORM_EXPORT ICIMNamespace {
 public:
  virtual ~ICIMNamespace() = default;

  /// The class as offered by the context that `keys` chooses. Null or TQELException when there
  /// is none.
  virtual boost::shared_ptr<ICIMClass> FindClass(const std::string& className,
                                                 const TKeyMap& keys) = 0;

  /// Fetches the instance that `path` names, anew each time. Null or TQELException when there is
  /// none.
  virtual boost::shared_ptr<ICIMInstance> GetInstance(const TCIMReference& path, TKeyMap keys) = 0;

  /// Calls `callback` for each provider of the context until it returns false.
  virtual void EnumerateProviders(
      const boost::function<bool(boost::shared_ptr<IProvider>)>& callback, const TKeyMap& keys) = 0;
};

/// A namespace that can also take instances in.
class DIAGSPLATFORM_EXPORT ICIMInstanceStore {
 public:
  virtual ~ICIMInstanceStore() = default;

  /// Stores a copy of `source`; one with the same path is replaced. Answers with the stored one.
  virtual boost::shared_ptr<ICIMInstance> CreateInstance(
      const boost::shared_ptr<ICIMInstance>& source) = 0;
};

}  // namespace NZEPQEL20
