// SPDX-License-Identifier: Apache-2.0
#include "platform/model/TRoutingNamespace.h"

#include <utility>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMInstance.h"
#include "platform/contract/TQELException.h"
#include "platform/model/TModelContext.h"

namespace NZEPQEL20 {

void TRoutingNamespace::AddContext(const std::string& id, TFactory factory) {
  m_factories[id] = std::move(factory);
}

boost::shared_ptr<ICIMNamespace> TRoutingNamespace::Select(const TKeyMap& keys) const {
  const std::string id = GetContextId(keys);
  const std::string place = id.empty() || id == "plugin" ? "cmpi" : id;
  const auto found = m_factories.find(place);
  boost::shared_ptr<ICIMNamespace> chosen;
  if (found != m_factories.end()) chosen = found->second(keys);
  if (!chosen) {
    throw TQELException(TQELStatusCode::kNotFound,
                        "provider context '" + place + "': none of that name is configured");
  }
  return chosen;
}

boost::shared_ptr<ICIMClass> TRoutingNamespace::FindClass(const std::string& className,
                                                          const TKeyMap& keys) {
  return Select(keys)->FindClass(className, {});
}

boost::shared_ptr<ICIMInstance> TRoutingNamespace::GetInstance(const TCIMReference& path,
                                                               TKeyMap keys) {
  return Select(keys)->GetInstance(path, {});
}

void TRoutingNamespace::EnumerateProviders(
    const boost::function<bool(boost::shared_ptr<IProvider>)>& callback, const TKeyMap& keys) {
  Select(keys)->EnumerateProviders(callback, {});
}

}  // namespace NZEPQEL20
