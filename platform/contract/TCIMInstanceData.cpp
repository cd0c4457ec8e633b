// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TCIMInstanceData.h"

#include <algorithm>

namespace NZEPQEL20 {
namespace {

// DSP0004 folds ASCII only; the process's locale must not change what a name means.
char Fold(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

bool IsSameName(const std::string& left, const std::string& right) {
  return left.size() == right.size() &&
         std::equal(left.begin(), left.end(), right.begin(),
                    [](char a, char b) { return Fold(a) == Fold(b); });
}

TCIMPropertyData* TCIMInstanceData::Find(const std::string& name) {
  const auto found = std::find_if(
      properties.begin(), properties.end(),
      [&name](const TCIMPropertyData& property) { return IsSameName(property.name, name); });
  return found == properties.end() ? nullptr : &*found;
}

void TCIMInstanceData::Set(const std::string& name, const TCIMValue& value) {
  TCIMPropertyData* const known = Find(name);
  if (known != nullptr) {
    known->value = value;
  } else {
    properties.push_back({name, value});
  }
}

}  // namespace NZEPQEL20
