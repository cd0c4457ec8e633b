// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TScriptedWorld.h"

#include <boost/make_shared.hpp>

#include "platform/contract/TCMPIInstance.h"
#include "tests/support/TScriptedInstance.h"
#include "tests/support/TScriptedNamespace.h"

namespace scripted {

using NZEPQEL20::ECIMType;
using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TKeyMap;

const char kNamespaceText[] = "root/cimv2";

std::string Show(const TKeyMap& keys) {
  std::string shown = "{";
  for (const auto& entry : keys) {
    shown += (shown.size() > 1 ? "," : "") + entry.first + "=" + entry.second.ToString(10);
  }
  return shown + "}";
}

TScriptedWorld::TScriptedWorld() {
  for (const char* label : {"root", "upcall", "host"}) {
    m_namespaces[label] = boost::make_shared<TScriptedNamespace>(*this, label);
  }
  m_namespaces["plugin"] = boost::make_shared<TScriptedPluginNamespace>(*this, "plugin");
}

TObjectPtr TScriptedWorld::Add(const std::string& className, const std::string& key,
                               const std::string& value) {
  const TCIMReference path(kNamespaceText, className, {{key, TCIMValue(value)}});
  auto object = std::make_shared<TScriptedObject>(path);
  m_objects[path.GetPath()] = object;
  m_classes[className];
  return object;
}

void TScriptedWorld::Show(const std::string& className, const TObjectPtr& object,
                          unsigned int first) {
  m_classes[className].shown.push_back({object, first});
}

TInstancePtr TScriptedWorld::MakeInstance(const TObjectPtr& object) {
  return Wrap(object, object->Look());
}

TInstancePtr TScriptedWorld::FetchInstance(const TObjectPtr& object) {
  return Wrap(object, object->Fetch());
}

TInstancePtr TScriptedWorld::Wrap(const TObjectPtr& object, const TScriptedProperties& properties) {
  if (object->IsPlain()) {
    return boost::make_shared<TScriptedInstance<NZEPQEL20::ICIMInstance>>(*this, object,
                                                                          properties);
  }
  return boost::make_shared<TScriptedInstance<NZEPQEL20::TCMPIInstance>>(*this, object, properties);
}

bool TScriptedWorld::HasClass(const std::string& className) const {
  return m_classes.count(className) != 0;
}

TObjectPtr TScriptedWorld::Find(const TCIMReference& path) const {
  const auto object = m_objects.find(path.GetPath());
  return object == m_objects.end() ? nullptr : object->second;
}

std::vector<TObjectPtr> TScriptedWorld::Enumerate(const std::string& className) {
  TClass& shownClass = m_classes[className];
  std::vector<TObjectPtr> objects;
  for (const TShown& shown : shownClass.shown) {
    if (shown.first <= shownClass.enumerations) {
      objects.push_back(shown.object);
    }
  }
  ++shownClass.enumerations;
  return objects;
}

TCIMValue TScriptedWorld::Bind(const TCIMValue& value) const {
  if (value.GetType() != ECIMType::kReference || value.IsArray() || value.IsNull()) {
    return value;
  }
  return TCIMValue(static_cast<TCIMReference>(value).Bind(GetRoot()));
}

}  // namespace scripted
