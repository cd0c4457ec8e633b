// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBrokerInstance.h"

#include "platform/cmpi/TBrokerPath.h"
#include "platform/cmpi/TBrokerString.h"
#include "platform/cmpi/THostLease.h"
#include "platform/cmpi/Values.h"

namespace NZEPQEL20::cmpi {

namespace {

CMPIData PropertyData(const TInstanceContent& content, const TCIMPropertyData& property) {
  CMPIData data = ToCMPI(property.value);
  if (!content.path.keys.empty() && FindNamed(content.path.keys, property.name) != nullptr) {
    data.state = static_cast<CMPIValueState>(data.state | CMPI_keyValue);
  }
  return data;
}

CMPIData GetProperty(const CMPIInstance* self, const char* name, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TInstanceContent& content = TBrokerInstance::From(self).GetContent();
    const auto* property = FindNamed(content.properties, RequireName(name, "property name"));
    if (property == nullptr) {
      throw TBrokerFault(CMPI_RC_ERR_NO_SUCH_PROPERTY, std::string("no property ") + name);
    }
    return PropertyData(content, *property);
  });
}

CMPIData GetPropertyAt(const CMPIInstance* self, CMPICount index, CMPIString** name,
                       CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TInstanceContent& content = TBrokerInstance::From(self).GetContent();
    if (index >= content.properties.size()) {
      throw TBrokerFault(CMPI_RC_ERR_NO_SUCH_PROPERTY, "index beyond the last property");
    }
    if (name != nullptr) *name = MakeString(content.properties[index].name);
    return PropertyData(content, content.properties[index]);
  });
}

CMPICount GetPropertyCount(const CMPIInstance* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    return static_cast<CMPICount>(TBrokerInstance::From(self).GetContent().properties.size());
  });
}

CMPIStatus SetProperty(const CMPIInstance* self, const char* name, const CMPIValue* value,
                       CMPIType type) noexcept {
  return AnswerStatus([&] {
    TBrokerInstance& instance = TBrokerInstance::From(self);
    const std::string property = ToUtf8(RequireName(name, "property name"));
    instance.ChangeContent().SetProperty(property, FromCMPI(value, type));
  });
}

CMPIStatus SetPropertyWithOrigin(const CMPIInstance* self, const char* name, const CMPIValue* value,
                                 const CMPIType type, const char*) noexcept {
  return SetProperty(self, name, value, type);
}

CMPIObjectPath* GetObjectPath(const CMPIInstance* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIObjectPath* {
    const TInstanceContent& content = TBrokerInstance::From(self).GetContent();
    const THostLease host(nullptr);
    return Make<TBrokerPath>(content.GetPath(host.Get()));
  });
}

CMPIStatus SetPropertyFilter(const CMPIInstance* self, const char** properties,
                             const char** keys) noexcept {
  return AnswerStatus([&] {
    TInstanceContent& content = TBrokerInstance::From(self).ChangeContent();
    if (properties == nullptr) {
      content.isFiltered = false;
      return;
    }
    // Callers of the first interface name the keys here, because they know of no others.
    std::vector<std::string> names = ReadNames(properties);
    for (std::string& key : ReadNames(keys)) names.push_back(std::move(key));
    const THostLease host(nullptr);
    content.SetFilter(std::move(names), host.Get());
  });
}

CMPIStatus SetObjectPath(const CMPIInstance* self, const CMPIObjectPath* path) noexcept {
  return AnswerStatus([&] {
    const TPathContent& given = TBrokerPath::From(path).GetContent();
    TInstanceContent& content = TBrokerInstance::From(self).ChangeContent();
    content.path = given;
    for (const TCIMPropertyData& key : given.keys) content.SetProperty(key.name, key.value);
  });
}

}  // namespace

TInstanceContent& TBrokerInstance::ChangeContent() {
  if (m_content.use_count() > 1) m_content = std::make_shared<TInstanceContent>(*m_content);
  return *m_content;
}

std::shared_ptr<const TCIMInstanceData> TBrokerInstance::GetData() const {
  const THostLease host(nullptr);
  return std::make_shared<TCIMInstanceData>(TInstanceContent(*m_content).Take(host.Get()));
}

std::string TBrokerInstance::Describe() const {
  std::string text = "instance of " + m_content->path.className + " {";
  for (const TCIMPropertyData& property : m_content->properties) {
    text += ' ' + property.name + " = ";
    text += property.value.IsNull() ? std::string("NULL") : property.value.ToString(10);
    text += ';';
  }
  return text + " }";
}

const CMPIInstanceFT TBrokerInstance::kTable = {
    kBrokerVersion,       Release,     Clone,         GetProperty,       GetPropertyAt,
    GetPropertyCount,     SetProperty, GetObjectPath, SetPropertyFilter, SetObjectPath,
    SetPropertyWithOrigin};

}  // namespace NZEPQEL20::cmpi
