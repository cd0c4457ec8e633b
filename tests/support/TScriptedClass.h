// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/contract/ICIMClass.h"
#include "tests/support/TScriptedWorld.h"

namespace scripted {

/// A class of the scripted world, as seen through the namespace with the given label.
class TScriptedClass : public NZEPQEL20::ICIMClass {
 public:
  TScriptedClass(TScriptedWorld& world, const std::string& name, const std::string& label)
      : m_world(world), m_name(name), m_label(label) {}

  std::string GetName(const NZEPQEL20::TKeyMap& keys) override;
  /// With the nspID "plugin" the "plugin" namespace, else the one with the class's label.
  TNamespacePtr GetNamespace(const NZEPQEL20::TKeyMap& keys) override;
  void EnumerateInstances(const boost::function<bool(TInstancePtr)>& callback, int deep,
                          const NZEPQEL20::TKeyMap& keys) override;

 private:
  TScriptedWorld& m_world;
  std::string m_name;
  std::string m_label;
};

}  // namespace scripted
