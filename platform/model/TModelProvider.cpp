// SPDX-License-Identifier: Apache-2.0
#include "platform/model/TModelProvider.h"

#include <boost/make_shared.hpp>
#include <utility>

#include "platform/model/TModelClass.h"

namespace NZEPQEL20 {

TModelProvider::TModelProvider(ICIMOperations::TProviderInfo info,
                               boost::shared_ptr<TModelNamespace> home)
    : m_info(std::move(info)), m_home(std::move(home)) {}

std::string TModelProvider::GetName() {
  return m_info.name;
}

void TModelProvider::EnumerateClasses(
    const boost::function<bool(boost::shared_ptr<ICIMClass>)>& callback, const TKeyMap& /*keys*/) {
  // Without asking for declarations: one class that nobody declared must not hide the others.
  for (const std::string& className : m_info.classNames) {
    if (!callback(boost::make_shared<TModelClass>(m_home, className))) return;
  }
}

}  // namespace NZEPQEL20
