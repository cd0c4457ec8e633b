// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/make_shared.hpp>
#include <string>
#include <vector>

#include "platform/contract/TQELException.h"
#include "tests/support/TFaultPlan.h"
#include "tests/support/TScriptedPropertyHandle.h"
#include "tests/support/TScriptedWorld.h"

namespace scripted {

/// An instance of a scripted object, in the form `TBase`: a copy of its properties, and its
/// methods.
template <class TBase>
class TScriptedInstance : public TBase {
 public:
  using TKeyMap = NZEPQEL20::TKeyMap;
  using TCIMValue = NZEPQEL20::TCIMValue;

  TScriptedInstance(TScriptedWorld& world, const TObjectPtr& object,
                    const TScriptedProperties& properties)
      : m_world(world),
        m_object(object),
        m_path(object->GetPath().GetPath()),
        m_properties(properties) {}

  NZEPQEL20::TCIMReference GetObjectPath(const TKeyMap& /*keys*/) override {
    return TFaultPlan::Get().Enter("path", m_path) ? NZEPQEL20::TCIMReference()
                                                   : m_object->GetPath().Bind(m_world.GetRoot());
  }

  boost::shared_ptr<NZEPQEL20::ICIMProperty> GetProperty(const std::string& name,
                                                         const TKeyMap& /*keys*/) override {
    const bool isNull = TFaultPlan::Get().Enter("property", m_path + " " + name);
    const TScriptedProperty* property = isNull ? nullptr : FindProperty(m_properties, name);
    if (property == nullptr) {
      return {};
    }
    return boost::make_shared<TScriptedPropertyHandle>(m_world, m_path, *property);
  }

  void SetProperty(const std::string& name, const TCIMValue& value,
                   const TKeyMap& /*keys*/) override {
    const std::string text = name + "=" + value.ToString(10);
    if (TFaultPlan::Get().Enter("set", m_path + " " + text)) {
      return;
    }
    TScriptedProperty* property = FindProperty(m_properties, name);
    if (property == nullptr) {
      m_properties.push_back({name, value, std::nullopt});
    } else {
      *property = {property->name, value, std::nullopt};
    }
  }

  TCIMValue InvokeMethod(const std::string& method, TKeyMap& parameters,
                         const TKeyMap& /*context*/) override {
    const std::string call = m_path + " " + method + " " + Show(parameters);
    const bool isNull = TFaultPlan::Get().Enter("invoke", call);
    const TScriptedMethod* script = m_object->FindMethod(method);
    if (script == nullptr) {
      throw NZEPQEL20::TQELException(NZEPQEL20::TQELStatusCode::kNotSupported,
                                     call + ": no such method");
    }
    if (script->gate) {
      script->gate->Pass();
    }
    parameters.clear();
    if (!isNull) {
      for (const auto& entry : script->outParameters) {
        parameters[entry.first] = m_world.Bind(entry.second);
      }
    }
    return isNull ? TCIMValue() : TCIMValue::UInt32(0);
  }

  std::vector<std::string> GetPropertyNames(const TKeyMap& /*keys*/) override {
    std::vector<std::string> names;
    if (!TFaultPlan::Get().Enter("names", m_path)) {
      for (const TScriptedProperty& property : m_properties) {
        names.push_back(property.name);
      }
    }
    return names;
  }

  std::string GetNamespaceText(const TKeyMap& /*keys*/) override {
    return TFaultPlan::Get().Enter("nstext", m_path) ? "" : m_object->GetPath().GetNamespaceName();
  }

 private:
  TScriptedWorld& m_world;
  TObjectPtr m_object;
  std::string m_path;
  TScriptedProperties m_properties;
};

}  // namespace scripted
