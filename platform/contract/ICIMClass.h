// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <string>

#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20 {

class ICIMInstance;
class ICIMNamespace;

/// A CIM class within a namespace. Every operation may throw TQELException.
class DIAGSPLATFORM_EXPORT ICIMClass {
 public:
  virtual ~ICIMClass() = default;

  virtual std::string GetName(const TKeyMap& keys) = 0;

  /// The namespace that holds the class; with "nspID" in `keys` the namespace of that context.
  virtual boost::shared_ptr<ICIMNamespace> GetNamespace(const TKeyMap& keys) = 0;

  /// Calls `callback` once for each instance until it returns false; `deep` not 0 includes the
  /// instances of subclasses.
  virtual void EnumerateInstances(
      const boost::function<bool(boost::shared_ptr<ICIMInstance>)>& callback, int deep,
      const TKeyMap& keys) = 0;
};

}  // namespace NZEPQEL20
