// SPDX-License-Identifier: Apache-2.0
#include "platform/model/TModelContext.h"

#include <utility>

#include "platform/contract/TQELException.h"
#include "platform/model/TRoutingNamespace.h"

namespace NZEPQEL20 {

TModelContext::TModelContext(std::string id, std::shared_ptr<ICIMOperations> operations)
    : m_id(std::move(id)), m_operations(std::move(operations)) {}

std::shared_ptr<const TCIMClassDeclaration> TModelContext::GetDeclaration(
    const std::string& nameSpace, const std::string& className) {
  const std::string key = nameSpace + ":" + className;
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto known = m_declarations.find(key);
    if (known != m_declarations.end()) return known->second;
  }
  // Not under the lock: the answer may come from a server, and slowly.
  std::shared_ptr<const TCIMClassDeclaration> fetched =
      m_operations->GetClass(nameSpace, className);
  if (!fetched) {
    throw TQELException(TQELStatusCode::kNotFound, "class " + key + ": no declaration came back");
  }
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_declarations.emplace(key, std::move(fetched)).first->second;
}

std::shared_ptr<const TCIMClassDeclaration> TModelContext::FindDeclaration(
    const std::string& nameSpace, const std::string& className) noexcept {
  try {
    return GetDeclaration(nameSpace, className);
  } catch (...) {
    // Without a declaration values are shown as they are; that is no reason to fail.
    return nullptr;
  }
}

void TModelContext::SetRouter(const boost::shared_ptr<TRoutingNamespace>& router) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_router = router;
}

boost::shared_ptr<ICIMNamespace> TModelContext::Route(const TKeyMap& keys) const {
  boost::shared_ptr<TRoutingNamespace> router;
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    router = m_router.lock();
  }
  if (!router) {
    throw TQELException(TQELStatusCode::kNotFound, "provider context '" + GetContextId(keys) +
                                                       "': only '" + m_id + "' can be reached");
  }
  return router->Select(keys);
}

std::string GetContextId(const TKeyMap& keys) {
  const auto found = keys.find("nspID");
  return found == keys.end() ? std::string() : found->second.ToString(10);
}

}  // namespace NZEPQEL20
