// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TScriptedClass.h"

#include "tests/support/TFaultPlan.h"

namespace scripted {

using NZEPQEL20::TKeyMap;

std::string TScriptedClass::GetName(const TKeyMap& /*keys*/) {
  return TFaultPlan::Get().Enter("classname", m_name) ? "" : m_name;
}

TNamespacePtr TScriptedClass::GetNamespace(const TKeyMap& keys) {
  if (TFaultPlan::Get().Enter("namespace", m_name + " " + scripted::Show(keys))) {
    return {};
  }
  const auto nspID = keys.find("nspID");
  const bool isPlugin = nspID != keys.end() && nspID->second.ToString(10) == "plugin";
  return m_world.GetNamespace(isPlugin ? "plugin" : m_label);
}

void TScriptedClass::EnumerateInstances(const boost::function<bool(TInstancePtr)>& callback,
                                        int deep, const TKeyMap& keys) {
  const std::string call = m_name + " deep=" + std::to_string(deep) + " " + scripted::Show(keys);
  // The null of an enumeration is an empty handle among the instances.
  bool isGoingOn = !TFaultPlan::Get().Enter("enumerate", call) || callback({});
  for (const TObjectPtr& object : m_world.Enumerate(m_name)) {
    isGoingOn = isGoingOn && callback(m_world.MakeInstance(object));
  }
}

}  // namespace scripted
