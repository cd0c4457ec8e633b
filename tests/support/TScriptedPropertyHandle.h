// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/contract/ICIMProperty.h"
#include "tests/support/TScriptedWorld.h"

namespace scripted {

/// A property as a scripted instance hands it out.
class TScriptedPropertyHandle : public NZEPQEL20::ICIMProperty {
 public:
  TScriptedPropertyHandle(const TScriptedWorld& world, const std::string& path,
                          const TScriptedProperty& property)
      : m_world(world), m_path(path), m_property(property) {}

  NZEPQEL20::TCIMValue GetValue(const NZEPQEL20::TKeyMap& keys) override;
  std::string GetValueText() override;
  std::string GetName() override;

 private:
  const TScriptedWorld& m_world;
  std::string m_path;
  TScriptedProperty m_property;
};

}  // namespace scripted
