// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/platform/model/TModelTest.h"

namespace NZEPQEL20 {
namespace {

using FakeOperationsTest = TModelTest;

unsigned int GetStatusOf(const std::function<void()>& act) {
  try {
    act();
  } catch (const TQELException& e) {
    return e.GetCIMStatus();
  }
  return 0;
}

TEST_F(FakeOperationsTest, FindsSubclassesAndTheirInstances) {
  using TNames = std::vector<std::string>;
  EXPECT_EQ(m_operations->EnumerateClassNames("root/cimv2", "T_Device", false), TNames{"T_Disk"});
  EXPECT_EQ(m_operations->EnumerateClassNames("root/cimv2", "", false),
            (TNames{"T_Device", "T_Link"}));
  EXPECT_EQ(m_operations->EnumerateClassNames("root/cimv2", "", true).size(), 3U);
  EXPECT_EQ(m_operations->EnumerateInstanceNames("root/cimv2", "T_Device").size(), 2U);
  EXPECT_EQ(m_operations->EnumerateInstanceNames("root/cimv2", "T_Disk").size(), 1U);
  EXPECT_EQ(m_operations->GetNamespaces(), (TNames{"root/cimv2", "root/other"}));
}

TEST_F(FakeOperationsTest, CreatesChangesAndDeletes) {
  TCIMInstanceData made = MakeInstance("T_Device", "n");
  made.path = m_operations->CreateInstance("root/cimv2", made);
  EXPECT_EQ(m_operations->GetInstance(made.path).Find("State")->value, TCIMValue::UInt16(2));
  made.Set("State", TCIMValue::UInt16(1));
  m_operations->ModifyInstance(made);
  EXPECT_EQ(m_operations->GetInstance(made.path).Find("State")->value, TCIMValue::UInt16(1));
  m_operations->DeleteInstance(made.path);
  EXPECT_EQ(GetStatusOf([&] { m_operations->GetInstance(made.path); }), 6U);
}

TEST_F(FakeOperationsTest, RefusesWithTheStatusOfTheReason) {
  const TCIMReference path("root/cimv2", "T_Device", {{"ID", "a"}});
  TKeyMap parameters;
  const ICIMOperations::TInstanceSink sink = [](TCIMInstanceData&&) { return true; };
  EXPECT_EQ(GetStatusOf([&] { m_operations->GetClass("root/cimv2", "T_None"); }), 5U);
  EXPECT_EQ(GetStatusOf([&] { m_operations->InvokeMethod(path, "Run", parameters); }), 7U);
  EXPECT_EQ(GetStatusOf([&] { m_operations->Associators(path, {}, sink); }), 7U);
  EXPECT_EQ(GetStatusOf([&] { m_operations->AssociatorNames(path, {}); }), 7U);
  EXPECT_EQ(GetStatusOf([&] { m_operations->References(path, {}, sink); }), 7U);
  EXPECT_EQ(GetStatusOf([&] { m_operations->ReferenceNames(path, {}); }), 7U);
}

TEST_F(FakeOperationsTest, NotesEveryCallAndFailsOnRequest) {
  m_operations->Fail("GetClass", "root/cimv2", TQELException(TQELStatusCode::kFailed, "down", 1));
  EXPECT_EQ(WhatIsThrownBy([this] { m_operations->GetClass("root/cimv2", "T_Device"); }), "down");
  EXPECT_EQ(WhatIsThrownBy([this] { m_operations->GetClass("root/other", "T_Far"); }), "");
  EXPECT_EQ(m_operations->GetCalls(), (std::vector<std::string>{"GetClass root/cimv2:T_Device",
                                                                "GetClass root/other:T_Far"}));
  EXPECT_EQ(m_operations->CountCalls("GetClass"), 2U);
}

}  // namespace
}  // namespace NZEPQEL20
