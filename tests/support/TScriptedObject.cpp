// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TScriptedObject.h"

#include <strings.h>

#include <algorithm>

namespace scripted {

using NZEPQEL20::TCIMValue;

TScriptedProperty* FindProperty(TScriptedProperties& properties, const std::string& name) {
  for (TScriptedProperty& property : properties) {
    if (::strcasecmp(property.name.c_str(), name.c_str()) == 0) {
      return &property;
    }
  }
  return nullptr;
}

TScriptedObject& TScriptedObject::Set(const std::string& name, const TCIMValue& value) {
  Remove(name);
  m_states.back().push_back({name, value, std::nullopt});
  return *this;
}

TScriptedObject& TScriptedObject::SetText(const std::string& name, const TCIMValue& value,
                                          const std::string& text) {
  Remove(name);
  m_states.back().push_back({name, value, text});
  return *this;
}

TScriptedObject& TScriptedObject::Remove(const std::string& name) {
  TScriptedProperties& state = m_states.back();
  state.erase(std::remove_if(state.begin(), state.end(),
                             [&name](const TScriptedProperty& property) {
                               return ::strcasecmp(property.name.c_str(), name.c_str()) == 0;
                             }),
              state.end());
  return *this;
}

TScriptedObject& TScriptedObject::AtNextFetch() {
  m_states.push_back(TScriptedProperties(m_states.back()));
  return *this;
}

TScriptedObject& TScriptedObject::SetMethod(const std::string& name,
                                            const TScriptedMethod& method) {
  m_methods[name] = method;
  return *this;
}

TScriptedObject& TScriptedObject::MakePlain() {
  m_isPlain = true;
  return *this;
}

const TScriptedMethod* TScriptedObject::FindMethod(const std::string& name) const {
  const auto method = m_methods.find(name);
  return method == m_methods.end() ? nullptr : &method->second;
}

TScriptedProperties TScriptedObject::Fetch() {
  ++m_fetches;
  return Look();
}

TScriptedProperties TScriptedObject::Look() const {
  const std::size_t index = m_fetches == 0 ? 0 : m_fetches - 1;
  return m_states[std::min(index, m_states.size() - 1)];
}

}  // namespace scripted
