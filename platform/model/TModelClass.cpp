// SPDX-License-Identifier: Apache-2.0
#include "platform/model/TModelClass.h"

#include <boost/make_shared.hpp>
#include <memory>
#include <optional>
#include <utility>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TQELException.h"
#include "platform/model/TModelInstance.h"

namespace NZEPQEL20 {

TModelClass::TModelClass(const boost::shared_ptr<TModelNamespace>& home, std::string name)
    : TModelClass(home, home, {home->GetName()}, std::move(name)) {}

TModelClass::TModelClass(boost::shared_ptr<IRoutedNamespace> home,
                         boost::shared_ptr<TModelNamespace> connection,
                         std::vector<std::string> nameSpaces, std::string name)
    : m_home(std::move(home)),
      m_connection(std::move(connection)),
      m_nameSpaces(std::move(nameSpaces)),
      m_name(std::move(name)) {}

std::string TModelClass::GetName(const TKeyMap& /*keys*/) {
  return m_name;
}

boost::shared_ptr<ICIMNamespace> TModelClass::GetNamespace(const TKeyMap& keys) {
  return m_home->Select(keys);
}

bool TModelClass::EnumerateIn(
    const std::string& nameSpace,
    const boost::function<bool(boost::shared_ptr<ICIMInstance>)>& callback, bool isDeep) {
  const boost::shared_ptr<TModelNamespace> place = m_connection->GetSibling(nameSpace);
  bool wantsMore = true;
  m_connection->GetContext()->GetOperations().EnumerateInstances(
      nameSpace, m_name, [this, &place, &callback, isDeep, &wantsMore](TCIMInstanceData&& found) {
        if (!isDeep && !IsSameName(found.path.GetClassName(), m_name)) return true;
        const auto own = place->GetSibling(found.path.GetNamespaceName());
        wantsMore = callback(boost::make_shared<TModelInstance>(
            own, std::make_shared<const TCIMInstanceData>(std::move(found))));
        return wantsMore;
      });
  return wantsMore;
}

void TModelClass::EnumerateInstances(
    const boost::function<bool(boost::shared_ptr<ICIMInstance>)>& callback, int deep,
    const TKeyMap& keys) {
  const boost::shared_ptr<ICIMNamespace> own = m_home->Select({});
  const boost::shared_ptr<ICIMNamespace> chosen = m_home->Select(keys);
  if (chosen != own) {
    const boost::shared_ptr<ICIMClass> other = chosen->FindClass(m_name, {});
    if (other) other->EnumerateInstances(callback, deep, {});
    return;
  }
  std::optional<TQELException> failed;
  bool hasSucceeded = false;
  bool isInCallback = false;
  const auto marked = [&](const boost::shared_ptr<ICIMInstance>& instance) {
    isInCallback = true;
    const bool wantsMore = callback(instance);
    isInCallback = false;
    return wantsMore;
  };
  for (const std::string& nameSpace : m_nameSpaces) {
    try {
      if (!EnumerateIn(nameSpace, marked, deep != 0)) return;
      hasSucceeded = true;
    } catch (const TQELException& failure) {
      // One namespace that fails costs nothing of the others; what the caller throws is its own.
      if (isInCallback) throw;
      if (!failed) failed = failure;
    }
  }
  if (failed && !hasSucceeded) throw TQELException(*failed);
}

}  // namespace NZEPQEL20
