// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/model/TModelTest.h"

#include "platform/contract/CMPINSPInstanceRegistry.h"
#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMProperty.h"

namespace NZEPQEL20 {

TModelTest::TModelTest() {
  TCIMClassDeclaration device;
  device.name = "T_Device";
  device.properties = {MakeProperty("ID", ECIMType::kString),
                       MakeProperty("Speed", ECIMType::kUInt32),
                       MakeProperty("State", ECIMType::kUInt16)};
  device.properties[2].valueMap = {"1", "2", "3..9"};
  device.properties[2].values = {"Bad", "OK", "Worn"};
  TCIMClassDeclaration disk = device;
  disk.name = "T_Disk";
  disk.superclass = "T_Device";
  TCIMClassDeclaration link;
  link.name = "T_Link";
  TCIMClassDeclaration far;
  far.name = "T_Far";
  for (const TCIMClassDeclaration& declaration : {device, disk, link}) {
    m_operations->AddClass("root/cimv2", declaration);
  }
  m_operations->AddClass("root/other", far);
  m_operations->AddInstance("root/cimv2", MakeInstance("T_Device", "a"));
  m_operations->AddInstance("root/cimv2", MakeInstance("T_Disk", "b"));
  m_operations->AddInstance("root/other", MakeInstance("T_Far", "f"));
}

TModelTest::~TModelTest() {
  CMPINSPInstanceRegistry::GetRegistrySingleton().ClearInstances();
}

TCIMPropertyDeclaration TModelTest::MakeProperty(const std::string& name, ECIMType type) {
  TCIMPropertyDeclaration property;
  property.name = name;
  property.type = type;
  return property;
}

TCIMInstanceData TModelTest::MakeInstance(const std::string& className, const std::string& id) {
  TCIMInstanceData data;
  data.path = TCIMReference("", className, {{"ID", id}});
  data.Set("ID", id);
  data.Set("State", TCIMValue::UInt16(2));
  return data;
}

std::vector<std::string> TModelTest::EnumerateIds(const std::string& className, int deep) {
  std::vector<std::string> ids;
  m_ns->FindClass(className, {})
      ->EnumerateInstances(
          [&ids](const boost::shared_ptr<ICIMInstance>& instance) {
            ids.push_back(instance->GetProperty("ID", {})->GetValueText());
            return true;
          },
          deep, {});
  return ids;
}

boost::shared_ptr<ICIMInstance> TModelTest::GetDevice(const std::string& id) {
  return m_ns->GetInstance(TCIMReference("", "T_Device", {{"ID", id}}), {});
}

}  // namespace NZEPQEL20
