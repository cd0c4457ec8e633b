// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <string>

#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20 {

class ICIMClass;

/// A CIM provider. Every operation may throw TQELException.
class DIAGSPLATFORM_EXPORT IProvider {
 public:
  virtual ~IProvider() = default;

  virtual std::string GetName() = 0;

  /// Calls `callback` for each class that the provider serves until it returns false.
  virtual void EnumerateClasses(const boost::function<bool(boost::shared_ptr<ICIMClass>)>& callback,
                                const TKeyMap& keys) = 0;
};

}  // namespace NZEPQEL20
