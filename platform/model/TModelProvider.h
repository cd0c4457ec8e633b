// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "platform/contract/IProvider.h"
#include "platform/model/ICIMOperations.h"
#include "platform/model/TModelNamespace.h"

namespace NZEPQEL20 {

/// A provider as the connection lists it, in one namespace.
class TModelProvider final : public IProvider {
 public:
  TModelProvider(ICIMOperations::TProviderInfo info, boost::shared_ptr<TModelNamespace> home);

  std::string GetName() override;
  void EnumerateClasses(const boost::function<bool(boost::shared_ptr<ICIMClass>)>& callback,
                        const TKeyMap& keys) override;

 private:
  const ICIMOperations::TProviderInfo m_info;
  const boost::shared_ptr<TModelNamespace> m_home;
};

}  // namespace NZEPQEL20
