// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/IProvider.h"
#include "platform/model/TRoutingNamespace.h"
#include "tests/platform/model/TModelTest.h"

namespace NZEPQEL20 {
namespace {

class RoutingNamespaceTest : public TModelTest {
 protected:
  RoutingNamespaceTest() {
    m_router->AddContext("cmpi", [this](const TKeyMap&) { return m_ns; });
    m_context->SetRouter(m_router);
  }

  const boost::shared_ptr<TRoutingNamespace> m_router{new TRoutingNamespace};
};

TEST_F(RoutingNamespaceTest, AnEmptyMapStandsForCmpi) {
  EXPECT_EQ(m_router->Select({}), m_ns);
  EXPECT_EQ(m_router->Select({{"nspID", "cmpi"}}), m_ns);
  EXPECT_EQ(m_router->FindClass("T_Device", {})->GetNamespace({}), m_ns);
}

TEST_F(RoutingNamespaceTest, PluginIsACmpiNamespaceWhoseUpcallsFindAnything) {
  const auto plugin =
      boost::dynamic_pointer_cast<TCMPINamespace>(m_router->Select({{"nspID", "plugin"}}));
  ASSERT_TRUE(plugin);
  const TCIMReference far("", "T_Far", {{"ID", "f"}});
  EXPECT_EQ(plugin->GetUpcallNamespace()->GetInstance(far, {})->GetNamespaceText({}), "root/other");
}

TEST_F(RoutingNamespaceTest, GivesTheFactoryTheWholeMap) {
  m_router->AddContext("pegasus", [this](const TKeyMap& keys) {
    return boost::make_shared<TModelNamespace>(m_context, keys.at("nsp").ToString(10));
  });
  const TKeyMap keys{{"nspID", "pegasus"}, {"nsp", "root/other"}};
  EXPECT_EQ(m_router->FindClass("T_Far", keys)->GetName({}), "T_Far");
  const TCIMReference far("", "T_Far", {{"ID", "f"}});
  EXPECT_EQ(m_router->GetInstance(far, keys)->GetNamespaceText({}), "root/other");
  EXPECT_EQ(m_ns->FindClass("T_Device", {})
                ->GetNamespace(keys)
                ->GetInstance(far, {})
                ->GetNamespaceText({}),
            "root/other");
}

TEST_F(RoutingNamespaceTest, NamesAnIdThatIsUnknownOrYieldsNothing) {
  m_router->AddContext("broken", [](const TKeyMap&) { return nullptr; });
  for (const char* id : {"pegasus", "broken", "CMPI"}) {
    const TKeyMap keys{{"nspID", id}};
    const auto names = [id](const std::string& what) { return what.find(id) != std::string::npos; };
    EXPECT_PRED1(names, WhatIsThrownBy([&] { m_router->FindClass("T_Device", keys); }));
    EXPECT_PRED1(names, WhatIsThrownBy([&] { m_router->GetInstance({}, keys); }));
    EXPECT_PRED1(names, WhatIsThrownBy([&] { m_router->EnumerateProviders({}, keys); }));
  }
}

TEST_F(RoutingNamespaceTest, ListsTheProvidersOfTheContext) {
  m_operations->AddProvider({"Near", "root/cimv2", {"T_Device"}});
  unsigned int seen = 0;
  m_router->EnumerateProviders(
      [&seen](const boost::shared_ptr<IProvider>& provider) {
        EXPECT_EQ(provider->GetName(), "Near");
        return ++seen != 0;
      },
      {});
  EXPECT_EQ(seen, 1U);
}

}  // namespace
}  // namespace NZEPQEL20
