// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TCIMInstanceData.h"

#include <algorithm>

namespace NZEPQEL20 {

namespace {

// The C library's own folding depends on the locale; CIM names do not.
char FoldLetter(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

bool IsSameName(const std::string& left, const std::string& right) {
  return left.size() == right.size() &&
         std::equal(left.begin(), left.end(), right.begin(),
                    [](char a, char b) { return FoldLetter(a) == FoldLetter(b); });
}

TCIMPropertyData* TCIMInstanceData::Find(const std::string& name) {
  const auto found = std::find_if(
      properties.begin(), properties.end(),
      [&name](const TCIMPropertyData& property) { return IsSameName(property.name, name); });
  return found == properties.end() ? nullptr : &*found;
}

void TCIMInstanceData::Set(const std::string& name, const TCIMValue& value) {
  if (TCIMPropertyData* property = Find(name)) {
    property->value = value;
  } else {
    properties.push_back({name, value});
  }
}

}  // namespace NZEPQEL20
