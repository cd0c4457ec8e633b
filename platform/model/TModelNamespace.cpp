// SPDX-License-Identifier: Apache-2.0
#include "platform/model/TModelNamespace.h"

#include <boost/make_shared.hpp>
#include <utility>
#include <vector>

#include "platform/contract/CMPINSPInstanceRegistry.h"
#include "platform/model/EndedJobs.h"
#include "platform/model/TModelClass.h"
#include "platform/model/TModelInstance.h"
#include "platform/model/TModelProvider.h"
#include "platform/model/TUpcallNamespace.h"

namespace NZEPQEL20 {

TModelNamespace::TModelNamespace(std::shared_ptr<TModelContext> context, std::string name)
    : m_context(std::move(context)), m_name(std::move(name)) {}

boost::shared_ptr<ICIMNamespace> TModelNamespace::Select(const TKeyMap& keys) {
  const std::string id = GetContextId(keys);
  if (id == m_context->GetId()) {
    const auto nsp = keys.find("nsp");
    return nsp == keys.end() ? GetSibling(m_name) : GetSibling(nsp->second.ToString(10));
  }
  if (id.empty() || id == "plugin") return shared_from_this();
  return m_context->Route(keys);
}

boost::shared_ptr<TModelNamespace> TModelNamespace::GetSibling(const std::string& name) {
  if (name.empty() || name == m_name) return shared_from_this();
  return boost::make_shared<TModelNamespace>(m_context, name);
}

boost::shared_ptr<ICIMClass> TModelNamespace::FindClass(const std::string& className,
                                                        const TKeyMap& keys) {
  const boost::shared_ptr<ICIMNamespace> chosen = Select(keys);
  if (chosen.get() != this) return chosen->FindClass(className, {});
  const auto declaration = m_context->GetDeclaration(m_name, className);
  return boost::make_shared<TModelClass>(shared_from_this(), declaration->name);
}

boost::shared_ptr<ICIMInstance> TModelNamespace::GetInstance(const TCIMReference& path,
                                                             TKeyMap keys) {
  const boost::shared_ptr<ICIMNamespace> chosen = Select(keys);
  if (chosen.get() != this) return chosen->GetInstance(path, {});
  TCIMReference wanted = path;
  if (wanted.GetNamespaceName().empty()) wanted.SetNamespaceName(m_name);
  TCIMInstanceData fetched = m_context->GetOperations().GetInstance(wanted);
  CompleteEndedJob(*m_context, wanted.GetNamespaceName(), fetched);
  auto data = std::make_shared<const TCIMInstanceData>(std::move(fetched));
  CMPINSPInstanceRegistry::GetRegistrySingleton().Register(data);
  return boost::make_shared<TModelInstance>(GetSibling(wanted.GetNamespaceName()), std::move(data));
}

void TModelNamespace::EnumerateProviders(
    const boost::function<bool(boost::shared_ptr<IProvider>)>& callback, const TKeyMap& keys) {
  const boost::shared_ptr<ICIMNamespace> chosen = Select(keys);
  if (chosen.get() != this) return chosen->EnumerateProviders(callback, {});
  for (ICIMOperations::TProviderInfo& info : m_context->GetOperations().GetProviders()) {
    const auto home = GetSibling(info.nameSpace);
    if (!callback(boost::make_shared<TModelProvider>(std::move(info), home))) return;
  }
}

boost::shared_ptr<ICIMNamespace> TModelNamespace::GetUpcallNamespace() {
  return boost::make_shared<TUpcallNamespace>(shared_from_this());
}

TCIMReference TModelNamespace::BindReference(const TCIMReference& path) {
  TCIMReference bound = path.Bind(GetSibling(path.GetNamespaceName()));
  if (bound.GetNamespaceName().empty() && !bound.IsNull()) bound.SetNamespaceName(m_name);
  return bound;
}

TCIMValue TModelNamespace::Bind(const TCIMValue& value) {
  if (value.GetType() != ECIMType::kReference || value.IsNull()) return value;
  if (!value.IsArray()) return TCIMValue(BindReference(static_cast<TCIMReference>(value)));
  std::vector<TCIMValue> bound;
  for (const TCIMValue& element : static_cast<std::vector<TCIMValue>>(value)) {
    bound.push_back(Bind(element));
  }
  return TCIMValue::Array(ECIMType::kReference, std::move(bound));
}

}  // namespace NZEPQEL20
