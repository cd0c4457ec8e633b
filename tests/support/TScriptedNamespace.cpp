// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TScriptedNamespace.h"

#include <boost/make_shared.hpp>

#include "tests/support/TFaultPlan.h"
#include "tests/support/TScriptedClass.h"
#include "tests/support/TScriptedProvider.h"

namespace scripted {

using NZEPQEL20::TCIMReference;
using NZEPQEL20::TKeyMap;

template <class TBase>
boost::shared_ptr<NZEPQEL20::ICIMClass> TScriptedNamespaceOf<TBase>::FindClass(
    const std::string& className, const TKeyMap& keys) {
  const std::string call = m_label + " " + className + " " + scripted::Show(keys);
  if (TFaultPlan::Get().Enter("find", call) || !m_world.HasClass(className)) {
    return {};
  }
  return boost::make_shared<TScriptedClass>(m_world, className, m_label);
}

template <class TBase>
TInstancePtr TScriptedNamespaceOf<TBase>::GetInstance(const TCIMReference& path, TKeyMap keys) {
  const std::string call = m_label + " " + path.GetPath() + " " + scripted::Show(keys);
  const bool isNull = TFaultPlan::Get().Enter("fetch", call);
  const TObjectPtr object = isNull ? nullptr : m_world.Find(path);
  return object ? m_world.FetchInstance(object) : TInstancePtr();
}

template <class TBase>
void TScriptedNamespaceOf<TBase>::EnumerateProviders(
    const boost::function<bool(boost::shared_ptr<NZEPQEL20::IProvider>)>& callback,
    const TKeyMap& keys) {
  if (TFaultPlan::Get().Enter("providers", m_label + " " + scripted::Show(keys))) {
    callback({});
    return;
  }
  for (const TScriptedWorld::TProvider& provider : m_world.GetProviders()) {
    if (!callback(boost::make_shared<TScriptedProvider>(m_world, provider, m_label))) {
      return;
    }
  }
}

template class TScriptedNamespaceOf<NZEPQEL20::ICIMNamespace>;
template class TScriptedNamespaceOf<NZEPQEL20::TCMPINamespace>;

TNamespacePtr TScriptedPluginNamespace::GetUpcallNamespace() {
  const bool isNull = TFaultPlan::Get().Enter("upcall", GetLabel());
  return isNull ? TNamespacePtr() : m_world.GetNamespace("upcall");
}

}  // namespace scripted
