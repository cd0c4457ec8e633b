// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/pointer_cast.hpp>
#include <memory>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMProperty.h"
#include "platform/model/TModelInstance.h"
#include "tests/platform/model/TModelTest.h"

namespace NZEPQEL20 {
namespace {

using ModelInstanceTest = TModelTest;
using TTexts = std::vector<std::string>;

TCIMReference FarPath() {
  return {"root/other", "T_Far", {{"ID", "f"}}};
}

TEST_F(ModelInstanceTest, IsTheFormOnWhichMethodsCanBeInvoked) {
  EXPECT_TRUE(boost::dynamic_pointer_cast<TCMPIInstance>(GetDevice("a")));
}

TEST_F(ModelInstanceTest, FindsPropertiesWithoutCaseAndSpelledByTheInstance) {
  const auto property = GetDevice("a")->GetProperty("STATE", {});
  EXPECT_EQ(property->GetName(), "State");
  EXPECT_EQ(property->GetValue({}), TCIMValue::UInt16(2));
  EXPECT_EQ(property->GetValueText(), "OK");
  EXPECT_EQ(GetDevice("a")->GetPropertyNames({}), (TTexts{"ID", "State"}));
}

TEST_F(ModelInstanceTest, ADeclaredPropertyThatWasLeftOutIsNullOfItsType) {
  const auto property = GetDevice("a")->GetProperty("speed", {});
  ASSERT_TRUE(property);
  EXPECT_EQ(property->GetValue({}), TCIMValue::Null(ECIMType::kUInt32));
  EXPECT_EQ(property->GetValueText(), "");
  EXPECT_FALSE(GetDevice("a")->GetProperty("Colour", {}));
}

TEST_F(ModelInstanceTest, IsReadableWithoutADeclaration) {
  m_operations->AddInstance("root/cimv2", MakeInstance("T_Undeclared", "u"));
  const auto instance = m_ns->GetInstance(TCIMReference("", "T_Undeclared", {{"ID", "u"}}), {});
  EXPECT_EQ(instance->GetProperty("State", {})->GetValueText(), "2");
  EXPECT_FALSE(instance->GetProperty("Speed", {}));
}

TEST_F(ModelInstanceTest, ChangesItsOwnCopyOnly) {
  const auto instance = GetDevice("a");
  const auto before = instance->GetProperty("State", {});
  instance->SetProperty("state", TCIMValue::UInt16(1), {});
  instance->SetProperty("New", "x", {});
  EXPECT_EQ(instance->GetProperty("State", {})->GetValueText(), "Bad");
  EXPECT_EQ(instance->GetPropertyNames({}), (TTexts{"ID", "State", "New"}));
  EXPECT_EQ(before->GetValueText(), "OK");
  EXPECT_EQ(GetDevice("a")->GetProperty("State", {})->GetValueText(), "OK");
  EXPECT_EQ(m_operations->CountCalls("ModifyInstance"), 0U);
}

TEST_F(ModelInstanceTest, ReferencesLeadToTheirClassesWhereverTheyLie) {
  TCIMInstanceData link = MakeInstance("T_Link", "l");
  link.Set("Far", FarPath());
  link.Set("Near", TCIMReference("", "T_Disk", {{"ID", "b"}}));
  link.Set("All", TCIMValue::Array(ECIMType::kReference, {TCIMValue(FarPath()), TCIMValue()}));
  link.Set("None", TCIMValue::Null(ECIMType::kReference));
  m_operations->AddInstance("root/cimv2", link);
  const auto instance = m_ns->GetInstance(TCIMReference("", "T_Link", {{"ID", "l"}}), {});
  const auto read = [&instance](const char* name) {
    return instance->GetProperty(name, {})->GetValue({});
  };
  const auto far = static_cast<TCIMReference>(read("Far"));
  EXPECT_EQ(far, FarPath());
  EXPECT_EQ(far.GetClass()->GetName({}), "T_Far");
  const auto near = static_cast<TCIMReference>(read("Near"));
  EXPECT_EQ(near.GetPath(), "root/cimv2:T_Disk.ID=\"b\"");
  EXPECT_EQ(near.GetClass()->GetNamespace({})->GetInstance(near, {})->GetObjectPath({}), near);
  const auto all = static_cast<std::vector<TCIMValue>>(read("All"));
  EXPECT_EQ(static_cast<TCIMReference>(all.at(0)).GetClass()->GetName({}), "T_Far");
  EXPECT_TRUE(all.at(1).IsNull());
  EXPECT_TRUE(read("None").IsNull());
  EXPECT_EQ(instance->GetObjectPath({}).GetClass()->GetName({}), "T_Link");
}

TEST_F(ModelInstanceTest, AMethodLeavesExactlyItsOutParametersBoundToTheirNamespace) {
  m_operations->SetMethod([](const TCIMReference&, const std::string&, TKeyMap& parameters) {
    parameters = {{"Job", TCIMValue(FarPath())}};
    return TCIMValue::UInt32(4096);
  });
  TKeyMap parameters{{"ManagedElement", "x"}};
  EXPECT_EQ(GetDevice("a")->InvokeMethod("RunDiagnostic", parameters, {}), TCIMValue::UInt32(4096));
  EXPECT_EQ(m_operations->GetCalls().back(), "InvokeMethod root/cimv2:T_Device.ID=\"a\"");
  ASSERT_EQ(parameters, (TKeyMap{{"Job", TCIMValue(FarPath())}}));
  EXPECT_EQ(static_cast<TCIMReference>(parameters["Job"]).GetClass()->GetName({}), "T_Far");
}

TEST_F(ModelInstanceTest, AMethodThatFailsLeavesTheParametersAsTheyWere) {
  m_operations->SetMethod([](const TCIMReference&, const std::string&, TKeyMap& parameters) {
    parameters.clear();
    throw TQELException(TQELStatusCode::kCIMError, "busy", 1);
    return TCIMValue();
  });
  const TKeyMap before{{"ManagedElement", "x"}};
  TKeyMap parameters = before;
  const auto device = GetDevice("a");
  EXPECT_EQ(WhatIsThrownBy([&] { device->InvokeMethod("Run", parameters, {}); }), "busy");
  EXPECT_EQ(parameters, before);
}

}  // namespace
}  // namespace NZEPQEL20
