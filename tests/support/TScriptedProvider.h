// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/contract/IProvider.h"
#include "tests/support/TScriptedWorld.h"

namespace scripted {

/// A provider of the scripted world.
class TScriptedProvider : public NZEPQEL20::IProvider {
 public:
  TScriptedProvider(TScriptedWorld& world, const TScriptedWorld::TProvider& provider,
                    const std::string& label)
      : m_world(world), m_provider(provider), m_label(label) {}

  std::string GetName() override;
  void EnumerateClasses(
      const boost::function<bool(boost::shared_ptr<NZEPQEL20::ICIMClass>)>& callback,
      const NZEPQEL20::TKeyMap& keys) override;

 private:
  TScriptedWorld& m_world;
  TScriptedWorld::TProvider m_provider;
  std::string m_label;
};

}  // namespace scripted
