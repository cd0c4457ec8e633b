// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/contract/Export.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20 {

/// A property of an instance, as it was when the property was asked for.
class DIAGSPLATFORM_EXPORT ICIMProperty {
 public:
  virtual ~ICIMProperty() = default;

  virtual TCIMValue GetValue(const TKeyMap& keys) = 0;

  /// The value as a person reads it: the Values word where the class declares one for it,
  /// otherwise as TCIMValue::ToString(10).
  virtual std::string GetValueText() = 0;

  /// As the instance spells it.
  virtual std::string GetName() = 0;
};

}  // namespace NZEPQEL20
