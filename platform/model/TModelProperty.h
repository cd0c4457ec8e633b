// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "platform/contract/ICIMProperty.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/model/TModelNamespace.h"

namespace NZEPQEL20 {

/// A property as it was when it was asked for.
class TModelProperty final : public ICIMProperty {
 public:
  TModelProperty(boost::shared_ptr<TModelNamespace> home, std::string className,
                 TCIMPropertyData property);

  TCIMValue GetValue(const TKeyMap& keys) override;
  std::string GetValueText() override;
  std::string GetName() override;

 private:
  const boost::shared_ptr<TModelNamespace> m_home;
  const std::string m_className;
  const TCIMPropertyData m_property;
};

}  // namespace NZEPQEL20
