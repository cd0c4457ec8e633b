// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <thread>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMProperty.h"
#include "platform/contract/TCIMCopy.h"
#include "platform/model/TRepositoryNamespace.h"
#include "tests/platform/model/TModelTest.h"

namespace NZEPQEL20 {
namespace {

class RepositoryNamespaceTest : public TModelTest {
 protected:
  boost::shared_ptr<ICIMInstance> CopyDevice() {
    return TCIMCopy::CopyInstance(GetDevice("a"), m_repository);
  }
  std::size_t CountInstances(const std::string& className) {
    std::size_t count = 0;
    m_repository->FindClass(className, {})
        ->EnumerateInstances(
            [&count](const boost::shared_ptr<ICIMInstance>&) { return ++count != 0; }, 1, {});
    return count;
  }

  const boost::shared_ptr<TRepositoryNamespace> m_repository{new TRepositoryNamespace};
};

TEST_F(RepositoryNamespaceTest, KeepsValuesAndTheTextsTheyHad) {
  const auto copy = CopyDevice();
  EXPECT_EQ(copy->GetObjectPath({}).GetPath(), "root/cimv2:T_Device.ID=\"a\"");
  EXPECT_EQ(copy->GetNamespaceText({}), "root/cimv2");
  EXPECT_EQ(copy->GetPropertyNames({}), (std::vector<std::string>{"ID", "State"}));
  EXPECT_EQ(copy->GetProperty("state", {})->GetName(), "State");
  EXPECT_EQ(copy->GetProperty("state", {})->GetValue({}), TCIMValue::UInt16(2));
  EXPECT_EQ(copy->GetProperty("state", {})->GetValueText(), "OK");
  EXPECT_FALSE(copy->GetProperty("Speed", {}));
}

TEST_F(RepositoryNamespaceTest, ACopyIsApartFromItsSource) {
  const auto source = GetDevice("a");
  const auto copy = m_repository->CreateInstance(source);
  source->SetProperty("ID", "changed", {});
  EXPECT_EQ(copy->GetProperty("ID", {})->GetValueText(), "a");
  copy->SetProperty("id", "mine", {});
  copy->SetProperty("New", TCIMValue::UInt16(3), {});
  EXPECT_EQ(copy->GetProperty("ID", {})->GetValueText(), "mine");
  EXPECT_EQ(copy->GetProperty("New", {})->GetValueText(), "3");
  EXPECT_EQ(source->GetProperty("ID", {})->GetValueText(), "changed");
}

TEST_F(RepositoryNamespaceTest, FindsWhatItHoldsByPathAndClass) {
  const auto copy = CopyDevice();
  EXPECT_EQ(m_repository->GetInstance(copy->GetObjectPath({}), {}), copy);
  EXPECT_EQ(m_repository->FindClass("t_DEVICE", {})->GetName({}), "T_Device");
  EXPECT_EQ(m_repository->FindClass("T_Device", {})->GetNamespace({}), m_repository);
  EXPECT_EQ(CountInstances("T_Device"), 1U);
}

TEST_F(RepositoryNamespaceTest, NamesWhatItDoesNotHold) {
  const TCIMReference path("root/cimv2", "T_Device", {{"ID", "a"}});
  EXPECT_NE(WhatIsThrownBy([&] { m_repository->GetInstance(path, {}); }).find(path.GetPath()),
            std::string::npos);
  EXPECT_NE(WhatIsThrownBy([&] { m_repository->FindClass("T_Device", {}); }).find("T_Device"),
            std::string::npos);
  EXPECT_NE(WhatIsThrownBy([&] { m_repository->CreateInstance(nullptr); }), "");
}

TEST_F(RepositoryNamespaceTest, TheSamePathReplacesAndIsStillTakenEachTime) {
  CopyDevice();
  const auto second = CopyDevice();
  EXPECT_EQ(CountInstances("T_Device"), 1U);
  EXPECT_EQ(m_repository->GetInstance(second->GetObjectPath({}), {}), second);
  EXPECT_EQ(m_repository->TakeRecent().size(), 2U);
}

TEST_F(RepositoryNamespaceTest, HandsOutWhatWasCopiedSinceTheLastTimeInOrder) {
  const auto first = CopyDevice();
  const auto second = m_repository->CreateInstance(
      m_ns->GetInstance(TCIMReference("", "T_Disk", {{"ID", "b"}}), {}));
  EXPECT_EQ(m_repository->TakeRecent(),
            (std::vector<boost::shared_ptr<ICIMInstance>>{first, second}));
  EXPECT_TRUE(m_repository->TakeRecent().empty());
  EXPECT_EQ(CountInstances("T_Disk"), 1U);
}

TEST_F(RepositoryNamespaceTest, RefusesMethodsAndLeavesTheParameters) {
  const auto copy = CopyDevice();
  TKeyMap parameters{{"In", "x"}};
  const std::string what = WhatIsThrownBy([&] { copy->InvokeMethod("Run", parameters, {}); });
  EXPECT_NE(what.find("Run"), std::string::npos) << what;
  EXPECT_EQ(parameters, (TKeyMap{{"In", "x"}}));
}

TEST_F(RepositoryNamespaceTest, TakesAndServesCopiesFromSeveralThreads) {
  constexpr unsigned int kEach = 50;
  std::vector<std::thread> threads;
  for (unsigned int t = 0; t < 3; ++t) {
    threads.emplace_back([this, t] {
      for (unsigned int i = 0; i < kEach; ++i) {
        const auto home = m_ns->GetSibling("n" + std::to_string(t));
        TCIMInstanceData data = MakeInstance("T_Device", std::to_string(i));
        const std::string name = "o" + std::to_string(t) + std::to_string(i);
        m_operations->AddInstance(name, data);
        m_repository->CreateInstance(
            home->GetInstance(TCIMReference(name, "T_Device", {{"ID", std::to_string(i)}}), {}));
        m_repository->GetInstances("T_Device");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(m_repository->GetInstances("T_Device").size(), 3U * kEach);
  EXPECT_EQ(m_repository->TakeRecent().size(), 3U * kEach);
}

}  // namespace
}  // namespace NZEPQEL20
