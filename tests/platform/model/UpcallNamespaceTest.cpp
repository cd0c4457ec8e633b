// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMProperty.h"
#include "platform/model/TUpcallNamespace.h"
#include "tests/platform/model/TModelTest.h"

namespace NZEPQEL20 {
namespace {

class UpcallNamespaceTest : public TModelTest {
 protected:
  const boost::shared_ptr<ICIMNamespace> m_upcall = m_ns->GetUpcallNamespace();
};

TEST_F(UpcallNamespaceTest, FindsAClassInWhateverNamespaceItLies) {
  EXPECT_EQ(m_upcall->FindClass("T_Device", {})->GetName({}), "T_Device");
  const auto far = m_upcall->FindClass("t_far", {{"nspID", "pegasus"}});
  EXPECT_EQ(far->GetName({}), "T_Far");
  EXPECT_EQ(far->GetNamespace({}), m_upcall);
  EXPECT_EQ(far->GetNamespace({{"nspID", "cmpi"}}), m_upcall);
}

TEST_F(UpcallNamespaceTest, EnumeratesTheInstancesOfAClassWhereItLies) {
  std::vector<std::string> seen;
  m_upcall->FindClass("T_Far", {})
      ->EnumerateInstances(
          [&seen](const boost::shared_ptr<ICIMInstance>& instance) {
            seen.push_back(instance->GetObjectPath({}).GetPath());
            return true;
          },
          1, {{"nspID", "plugin"}});
  EXPECT_EQ(seen, std::vector<std::string>{"root/other:T_Far.ID=\"f\""});
}

TEST_F(UpcallNamespaceTest, ANamespaceThatFailsCostsNothingOfTheOthers) {
  m_operations->AddClass("root/cimv2", *m_operations->GetClass("root/other", "T_Far"));
  const auto count = [this] {
    int seen = 0;
    m_upcall->FindClass("T_Far", {})
        ->EnumerateInstances(
            [&seen](const boost::shared_ptr<ICIMInstance>&) {
              ++seen;
              return true;
            },
            1, {});
    return seen;
  };
  const TQELException broken(TQELStatusCode::kCIMError, "provider crashed", 1);
  m_operations->Fail("EnumerateInstances", "root/cimv2", broken);
  EXPECT_EQ(count(), 1);
  m_operations->Fail("EnumerateInstances", "root/other", broken);
  EXPECT_NE(WhatIsThrownBy(count).find("provider crashed"), std::string::npos);
}

TEST_F(UpcallNamespaceTest, WhatTheCallerThrowsIsItsOwn) {
  m_operations->AddClass("root/cimv2", *m_operations->GetClass("root/other", "T_Far"));
  m_operations->AddInstance("root/cimv2", MakeInstance("T_Far", "f"));
  int seen = 0;
  const std::string thrown = WhatIsThrownBy([&] {
    m_upcall->FindClass("T_Far", {})
        ->EnumerateInstances(
            [&seen](const boost::shared_ptr<ICIMInstance>&) -> bool {
              ++seen;
              throw TQELException(TQELStatusCode::kFailed, "enough");
            },
            1, {});
  });
  EXPECT_EQ(thrown, "enough");
  EXPECT_EQ(seen, 1);
}

TEST_F(UpcallNamespaceTest, LooksInThePathsOwnNamespaceFirst) {
  m_operations->AddInstance("root/cimv2", MakeInstance("T_Far", "f"));
  const TCIMReference far("root/other", "T_Far", {{"ID", "f"}});
  EXPECT_EQ(m_upcall->GetInstance(far, {{"nspID", "x"}})->GetNamespaceText({}), "root/other");
  EXPECT_EQ(m_operations->CountCalls("GetInstance"), 1U);
}

TEST_F(UpcallNamespaceTest, LooksInEveryOtherNamespaceAfterwards) {
  const TCIMReference lost("root/lost", "T_Far", {{"ID", "f"}});
  EXPECT_EQ(m_upcall->GetInstance(lost, {})->GetNamespaceText({}), "root/other");
  EXPECT_EQ(m_operations->CountCalls("GetInstance"), 3U);
}

TEST_F(UpcallNamespaceTest, ThrowsARealFailureBeforeNotFound) {
  const TCIMReference none("", "T_Device", {{"ID", "none"}});
  const std::string missing = WhatIsThrownBy([&] { m_upcall->GetInstance(none, {}); });
  EXPECT_NE(missing.find("T_Device.ID=\"none\""), std::string::npos) << missing;
  m_operations->Fail("GetInstance", "root/other",
                     TQELException(TQELStatusCode::kCIMError, "provider crashed", 1));
  try {
    m_upcall->GetInstance(none, {});
    FAIL() << "an instance that is nowhere was found";
  } catch (const TQELException& e) {
    const std::string what = e.what();
    EXPECT_NE(what.find("provider crashed"), std::string::npos) << what;
    EXPECT_NE(what.find("T_Device.ID=\"none\""), std::string::npos) << what;
    EXPECT_EQ(e.GetCIMStatus(), 1U);
  }
}

TEST_F(UpcallNamespaceTest, NamesAClassThatIsNowhere) {
  const std::string what = WhatIsThrownBy([this] { m_upcall->FindClass("T_None", {}); });
  EXPECT_NE(what.find("T_None"), std::string::npos) << what;
}

TEST(UpcallNamespaceWithoutNamespacesTest, SaysThatNothingIsRegistered) {
  const auto context = std::make_shared<TModelContext>("cmpi", std::make_shared<TFakeOperations>());
  const auto ns = boost::make_shared<TModelNamespace>(context, "root/cimv2");
  EXPECT_THROW(ns->GetUpcallNamespace()->FindClass("T_Far", {}), TQELException);
  EXPECT_THROW(ns->GetUpcallNamespace()->GetInstance(TCIMReference("", "T_Far"), {}),
               TQELException);
}

}  // namespace
}  // namespace NZEPQEL20
