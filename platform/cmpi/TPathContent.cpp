// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TPathContent.h"

namespace NZEPQEL20::cmpi {

const TCIMPropertyData* FindNamed(const TNamedValues& values, const std::string& name) {
  for (const TCIMPropertyData& entry : values) {
    if (entry.name.size() == name.size() && IsSameName(entry.name, name)) return &entry;
  }
  return nullptr;
}

void SetNamed(TNamedValues& values, const std::string& name, const TCIMValue& value) {
  for (TCIMPropertyData& entry : values) {
    if (entry.name.size() == name.size() && IsSameName(entry.name, name)) {
      entry.value = value;
      return;
    }
  }
  values.push_back({name, value});
}

TPathContent TPathContent::From(const TCIMReference& reference) {
  TPathContent content{
      reference.GetHost(), reference.GetNamespaceName(), reference.GetClassName(), {}};
  for (const auto& [name, value] : reference.GetKeys()) content.keys.push_back({name, value});
  return content;
}

TCIMReference TPathContent::ToReference() const {
  TKeyMap map;
  for (const TCIMPropertyData& key : keys) map.emplace(key.name, key.value);
  TCIMReference reference(nameSpace, className, std::move(map));
  reference.SetHost(host);
  return reference;
}

}  // namespace NZEPQEL20::cmpi
