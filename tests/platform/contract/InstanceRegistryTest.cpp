// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

#include "platform/contract/CMPINSPInstanceRegistry.h"

namespace NZEPQEL20 {
namespace {

class InstanceRegistryTest : public testing::Test {
 protected:
  void TearDown() override { m_registry.ClearInstances(); }

  CMPINSPInstanceRegistry& m_registry = CMPINSPInstanceRegistry::GetRegistrySingleton();
};

TEST_F(InstanceRegistryTest, KeepsInstancesAliveUntilCleared) {
  auto instance = std::make_shared<int>(1);
  const std::weak_ptr<int> watch = instance;
  m_registry.Register(std::move(instance));
  EXPECT_EQ(m_registry.GetCount(), 1U);
  EXPECT_FALSE(watch.expired());
  m_registry.ClearInstances();
  EXPECT_EQ(m_registry.GetCount(), 0U);
  EXPECT_TRUE(watch.expired());
}

TEST_F(InstanceRegistryTest, LeavesWhatHasAnotherOwner) {
  const auto instance = std::make_shared<int>(1);
  m_registry.Register(instance);
  m_registry.ClearInstances();
  EXPECT_EQ(instance.use_count(), 1);
}

TEST_F(InstanceRegistryTest, IsOnePerProcess) {
  EXPECT_EQ(&CMPINSPInstanceRegistry::GetRegistrySingleton(), &m_registry);
}

TEST_F(InstanceRegistryTest, AnInstanceThatGoesMayRegisterAnother) {
  m_registry.Register(std::shared_ptr<int>(new int(1), [this](const int* instance) {
    delete instance;
    m_registry.Register(std::make_shared<int>(2));
  }));
  m_registry.ClearInstances();
  EXPECT_EQ(m_registry.GetCount(), 1U);
}

TEST_F(InstanceRegistryTest, TakesInstancesFromSeveralThreadsWhileItIsCleared) {
  constexpr unsigned int kThreads = 4;
  constexpr unsigned int kEach = 500;
  std::vector<std::weak_ptr<int>> watches(std::size_t{kThreads} * kEach);
  std::vector<std::thread> threads;
  for (unsigned int t = 0; t < kThreads; ++t) {
    threads.emplace_back([this, t, &watches] {
      for (unsigned int i = 0; i < kEach; ++i) {
        auto instance = std::make_shared<int>(1);
        watches[std::size_t{t} * kEach + i] = instance;
        m_registry.Register(std::move(instance));
        if (i % 100 == 99) m_registry.ClearInstances();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::size_t alive = 0;
  for (const auto& watch : watches) alive += watch.expired() ? 0 : 1;
  EXPECT_EQ(alive, m_registry.GetCount());
  m_registry.ClearInstances();
  for (const auto& watch : watches) EXPECT_TRUE(watch.expired());
}

}  // namespace
}  // namespace NZEPQEL20
