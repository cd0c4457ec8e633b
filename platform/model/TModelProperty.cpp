// SPDX-License-Identifier: Apache-2.0
#include "platform/model/TModelProperty.h"

#include <utility>

#include "platform/model/ValueText.h"

namespace NZEPQEL20 {

TModelProperty::TModelProperty(boost::shared_ptr<TModelNamespace> home, std::string className,
                               TCIMPropertyData property)
    : m_home(std::move(home)), m_className(std::move(className)), m_property(std::move(property)) {}

TCIMValue TModelProperty::GetValue(const TKeyMap& /*keys*/) {
  return m_home->Bind(m_property.value);
}

std::string TModelProperty::GetValueText() {
  const auto declaration = m_home->GetContext()->FindDeclaration(m_home->GetName(), m_className);
  const TCIMPropertyDeclaration* const declared =
      declaration ? declaration->FindProperty(m_property.name) : nullptr;
  const TCIMValue value = GetValue({});
  return declared != nullptr ? GetReadableText(*declared, value) : value.ToString(10);
}

std::string TModelProperty::GetName() {
  return m_property.name;
}

}  // namespace NZEPQEL20
