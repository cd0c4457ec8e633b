// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>
#include <memory>
#include <string>
#include <vector>

#include "platform/contract/TCIMClassDeclaration.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TCMPIInstance.h"
#include "platform/model/TModelNamespace.h"

namespace NZEPQEL20 {

/// An instance of one connection: a copy of its content, and the way back for method calls.
/// Threads: calls that do not change it are safe from several.
class TModelInstance final : public TCMPIInstance {
 public:
  /// `data` is shared, and copied only by the first SetProperty().
  TModelInstance(boost::shared_ptr<TModelNamespace> home,
                 std::shared_ptr<const TCIMInstanceData> data);

  TCIMReference GetObjectPath(const TKeyMap& keys) override;
  boost::shared_ptr<ICIMProperty> GetProperty(const std::string& name,
                                              const TKeyMap& keys) override;
  void SetProperty(const std::string& name, const TCIMValue& value, const TKeyMap& keys) override;
  /// What starts a test is answered in one way, whatever the object's: see StartDiagnostic().
  TCIMValue InvokeMethod(const std::string& method, TKeyMap& parameters,
                         const TKeyMap& context) override;
  std::vector<std::string> GetPropertyNames(const TKeyMap& keys) override;
  std::string GetNamespaceText(const TKeyMap& keys) override;

 private:
  std::shared_ptr<const TCIMClassDeclaration> FindDeclaration() const;

  const boost::shared_ptr<TModelNamespace> m_home;
  std::shared_ptr<const TCIMInstanceData> m_data;
};

}  // namespace NZEPQEL20
