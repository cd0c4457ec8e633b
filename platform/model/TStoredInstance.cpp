// SPDX-License-Identifier: Apache-2.0
#include "platform/model/TStoredInstance.h"

#include <boost/make_shared.hpp>
#include <utility>

#include "platform/contract/ICIMProperty.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {

class TStoredInstance::TProperty final : public ICIMProperty {
 public:
  explicit TProperty(TStored stored) : m_stored(std::move(stored)) {}

  TCIMValue GetValue(const TKeyMap& /*keys*/) override { return m_stored.value; }
  std::string GetValueText() override { return m_stored.text; }
  std::string GetName() override { return m_stored.name; }

 private:
  const TStored m_stored;
};

TStoredInstance::TStoredInstance(ICIMInstance& source) : m_path(source.GetObjectPath({})) {
  for (const std::string& name : source.GetPropertyNames({})) {
    const boost::shared_ptr<ICIMProperty> property = source.GetProperty(name, {});
    if (!property) continue;
    m_properties.push_back({name, property->GetValue({}), property->GetValueText()});
  }
}

TCIMReference TStoredInstance::GetObjectPath(const TKeyMap& /*keys*/) {
  return m_path;
}

boost::shared_ptr<ICIMProperty> TStoredInstance::GetProperty(const std::string& name,
                                                             const TKeyMap& /*keys*/) {
  for (const TStored& stored : m_properties) {
    if (IsSameName(stored.name, name)) return boost::make_shared<TProperty>(stored);
  }
  return nullptr;
}

void TStoredInstance::SetProperty(const std::string& name, const TCIMValue& value,
                                  const TKeyMap& /*keys*/) {
  for (TStored& stored : m_properties) {
    if (!IsSameName(stored.name, name)) continue;
    stored.value = value;
    stored.text = value.ToString(10);
    return;
  }
  m_properties.push_back({name, value, value.ToString(10)});
}

TCIMValue TStoredInstance::InvokeMethod(const std::string& method, TKeyMap& /*parameters*/,
                                        const TKeyMap& /*context*/) {
  throw TQELException(TQELStatusCode::kNotSupported,
                      "InvokeMethod " + method + " on " + m_path.GetPath() +
                          ": this is a stored copy, no provider stands behind it");
}

std::vector<std::string> TStoredInstance::GetPropertyNames(const TKeyMap& /*keys*/) {
  std::vector<std::string> names;
  for (const TStored& stored : m_properties) names.push_back(stored.name);
  return names;
}

std::string TStoredInstance::GetNamespaceText(const TKeyMap& /*keys*/) {
  return m_path.GetNamespaceName();
}

}  // namespace NZEPQEL20
