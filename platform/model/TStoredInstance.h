// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/contract/ICIMInstance.h"

namespace NZEPQEL20 {

/// A copy of an instance that needs its origin no more: values, and the texts they had there.
/// Threads: calls that do not change it are safe from several.
class TStoredInstance final : public ICIMInstance {
 public:
  /// Errors: what reading `source` throws.
  explicit TStoredInstance(ICIMInstance& source);

  TCIMReference GetObjectPath(const TKeyMap& keys) override;
  boost::shared_ptr<ICIMProperty> GetProperty(const std::string& name,
                                              const TKeyMap& keys) override;
  void SetProperty(const std::string& name, const TCIMValue& value, const TKeyMap& keys) override;
  /// Errors: always TQELException (kNotSupported): nobody stands behind a copy.
  TCIMValue InvokeMethod(const std::string& method, TKeyMap& parameters,
                         const TKeyMap& context) override;
  std::vector<std::string> GetPropertyNames(const TKeyMap& keys) override;
  std::string GetNamespaceText(const TKeyMap& keys) override;

 private:
  struct TStored {
    std::string name;
    TCIMValue value;
    std::string text;
  };
  class TProperty;

  TCIMReference m_path;
  std::vector<TStored> m_properties;
};

}  // namespace NZEPQEL20
