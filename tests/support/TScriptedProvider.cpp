// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TScriptedProvider.h"

#include <boost/make_shared.hpp>

#include "tests/support/TFaultPlan.h"
#include "tests/support/TScriptedClass.h"

namespace scripted {

std::string TScriptedProvider::GetName() {
  return TFaultPlan::Get().Enter("providername", m_provider.name) ? "" : m_provider.name;
}

void TScriptedProvider::EnumerateClasses(
    const boost::function<bool(boost::shared_ptr<NZEPQEL20::ICIMClass>)>& callback,
    const NZEPQEL20::TKeyMap& /*keys*/) {
  bool isGoingOn = !TFaultPlan::Get().Enter("classes", m_provider.name) || callback({});
  for (const std::string& className : m_provider.classNames) {
    isGoingOn =
        isGoingOn && callback(boost::make_shared<TScriptedClass>(m_world, className, m_label));
  }
}

}  // namespace scripted
