// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>
#include <stdexcept>

#include "platform/contract/CMPINSPInstanceRegistry.h"
#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMProperty.h"
#include "platform/contract/IProvider.h"
#include "platform/model/TModelNamespace.h"
#include "tests/platform/model/TModelTest.h"

namespace NZEPQEL20 {
namespace {

using ModelNamespaceTest = TModelTest;
using TTexts = std::vector<std::string>;

TEST_F(ModelNamespaceTest, FindsAClassByItsDeclarationAndEnumeratesNothing) {
  EXPECT_EQ(m_ns->FindClass("t_device", {})->GetName({}), "T_Device");
  EXPECT_EQ(m_operations->GetCalls(), TTexts{"GetClass root/cimv2:t_device"});
}

TEST_F(ModelNamespaceTest, NamesAnUnknownClass) {
  const std::string what = WhatIsThrownBy([this] { m_ns->FindClass("T_None", {}); });
  EXPECT_NE(what.find("T_None"), std::string::npos) << what;
}

TEST_F(ModelNamespaceTest, AClassRemembersWhereItWasFound) {
  const auto found = m_ns->FindClass("T_Device", {});
  EXPECT_EQ(found->GetNamespace({}), m_ns);
  EXPECT_EQ(found->GetNamespace({{"nspID", "cmpi"}}), m_ns);
  EXPECT_TRUE(
      boost::dynamic_pointer_cast<TCMPINamespace>(found->GetNamespace({{"nspID", "plugin"}})));
}

TEST_F(ModelNamespaceTest, NamesAContextThatNothingLeadsTo) {
  const auto found = m_ns->FindClass("T_Device", {});
  const std::string what = WhatIsThrownBy([&found] {
    found->GetNamespace({{"nspID", "pegasus"}});
  });
  EXPECT_NE(what.find("pegasus"), std::string::npos) << what;
}

TEST_F(ModelNamespaceTest, ReachesAnotherContextThroughItsRouterWhileThatLives) {
  auto router = boost::make_shared<TRoutingNamespace>();
  const boost::shared_ptr<ICIMNamespace> other(new TModelNamespace(m_context, "root/other"));
  router->AddContext("pegasus", [&other](const TKeyMap&) { return other; });
  m_context->SetRouter(router);
  const TKeyMap keys{{"nspID", "pegasus"}};
  EXPECT_EQ(m_ns->FindClass("T_Device", {})->GetNamespace(keys), other);
  EXPECT_EQ(m_ns->FindClass("T_Far", keys)->GetNamespace({}), other);
  router.reset();
  EXPECT_NE(WhatIsThrownBy([&] { m_ns->FindClass("T_Far", keys); }), "");
}

TEST_F(ModelNamespaceTest, EnumeratesSubclassesOnlyWhenAskedToGoDeep) {
  EXPECT_EQ(EnumerateIds("T_Device", 1), (TTexts{"a", "b"}));
  EXPECT_EQ(EnumerateIds("T_Device", 0), TTexts{"a"});
  EXPECT_EQ(EnumerateIds("T_Link", 1), TTexts());
}

TEST_F(ModelNamespaceTest, StopsEnumeratingWhenTheCallbackHasEnough) {
  unsigned int seen = 0;
  m_ns->FindClass("T_Device", {})
      ->EnumerateInstances([&seen](const boost::shared_ptr<ICIMInstance>&) { return ++seen == 0; },
                           1, {});
  EXPECT_EQ(seen, 1U);
}

TEST_F(ModelNamespaceTest, LetsTheCallbacksExceptionThroughUnchanged) {
  const auto found = m_ns->FindClass("T_Device", {});
  EXPECT_THROW(
      found->EnumerateInstances(
          [](const boost::shared_ptr<ICIMInstance>&) -> bool { throw std::range_error("x"); }, 1,
          {}),
      std::range_error);
}

TEST_F(ModelNamespaceTest, FetchesAnewEachTimeAndRegistersWhatItHandsOut) {
  auto& registry = CMPINSPInstanceRegistry::GetRegistrySingleton();
  EXPECT_NE(GetDevice("a"), GetDevice("a"));
  EXPECT_EQ(m_operations->CountCalls("GetInstance"), 2U);
  EXPECT_EQ(registry.GetCount(), 2U);
}

TEST_F(ModelNamespaceTest, FetchesFromThePathsOwnNamespaceAndElseFromItself) {
  const TCIMReference far("root/other", "T_Far", {{"ID", "f"}});
  const auto instance = m_ns->GetInstance(far, {});
  EXPECT_EQ(instance->GetNamespaceText({}), "root/other");
  EXPECT_EQ(instance->GetObjectPath({}), far);
  EXPECT_EQ(GetDevice("a")->GetNamespaceText({}), "root/cimv2");
}

TEST_F(ModelNamespaceTest, ThrowsForAnInstanceThatIsNotThere) {
  const std::string what = WhatIsThrownBy([this] { GetDevice("none"); });
  EXPECT_NE(what.find("none"), std::string::npos) << what;
}

TEST_F(ModelNamespaceTest, ListsProvidersWithTheirClassesEvenUndeclaredOnes) {
  m_operations->AddProvider({"Near", "root/cimv2", {"T_Device", "T_Undeclared"}});
  m_operations->AddProvider({"Far", "root/other", {"T_Far"}});
  TTexts seen;
  m_ns->EnumerateProviders(
      [&seen](const boost::shared_ptr<IProvider>& provider) {
        seen.push_back(provider->GetName());
        provider->EnumerateClasses(
            [&seen](const boost::shared_ptr<ICIMClass>& found) {
              seen.push_back(found->GetName({}));
              return true;
            },
            {});
        return true;
      },
      {});
  EXPECT_EQ(seen, (TTexts{"Near", "T_Device", "T_Undeclared", "Far", "T_Far"}));
}

TEST_F(ModelNamespaceTest, AsksForADeclarationOnceHoweverManyInstancesUseIt) {
  for (unsigned int i = 0; i < 50; ++i) {
    m_operations->AddInstance("root/cimv2", MakeInstance("T_Device", std::to_string(i)));
  }
  EXPECT_EQ(EnumerateIds("T_Device", 0).size(), 51U);
  EXPECT_EQ(m_operations->CountCalls("GetClass"), 1U);
  EXPECT_EQ(m_operations->CountCalls("EnumerateInstances"), 1U);
}

}  // namespace
}  // namespace NZEPQEL20
