// SPDX-License-Identifier: Apache-2.0
//
// Instances over providers that answer only some of the questions, and what providers find through
// the broker.
#include "tests/platform/cmpi/operations/TDepotTest.h"

namespace NZEPQEL20 {
namespace {

class PartialInstancesTest : public TDepotTest, public testing::WithParamInterface<const char*> {};

TEST_P(PartialInstancesTest, AreFoundByEveryQuestion) {
  Open({std::string("D_Box root/cimv2 ") + GetParam() + " instance"});
  EXPECT_EQ(Enumerate("D_Box"), "D_Box:B1 D_Box:B3");
  EXPECT_EQ(EnumerateNames("D_Box"), "D_Box:B1 D_Box:B3");
  const TCIMInstanceData box = m_operations->GetInstance(PathTo("D_Box", "B3"));
  EXPECT_EQ(box.Find("Number")->value, TCIMValue::UInt16(3));
  EXPECT_EQ(StatusOf([&] { m_operations->GetInstance(PathTo("D_Box", "B4")); }), 6U);
}

INSTANTIATE_TEST_SUITE_P(All, PartialInstancesTest,
                         testing::Values("Depot_e", "Depot_xe", "Depot_ng", "Depot_xng", "Depot_eg",
                                         "Depot_en"));

using DerivedInstancesTest = TDepotTest;

TEST_F(DerivedInstancesTest, WhatCannotBeDerivedIsNotSupported) {
  Open({"D_Box root/cimv2 Depot_g instance"});
  EXPECT_EQ(StatusOf([&] { Enumerate("D_Box"); }), 7U);
  EXPECT_EQ(StatusOf([&] { EnumerateNames("D_Box"); }), 7U);
  EXPECT_EQ(m_operations->GetInstance(PathTo("D_Box", "B1")).path.GetClassName(), "D_Box");
}

TEST_F(DerivedInstancesTest, TheFirstProviderThatHasTheObjectAnswers) {
  Open({"D_Box root/cimv2 Depot_f instance", "D_Box root/cimv2 Depot_x instance",
        "D_Box root/cimv2 Depot_eng instance"});
  EXPECT_EQ(m_operations->GetInstance(PathTo("D_Box", "B1")).Find("Number")->value,
            TCIMValue::UInt16(1));
  // Not one that does not have it, but the one that is broken, is why it cannot be told.
  EXPECT_EQ(StatusOf([&] { m_operations->GetInstance(PathTo("D_Box", "B4")); }), 1U);
}

TEST_F(DerivedInstancesTest, NotFoundSaysMoreThanNotSupported) {
  Open({"D_Box root/cimv2 Depot_eng instance", "D_Box root/cimv2 Depot_x instance"});
  EXPECT_EQ(StatusOf([&] { m_operations->GetInstance(PathTo("D_Box", "B4")); }), 6U);
}

TEST_F(DerivedInstancesTest, SeveralProvidersOfAClassGiveEachInstanceOnce) {
  Open({"D_Box root/cimv2 Depot_eng instance", "D_Box root/cimv2 Depot_e instance"});
  EXPECT_EQ(Enumerate("D_Box"), "D_Box:B1 D_Box:B3");
  EXPECT_EQ(EnumerateNames("D_Thing"), "D_Box:B1 D_Box:B3");
}

TEST_F(DerivedInstancesTest, AProviderOfASubclassIsAskedForItsOwnClass) {
  Open({"D_Crate root/cimv2 Depot_g instance"});
  EXPECT_EQ(m_operations->GetInstance(PathTo("D_Box", "B2")).path.GetClassName(), "D_Crate");
}

// Upcalls.

class DepotUpcallsTest : public TDepotTest {
 protected:
  DepotUpcallsTest() {
    Open({"D_Shelf root/cimv2 Depot_engm instance method", "D_Box root/cimv2 Depot_eng instance",
          "D_Crate root/cimv2 Depot_eng instance", "D_Box root/remote Depot_ng instance",
          "D_Remote root/far Depot_engmp instance method property",
          "D_Holds root/cimv2 Depot_aArR association"});
  }
};

TEST_F(DepotUpcallsTest, AnObjectThatLivesElsewhereIsFound) {
  const TKeyMap about = {{"Class", TCIMValue("D_Remote")}, {"Place", TCIMValue("root/cimv2")}};
  const auto ask = [&](const char* what, const char* id) {
    TKeyMap parameters = about;
    parameters["What"] = TCIMValue(what);
    parameters["Id"] = TCIMValue(id);
    return Ask(parameters);
  };
  EXPECT_EQ(ask("get", "R1"), "root/far:D_Remote:R1(all)");
  EXPECT_EQ(ask("enumerate", ""), "root/far:D_Remote:R1(all)");
  EXPECT_EQ(ask("names", ""), "root/far:D_Remote:R1");
  EXPECT_EQ(ask("Knock", "R1"), "D_Remote.Knock");
  EXPECT_EQ(ask("associators", "R1"), "");
}

TEST_F(DepotUpcallsTest, TheNamespaceThatIsNamedWinsWhenAClassIsServedInTwo) {
  const auto names = [&](const char* place) {
    return Ask(
        {{"What", TCIMValue("names")}, {"Class", TCIMValue("D_Box")}, {"Place", TCIMValue(place)}});
  };
  EXPECT_EQ(names("root/cimv2"), "D_Box:B1 D_Box:B3 D_Crate:B2");
  EXPECT_EQ(names("root/remote"), "root/remote:D_Box:B9");
  EXPECT_EQ(names("ROOT/Remote"), "root/remote:D_Box:B9") << "namespaces have no case";
  EXPECT_EQ(names("root/nowhere"), "D_Box:B1 D_Box:B3 D_Crate:B2");
}

TEST_F(DepotUpcallsTest, TheWantedPropertiesReachTheProviderOnceAndNoFurther) {
  const auto ask = [&](const char* what, const char* id, const char* className) {
    return Ask({{"What", TCIMValue(what)},
                {"Class", TCIMValue(className)},
                {"Id", TCIMValue(id)},
                {"Place", TCIMValue("root/cimv2")},
                {"Property", TCIMValue("Asked")}});
  };
  EXPECT_EQ(ask("get", "B1", "D_Box"), "D_Box:B1(+Asked)");
  EXPECT_EQ(ask("enumerate", "", "D_Crate"), "D_Crate:B2(+Asked)");
  EXPECT_EQ(ask("associators", "S1", "D_Shelf"), "D_Box:B1(+Asked) D_Crate:B2(+Asked)");
  EXPECT_EQ(m_operations->GetInstance(PathTo("D_Box", "B1")).Find("Asked")->value,
            TCIMValue("all"));
}

TEST_F(DepotUpcallsTest, OnePropertyComesFromTheProviderOfPropertiesElseFromTheInstance) {
  const auto ask = [&](const char* what, const char* property, const char* text = "") {
    return Ask({{"What", TCIMValue(what)},
                {"Class", TCIMValue("D_Remote")},
                {"Id", TCIMValue("R1")},
                {"Place", TCIMValue("root/far")},
                {"Property", TCIMValue(property)},
                {"Query", TCIMValue(text)}});
  };
  EXPECT_EQ(ask("property", "Asked"), "R1!Asked");
  EXPECT_EQ(ask("property", "Number"), "1") << "refused there, so read from the instance";
  EXPECT_EQ(StatusOf([&] { ask("property", "Locked"); }), 2U);
  EXPECT_EQ(ask("set", "Stored", "tea"), "");
  EXPECT_EQ(ask("property", "Stored"), "R1.Stored=tea");
  EXPECT_EQ(StatusOf([&] { ask("set", "Number", "5"); }), 7U) << "nor can the instance be changed";
}

TEST_F(DepotUpcallsTest, QueriesAndFiltersAreAnsweredOverAnyProvider) {
  const auto ask = [&](const char* what, const char* query, const char* language) {
    return Ask({{"What", TCIMValue(what)},
                {"Class", TCIMValue("D_Shelf")},
                {"Id", TCIMValue("S1")},
                {"Place", TCIMValue("root/cimv2")},
                {"Query", TCIMValue(query)},
                {"Language", TCIMValue(language)}});
  };
  EXPECT_EQ(ask("query", "SELECT * FROM D_Box WHERE Number >= 2", "WQL"),
            "D_Box:B3(all) D_Crate:B2(all)");
  EXPECT_EQ(ask("query", "SELECT Asked FROM D_Remote", "DMTF:CQL"), "root/far:D_Remote:R1(all)");
  EXPECT_EQ(ask("filter", "Number = 2", "DMTF:FQL"), "D_Crate:B2(all)");
  EXPECT_EQ(ask("filter", "", ""), "D_Box:B1(all) D_Crate:B2(all)");
  EXPECT_EQ(StatusOf([&] { ask("filter", "Number = ", "DMTF:FQL"); }), 15U);
  EXPECT_EQ(StatusOf([&] { ask("query", "SELECT * FROM D_Box", "XQL"); }), 14U);
}

TEST_F(DerivedInstancesTest, TheParametersOfARegistrationReachItsProvider) {
  OpenFile("depot.reg",
           "[D_Shelf]\n  provider: Depot_engm\n  location: depot\n  type: instance method\n"
           "  namespace: root/cimv2\n"
           "[D_Box]\n  provider: Depot_engp\n  location: depot\n  type: instance property\n"
           "  parameters: depth=3 loud\n  namespace: root/boxes\n");
  const auto ask = [&](const char* property) {
    return Ask({{"What", TCIMValue("property")},
                {"Class", TCIMValue("D_Box")},
                {"Id", TCIMValue("B1")},
                {"Place", TCIMValue("root/boxes")},
                {"Property", TCIMValue(property)}});
  };
  EXPECT_EQ(ask("Told"), "depth=3 loud");
  EXPECT_EQ(ask("Home"), "root/boxes depth=3 loud") << "so does the factory";
}

TEST_F(DerivedInstancesTest, AMethodThatIsServedOnlyElsewhereIsFoundThere) {
  Open({"D_Shelf root/cimv2 Depot_engm instance method", "D_Box root/cimv2 Depot_eng instance",
        "D_Box root/handling Depot_m method"});
  EXPECT_EQ(Ask({{"What", TCIMValue("Lift")},
                 {"Class", TCIMValue("D_Box")},
                 {"Id", TCIMValue("B1")},
                 {"Place", TCIMValue("root/cimv2")}}),
            "D_Box.Lift");
}

TEST_F(DerivedInstancesTest, WhoeverServesTheClassAboveHasThoseOfTheClassBelow) {
  OpenWith("D_Box root/cimv2 Depot_beng instance");
  EXPECT_EQ(Enumerate("D_Box"), "D_Box:B1 D_Box:B3 D_Crate:B2");
  EXPECT_EQ(Enumerate("D_Crate"), "D_Crate:B2");
  EXPECT_EQ(EnumerateNames("D_Crate"), "D_Crate:B2");
  EXPECT_EQ(m_operations->GetProblems(), std::vector<std::string>());
}

}  // namespace
}  // namespace NZEPQEL20
