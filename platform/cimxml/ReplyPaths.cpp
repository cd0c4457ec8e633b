// SPDX-License-Identifier: Apache-2.0
// The chapter of TReplyReader about object paths.
#include <utility>

#include "platform/cimxml/TReplyReader.h"
#include "platform/cimxml/WireValues.h"

namespace NZEPQEL20::cimxml {
namespace {

// Keys are looked up one after the other, and every part of a name copies those before it: what is
// beyond any use must not cost its square.
constexpr std::size_t kMaxKeys = 256;
constexpr std::size_t kMaxNamespaceBytes = 1024;

}  // namespace

// A path begins where something that has one begins; INSTANCENAME and the like only fill it.
bool TReplyReader::StartPath(EElement element, const TAttributes& attributes) {
  switch (element) {
    case EElement::kNamedInstance:
    case EElement::kInstanceWithPath:
    case EElement::kObjectWithPath:
    case EElement::kValueObject:
      m_hasInstance = false;
      m_paths.emplace_back();
      return true;
    case EElement::kObjectPath:
    case EElement::kValueReference:
      m_paths.emplace_back();
      return true;
    case EElement::kInstancePath:
      if (GetParent() == EElement::kIReturnValue) m_paths.emplace_back();
      return true;
    case EElement::kInstanceName:
      if (GetParent() == EElement::kIReturnValue) m_paths.emplace_back();
      m_paths.back().SetClassName(std::string(attributes.Find("CLASSNAME")));
      return true;
    case EElement::kClassName:
      StartClassName(attributes);
      return true;
    case EElement::kNamespace:
      StartNamespace(std::string(attributes.Find("NAME")));
      return true;
    case EElement::kKeyBinding:
      m_keys.push_back({std::string(attributes.Find("NAME")), {}, {}});
      return true;
    case EElement::kKeyValue:
      // The one key of a singleton comes without a name.
      if (GetParent() != EElement::kKeyBinding) m_keys.emplace_back();
      m_keys.back().valueType = attributes.Find("VALUETYPE");
      m_keys.back().type = attributes.Find("TYPE");
      return true;
    default:
      return false;
  }
}

void TReplyReader::StartNamespace(const std::string& name) {
  if (name.empty()) return;
  const std::string& above = m_paths.back().GetNamespaceName();
  if (above.size() + name.size() > kMaxNamespaceBytes) Refuse("a namespace with too long a name");
  m_paths.back().SetNamespaceName(above.empty() ? name : above + "/" + name);
}

void TReplyReader::StartClassName(const TAttributes& attributes) {
  std::string name(attributes.Find("NAME"));
  if (GetParent() == EElement::kIReturnValue) {
    m_reply.classNames.push_back(std::move(name));
  } else {
    m_paths.back().SetClassName(name);
  }
}

bool TReplyReader::EndPath(EElement element) {
  switch (element) {
    case EElement::kObjectPath:
      EndResultPath();
      return true;
    case EElement::kInstancePath:
    case EElement::kInstanceName:
      if (GetParent() == EElement::kIReturnValue) EndResultPath();
      return true;
    case EElement::kValueReference:
      EndReference();
      return true;
    case EElement::kKeyBinding:
      m_keys.pop_back();
      return true;
    case EElement::kKeyValue:
      EndKey();
      return true;
    default:
      return false;
  }
}

TCIMReference TReplyReader::TakePath() {
  TCIMReference path = std::move(m_paths.back());
  m_paths.pop_back();
  if (!path.IsNull() && path.GetNamespaceName().empty()) path.SetNamespaceName(m_nameSpace);
  return path;
}

void TReplyReader::EndResultPath() {
  TCIMReference path = TakePath();
  if (path.IsNull()) return Note("a path that names nothing");
  m_reply.paths.push_back(std::move(path));
}

void TReplyReader::SetKey(const std::string& name, const TCIMValue& value) {
  if (m_paths.back().GetKeys().size() >= kMaxKeys) Refuse("a path with too many keys");
  m_paths.back().SetKey(name, value);
}

void TReplyReader::EndKey() {
  const TKeyFrame& key = m_keys.back();
  SetKey(key.name, ReadKeyValue(key.valueType, key.type, m_text));
  if (GetParent() != EElement::kKeyBinding) m_keys.pop_back();
}

void TReplyReader::EndReference() {
  const TCIMValue reference(TakePath());
  if (GetParent() == EElement::kKeyBinding) {
    SetKey(m_keys.back().name, reference);
  } else if (GetParent() == EElement::kInstanceName) {
    SetKey({}, reference);
  } else {
    m_values.back().Add(reference);
  }
}

}  // namespace NZEPQEL20::cimxml
