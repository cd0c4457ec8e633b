// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

using NZEPQEL20::ECIMType;
using NZEPQEL20::TCIMValue;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class InspectionTest : public TRunnerTest {
 protected:
  TObjectPtr AddInstance(const std::string& className, const std::string& id) {
    const TObjectPtr object = m_world.Add(className, "Id", id);
    object->Set("Id", id);
    m_world.Show(className, object);
    return object;
  }
  static TCIMValue Texts(const std::vector<std::string>& texts) {
    TCIMValue::TArray elements(texts.begin(), texts.end());
    return TCIMValue::Array(ECIMType::kString, elements);
  }
};

TEST_F(InspectionTest, PropertiesAreWrittenOneLineEachInTheirOrder) {
  const TObjectPtr object = AddInstance("Test_Thing", "1");
  object->Set("Zeta", TCIMValue::UInt16(7))
      .Set("Empty", "")
      .Set("Nothing", TCIMValue::Null(ECIMType::kString))
      .Set("Flag", TCIMValue::Boolean(true))
      .SetText("State", TCIMValue::UInt16(2), "OK");
  DiagsRunner& runner = Start();
  std::string out = "before\n";
  runner.EnumProperties(m_world.MakeInstance(object), out);
  EXPECT_EQ(out, "before\nId : 1\nZeta : 7\nEmpty : \nFlag : TRUE\nState : OK\n");
  EXPECT_THAT(Logs(), ElementsAre("DiagsRunner::EnumerateProperties"));
}

TEST_F(InspectionTest, ArrayElementsStandInBraces) {
  const TObjectPtr object = AddInstance("Test_Thing", "1");
  object->Set("List", Texts({"a", "b,c", ""}))
      .Set("One", TCIMValue::Array(ECIMType::kUInt16, {TCIMValue::UInt16(6)}))
      .Set("None", Texts({}))
      .Set("Null", TCIMValue::Null(ECIMType::kUInt16, true));
  std::string out;
  Start().EnumProperties(m_world.MakeInstance(object), out);
  EXPECT_THAT(out, HasSubstr("Id : 1\nList : {a},{b,c},{}\nOne : {6}\nNone : "));
  EXPECT_THAT(out, Not(HasSubstr("Null")));
}

TEST_F(InspectionTest, AnInstanceWithoutPropertiesAddsNothing) {
  const TObjectPtr object = m_world.Add("Test_Thing", "Id", "1");
  std::string out;
  Start().EnumProperties(m_world.MakeInstance(object), out);
  EXPECT_EQ(out, "");
}

TEST_F(InspectionTest, ShowsEachInstanceOfAClassFromItsProvider) {
  AddInstance("Test_Thing", "1");
  AddInstance("Test_Thing", "2")->Set("Speed", TCIMValue::UInt32(10));
  AddInstance("Test_Other", "3");
  m_world.AddProvider({"first", {"Test_Other"}});
  m_world.AddProvider({"second", {"Test_Thing"}});
  DiagsRunner& runner = Start();
  EXPECT_EQ(runner.EI("Test_Thing"),
            "root/cimv2:Test_Thing.Id=\"1\"\nId : 1\n\n"
            "root/cimv2:Test_Thing.Id=\"2\"\nId : 2\nSpeed : 10\n");
  ASSERT_FALSE(Logs().empty());
  EXPECT_EQ(Logs().front(), "DiagsRunner::EI");
  EXPECT_EQ(Count("enumerate Test_Other"), 0U);
  EXPECT_EQ(Count("providers root"), 1U);
}

TEST_F(InspectionTest, ReportsAClassThatNoProviderHas) {
  m_world.AddProvider({"first", {"Test_Other"}});
  EXPECT_EQ(Start().EI("Test_Thing"), "Class Not Found\n");
}

TEST_F(InspectionTest, AClassWithoutInstancesIsNotMissing) {
  m_world.AddClass("Test_Thing");
  m_world.AddProvider({"first", {"Test_Thing"}});
  EXPECT_THAT(Start().EI("Test_Thing"), Not(HasSubstr("Class Not Found")));
}

TEST_F(InspectionTest, AsksTheGivenNamespace) {
  AddInstance("Test_Thing", "1");
  m_world.AddProvider({"first", {"Test_Thing"}});
  EXPECT_EQ(Start().EI("Test_Thing", m_host), "root/cimv2:Test_Thing.Id=\"1\"\nId : 1\n");
  EXPECT_EQ(Count("providers host"), 1U);
  EXPECT_EQ(Count("providers root"), 0U);
}

TEST_F(InspectionTest, FindsTheProductClassWithoutWalkingTheProviders) {
  AddInstance("ZEPSG_QELProduct", "1");
  EXPECT_EQ(Start().EI("ZEPSG_QELProduct"), "root/cimv2:ZEPSG_QELProduct.Id=\"1\"\nId : 1\n");
  EXPECT_EQ(Count("providers"), 0U);
  EXPECT_EQ(Count("find root ZEPSG_QELProduct"), 1U);
}

TEST_F(InspectionTest, ReportsAMissingProductClass) {
  EXPECT_EQ(Start().EI("ZEPSG_QELProduct"), "Class Not Found\n");
}

class InspectionFaultTest : public InspectionTest, public ::testing::WithParamInterface<EFault> {};

TEST_P(InspectionFaultTest, OfOneProviderIsReportedAndTheOthersAreAsked) {
  AddInstance("Test_Thing", "1");
  m_world.AddProvider({"broken", {"Test_Thing"}});
  m_world.AddProvider({"sound", {"Test_Thing"}});
  DiagsRunner& runner = Start();
  m_faults.When("classes broken", GetParam());
  const std::string text = runner.EI("Test_Thing");
  EXPECT_THAT(text, HasSubstr("TRunnerCollectClassFromProvider for: broken threw exception"));
  EXPECT_THAT(text, HasSubstr("root/cimv2:Test_Thing.Id=\"1\"\nId : 1\n"));
  if (GetParam() != EFault::kInt) {
    EXPECT_THAT(text, HasSubstr("threw exception " + std::string(kFaultText)));
  }
}

TEST_P(InspectionFaultTest, OfOneEnumerationIsReportedAndTheOthersAreAsked) {
  AddInstance("Test_Thing", "1");
  m_world.AddProvider({"broken", {"Test_Thing"}});
  m_world.AddProvider({"sound", {"Test_Thing"}});
  DiagsRunner& runner = Start();
  m_faults.When("enumerate Test_Thing", GetParam(), 1);
  const std::string text = runner.EI("Test_Thing");
  EXPECT_THAT(text, HasSubstr("TRunnerCollectClassFromProvider for: broken threw exception"));
  EXPECT_THAT(text, HasSubstr("root/cimv2:Test_Thing.Id=\"1\"\nId : 1\n"));
}

INSTANTIATE_TEST_SUITE_P(Exceptions, InspectionFaultTest,
                         ::testing::Values(EFault::kQELException, EFault::kStdException,
                                           EFault::kInt));

}  // namespace
}  // namespace scripted
