// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TCIMReference.h"

namespace NZEPQEL20::cmpi {

/// Named values in the order in which they came, names without case.
using TNamedValues = std::vector<TCIMPropertyData>;

/// The value called `name`; null when there is none.
const TCIMPropertyData* FindNamed(const TNamedValues& values, const std::string& name);
/// Replaces the value called `name` (its spelling stays), or appends it.
void SetNamed(TNamedValues& values, const std::string& name, const TCIMValue& value);

/// The plain content of an object path.
struct TPathContent {
  std::string host;
  std::string nameSpace;
  std::string className;
  TNamedValues keys;

  static TPathContent From(const TCIMReference& reference);
  TCIMReference ToReference() const;
};

}  // namespace NZEPQEL20::cmpi
