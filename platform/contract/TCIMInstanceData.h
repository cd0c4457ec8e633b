// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/contract/TCIMReference.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20 {

/// One property of an instance as a provider or server gave it.
struct TCIMPropertyData {
  std::string name;
  TCIMValue value;  ///< NULL keeps its type where the sender named one.
};

/// The plain content of an instance: its path and its properties in the sender's order.
struct TCIMInstanceData {
  TCIMReference path;  ///< Class name always set; namespace and keys as far as known.
  std::vector<TCIMPropertyData> properties;

  /// The property called `name`, compared without case; null when there is none.
  const TCIMPropertyData* Find(const std::string& name) const {
    return const_cast<TCIMInstanceData*>(this)->Find(name);
  }
  DIAGSPLATFORM_EXPORT TCIMPropertyData* Find(const std::string& name);
  /// Replaces the property called `name`, or appends it.
  DIAGSPLATFORM_EXPORT void Set(const std::string& name, const TCIMValue& value);
};

/// Whether two CIM names are the same: ASCII letters compare without case (DSP0004).
DIAGSPLATFORM_EXPORT bool IsSameName(const std::string& left, const std::string& right);

}  // namespace NZEPQEL20
