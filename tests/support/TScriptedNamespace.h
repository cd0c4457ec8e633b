// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/contract/TCMPINamespace.h"
#include "tests/support/TScriptedWorld.h"

namespace scripted {

/// A namespace of the scripted world, under its label. Every label sees the same objects; what one
/// of them is not to see is said by the fault plan.
template <class TBase>
class TScriptedNamespaceOf : public TBase {
 public:
  TScriptedNamespaceOf(TScriptedWorld& world, const std::string& label)
      : m_world(world), m_label(label) {}

  boost::shared_ptr<NZEPQEL20::ICIMClass> FindClass(const std::string& className,
                                                    const NZEPQEL20::TKeyMap& keys) override;
  TInstancePtr GetInstance(const NZEPQEL20::TCIMReference& path, NZEPQEL20::TKeyMap keys) override;
  void EnumerateProviders(
      const boost::function<bool(boost::shared_ptr<NZEPQEL20::IProvider>)>& callback,
      const NZEPQEL20::TKeyMap& keys) override;

  const std::string& GetLabel() const { return m_label; }

 protected:
  TScriptedWorld& m_world;

 private:
  std::string m_label;
};

using TScriptedNamespace = TScriptedNamespaceOf<NZEPQEL20::ICIMNamespace>;

/// The one that is served through CMPI and leads to the "upcall" namespace.
class TScriptedPluginNamespace : public TScriptedNamespaceOf<NZEPQEL20::TCMPINamespace> {
 public:
  using TScriptedNamespaceOf::TScriptedNamespaceOf;

  TNamespacePtr GetUpcallNamespace() override;
};

}  // namespace scripted
