// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TInstanceContent.h"

#include <algorithm>

#include "platform/cmpi/IBrokerHost.h"

namespace NZEPQEL20::cmpi {

TInstanceContent TInstanceContent::From(const TCIMInstanceData& data) {
  TInstanceContent content;
  content.path = TPathContent::From(data.path);
  content.properties = data.properties;
  return content;
}

bool TInstanceContent::Accepts(const std::string& name) const {
  if (!isFiltered || FindNamed(path.keys, name) != nullptr) return true;
  return std::any_of(accepted.begin(), accepted.end(),
                     [&](const std::string& entry) { return IsSameName(entry, name); });
}

void TInstanceContent::SetProperty(const std::string& name, const TCIMValue& value) {
  if (!Accepts(name)) return;
  SetNamed(properties, name, value);
  if (FindNamed(path.keys, name) != nullptr) SetNamed(path.keys, name, value);
}

void TInstanceContent::SetFilter(std::vector<std::string> names) {
  isFiltered = true;
  accepted = std::move(names);
  properties.erase(
      std::remove_if(properties.begin(), properties.end(),
                     [&](const TCIMPropertyData& property) { return !Accepts(property.name); }),
      properties.end());
}

TPathContent TInstanceContent::GetPath(const IBrokerHost* host) const {
  TPathContent result = path;
  if (!result.keys.empty()) return result;
  const auto declaration = host == nullptr ? nullptr : host->FindClass(path.className);
  for (const TCIMPropertyData& property : properties) {
    bool isKey = property.value.GetType() == ECIMType::kReference && !property.value.IsArray();
    if (declaration != nullptr) {
      const TCIMPropertyDeclaration* declared = declaration->FindProperty(property.name);
      isKey = declared != nullptr && declared->isKey;
    }
    if (isKey) result.keys.push_back(property);
  }
  return result;
}

TCIMInstanceData TInstanceContent::Take(const IBrokerHost* host) && {
  TCIMInstanceData data;
  data.path = GetPath(host).ToReference();
  data.properties = std::move(properties);
  return data;
}

std::vector<std::string> ReadNames(const char* const* list) {
  std::vector<std::string> names;
  for (; list != nullptr && *list != nullptr; ++list) names.emplace_back(*list);
  return names;
}

}  // namespace NZEPQEL20::cmpi
