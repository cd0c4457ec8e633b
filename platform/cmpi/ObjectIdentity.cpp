// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/ObjectIdentity.h"

#include <cstddef>
#include <map>

#include "platform/cmpi/TProviders.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/schema/TMofQualifierTable.h"

namespace NZEPQEL20::cmpi {

namespace {

/// A key's value as text; numbers of all widths, and numbers that arrived as texts, look the same.
std::string ValueText(const TCIMValue& value) {
  if (value.GetType() != ECIMType::kReference || value.IsArray() || value.IsNull()) {
    return value.ToString(10);
  }
  return GetIdentity(static_cast<TCIMReference>(value), {});
}

bool IsSameValue(const TCIMValue& left, const TCIMValue& right) {
  const bool areReferences =
      left.GetType() == ECIMType::kReference && right.GetType() == ECIMType::kReference;
  if (!areReferences || left.IsNull() || right.IsNull()) {
    return ValueText(left) == ValueText(right);
  }
  const auto one = static_cast<TCIMReference>(left);
  const auto other = static_cast<TCIMReference>(right);
  return IsSameName(one.GetClassName(), other.GetClassName()) && DoKeysAgree(one, other);
}

bool IsSamePlace(const std::string& left, const std::string& right) {
  return left.empty() || right.empty() || IsSameNamespace(left, right);
}

bool IsSameKind(const IBrokerHost& host, const std::string& left, const std::string& right) {
  if (left.empty() || right.empty() || host.IsA(left, right) || host.IsA(right, left)) return true;
  return host.FindClass(left) == nullptr || host.FindClass(right) == nullptr;
}

}  // namespace

std::string GetIdentity(const TCIMReference& path, const std::string& nameSpace) {
  std::string place = path.GetNamespaceName().empty() ? nameSpace : path.GetNamespaceName();
  place.erase(0, place.find_first_not_of('/'));
  std::string identity = FoldName(place + ':' + path.GetClassName());
  std::map<std::string, std::string> keys;
  for (const auto& [name, value] : path.GetKeys()) keys[FoldName(name)] = ValueText(value);
  for (const auto& [name, text] : keys) {
    // The length keeps a text with separators in it from looking like two keys.
    identity.append(",").append(name).append("=").append(std::to_string(text.size()));
    identity.append(":").append(text);
  }
  return identity;
}

bool DoKeysAgree(const TCIMReference& left, const TCIMReference& right) {
  std::size_t common = 0;
  for (const auto& [name, value] : left.GetKeys()) {
    const TCIMValue* other = right.FindKey(name);
    if (other == nullptr) continue;
    if (!IsSameValue(value, *other)) return false;
    ++common;
  }
  return common > 0 || (left.GetKeys().empty() && right.GetKeys().empty());
}

bool IsSameObject(const IBrokerHost& host, const TCIMReference& left, const TCIMReference& right) {
  return IsSamePlace(left.GetNamespaceName(), right.GetNamespaceName()) &&
         IsSameKind(host, left.GetClassName(), right.GetClassName()) && DoKeysAgree(left, right);
}

}  // namespace NZEPQEL20::cmpi
