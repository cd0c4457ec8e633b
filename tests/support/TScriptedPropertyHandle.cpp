// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TScriptedPropertyHandle.h"

#include "tests/support/TFaultPlan.h"

namespace scripted {

using NZEPQEL20::TCIMValue;
using NZEPQEL20::TKeyMap;

TCIMValue TScriptedPropertyHandle::GetValue(const TKeyMap& /*keys*/) {
  const bool isNull = TFaultPlan::Get().Enter("value", m_path + " " + m_property.name);
  return isNull ? TCIMValue() : m_world.Bind(m_property.value);
}

std::string TScriptedPropertyHandle::GetValueText() {
  if (TFaultPlan::Get().Enter("text", m_path + " " + m_property.name)) {
    return "";
  }
  return m_property.text.value_or(m_property.value.ToString(10));
}

std::string TScriptedPropertyHandle::GetName() {
  return m_property.name;
}

}  // namespace scripted
