// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TInstanceContent.h"

#include <algorithm>

#include "platform/cmpi/IBrokerHost.h"

namespace NZEPQEL20::cmpi {

namespace {

bool IsReference(const TCIMValue& value) {
  return value.GetType() == ECIMType::kReference && !value.IsArray() && !value.IsNull();
}

}  // namespace

TInstanceContent TInstanceContent::From(const TCIMInstanceData& data) {
  TInstanceContent content;
  content.path = TPathContent::From(data.path);
  content.properties = data.properties;
  return content;
}

bool TInstanceContent::Accepts(const std::string& name, const TCIMValue& value) const {
  if (!isFiltered || FindNamed(path.keys, name) != nullptr) return true;
  if (acceptsReferences && IsReference(value)) return true;
  return std::any_of(accepted.begin(), accepted.end(),
                     [&](const std::string& entry) { return IsSameName(entry, name); });
}

void TInstanceContent::SetProperty(const std::string& name, const TCIMValue& value) {
  if (!Accepts(name, value)) return;
  SetNamed(properties, name, value);
  // The value of a key is never NULL.
  if (!value.IsNull() && FindNamed(path.keys, name) != nullptr) SetNamed(path.keys, name, value);
}

void TInstanceContent::SetFilter(std::vector<std::string> names, const IBrokerHost* host) {
  isFiltered = true;
  accepted = std::move(names);
  const auto declaration = host == nullptr ? nullptr : host->FindClass(path.className);
  acceptsReferences = declaration == nullptr && path.keys.empty();
  if (declaration != nullptr) {
    for (const TCIMPropertyDeclaration& property : declaration->properties) {
      if (property.isKey) accepted.push_back(property.name);
    }
  }
  properties.erase(std::remove_if(properties.begin(), properties.end(),
                                  [&](const TCIMPropertyData& property) {
                                    return !Accepts(property.name, property.value);
                                  }),
                   properties.end());
}

TPathContent TInstanceContent::GetPath(const IBrokerHost* host) const {
  TPathContent result = path;
  const auto declaration = host == nullptr ? nullptr : host->FindClass(path.className);
  if (declaration != nullptr) {
    for (const TCIMPropertyDeclaration& declared : declaration->properties) {
      if (!declared.isKey || FindNamed(result.keys, declared.name) != nullptr) continue;
      const TCIMPropertyData* property = FindNamed(properties, declared.name);
      if (property != nullptr && !property->value.IsNull()) result.keys.push_back(*property);
    }
  }
  if (!result.keys.empty()) return result;
  for (const TCIMPropertyData& property : properties) {
    if (IsReference(property.value)) result.keys.push_back(property);
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
