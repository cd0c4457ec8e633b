// SPDX-License-Identifier: Apache-2.0
#include "platform/model/TModelInstance.h"

#include <boost/make_shared.hpp>
#include <utility>

#include "platform/model/DiagnosticMethods.h"
#include "platform/model/TModelProperty.h"

namespace NZEPQEL20 {

TModelInstance::TModelInstance(boost::shared_ptr<TModelNamespace> home,
                               std::shared_ptr<const TCIMInstanceData> data)
    : m_home(std::move(home)), m_data(std::move(data)) {}

std::shared_ptr<const TCIMClassDeclaration> TModelInstance::FindDeclaration() const {
  return m_home->GetContext()->FindDeclaration(m_home->GetName(), m_data->path.GetClassName());
}

TCIMReference TModelInstance::GetObjectPath(const TKeyMap& /*keys*/) {
  TCIMReference path = m_data->path.Bind(m_home);
  if (path.GetNamespaceName().empty()) path.SetNamespaceName(m_home->GetName());
  return path;
}

boost::shared_ptr<ICIMProperty> TModelInstance::GetProperty(const std::string& name,
                                                            const TKeyMap& /*keys*/) {
  const TCIMPropertyData* const held = m_data->Find(name);
  if (held != nullptr) {
    return boost::make_shared<TModelProperty>(m_home, m_data->path.GetClassName(), *held);
  }
  const auto declaration = FindDeclaration();
  const TCIMPropertyDeclaration* const declared =
      declaration ? declaration->FindProperty(name) : nullptr;
  if (declared == nullptr) return nullptr;
  return boost::make_shared<TModelProperty>(
      m_home, m_data->path.GetClassName(),
      TCIMPropertyData{declared->name, TCIMValue::Null(declared->type, declared->isArray)});
}

void TModelInstance::SetProperty(const std::string& name, const TCIMValue& value,
                                 const TKeyMap& /*keys*/) {
  auto changed = std::make_shared<TCIMInstanceData>(*m_data);
  changed->Set(name, value);
  m_data = std::move(changed);
}

TCIMValue TModelInstance::InvokeMethod(const std::string& method, TKeyMap& parameters,
                                       const TKeyMap& /*context*/) {
  // On a copy: a call that fails half-way must leave the caller's map alone.
  TKeyMap arguments = parameters;
  TModelContext& context = *m_home->GetContext();
  const TCIMReference path = GetObjectPath({});
  TCIMValue result = m_home->Bind(
      StartsDiagnostic(method) ? StartDiagnostic(context, path, method, arguments)
                               : context.GetOperations().InvokeMethod(path, method, arguments));
  for (auto& [name, value] : arguments) value = m_home->Bind(value);
  parameters.swap(arguments);
  return result;
}

std::vector<std::string> TModelInstance::GetPropertyNames(const TKeyMap& /*keys*/) {
  std::vector<std::string> names;
  for (const TCIMPropertyData& property : m_data->properties) names.push_back(property.name);
  return names;
}

std::string TModelInstance::GetNamespaceText(const TKeyMap& /*keys*/) {
  const std::string& own = m_data->path.GetNamespaceName();
  return own.empty() ? m_home->GetName() : own;
}

}  // namespace NZEPQEL20
