// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "platform/contract/TCIMReference.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20 {

class ICIMProperty;

/// A CIM instance: a copy of what the provider gave, and the way back to it for method calls.
/// Property names compare without case. Every operation may throw TQELException.
class DIAGSPLATFORM_EXPORT ICIMInstance {
 public:
  virtual ~ICIMInstance() = default;

  virtual TCIMReference GetObjectPath(const TKeyMap& keys) = 0;

  /// A property that the class declares and the provider left out is NULL; one that neither
  /// knows gives a null handle.
  virtual boost::shared_ptr<ICIMProperty> GetProperty(const std::string& name,
                                                      const TKeyMap& keys) = 0;

  /// Changes this copy only.
  virtual void SetProperty(const std::string& name, const TCIMValue& value,
                           const TKeyMap& keys) = 0;

  /// Invokes an extrinsic method on the instance and answers with its return value. Takes the
  /// in-parameters from `parameters` and leaves exactly the out-parameters in it; an exception
  /// leaves it as it was.
  virtual TCIMValue InvokeMethod(const std::string& method, TKeyMap& parameters,
                                 const TKeyMap& context) = 0;

  /// Names of all properties that the instance holds, in the sender's order.
  virtual std::vector<std::string> GetPropertyNames(const TKeyMap& keys) = 0;

  /// The namespace that the instance lives in, as text ("root/cimv2").
  virtual std::string GetNamespaceText(const TKeyMap& keys) = 0;
};

}  // namespace NZEPQEL20
