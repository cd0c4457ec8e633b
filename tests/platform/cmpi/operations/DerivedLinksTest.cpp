// SPDX-License-Identifier: Apache-2.0
//
// Instances of association classes whose providers enumerate none.
#include <gmock/gmock.h>

#include "tests/platform/cmpi/operations/TDepotTest.h"
#include "tests/platform/cmpi/operations/TKeptLog.h"

namespace NZEPQEL20 {
namespace {

using testing::HasSubstr;

constexpr char kAllHere[] = "D_Holds:B1-S1 D_Holds:B3-S2 D_Holds:B9-S2 D_HoldsSafely:B2-S1";

/// Which provider serves the associations of shelves and boxes, and as what.
struct TLinkOffer {
  const char* provider;
  const char* types;
};

void PrintTo(const TLinkOffer& offer, std::ostream* out) {
  *out << offer.provider << " as " << offer.types;
}

class DerivedLinksTest : public TDepotTest {
 protected:
  void OpenLinks(const TLinkOffer& offer) {
    const std::string rest = std::string(" root/cimv2 ") + offer.provider + ' ' + offer.types;
    Open({"D_Shelf root/cimv2 Depot_engm instance method", "D_Box root/cimv2 Depot_eng instance",
          "D_Crate root/cimv2 Depot_eng instance", "D_Holds" + rest, "D_HoldsSafely" + rest});
  }
};

class UnenumeratedLinksTest : public DerivedLinksTest,
                              public testing::WithParamInterface<TLinkOffer> {};

TEST_P(UnenumeratedLinksTest, AreFoundByTheObjectsThatTheyJoin) {
  OpenLinks(GetParam());
  EXPECT_EQ(Enumerate("D_Holds"), kAllHere);
  EXPECT_EQ(EnumerateNames("D_Holds"), kAllHere);
  EXPECT_EQ(Enumerate("D_HoldsSafely"), "D_HoldsSafely:B2-S1");
  EXPECT_EQ(EnumerateNames("D_HoldsSafely"), "D_HoldsSafely:B2-S1");
  EXPECT_EQ(m_operations->GetProblems(), std::vector<std::string>());
}

INSTANTIATE_TEST_SUITE_P(All, UnenumeratedLinksTest,
                         testing::Values(TLinkOffer{"Depot_aArR", "association"},
                                         TLinkOffer{"Depot_r", "association"},
                                         TLinkOffer{"Depot_ri", "association"},
                                         TLinkOffer{"Depot_xr", "association"},
                                         TLinkOffer{"Depot_Rg", "instance association"},
                                         TLinkOffer{"Depot_r", "instance association"},
                                         TLinkOffer{"Depot_xrR", "instance association"},
                                         TLinkOffer{"Depot_oenrR", "instance association"},
                                         TLinkOffer{"Depot_onr", "instance association"},
                                         TLinkOffer{"Depot_oeRg", "instance association"}));

class NoLinksTest : public DerivedLinksTest, public testing::WithParamInterface<TLinkOffer> {};

TEST_P(NoLinksTest, IsTheAnswerOfAProviderThatHasAnswered) {
  OpenLinks(GetParam());
  EXPECT_EQ(Enumerate("D_Holds"), "");
  EXPECT_EQ(EnumerateNames("D_Holds"), "");
  EXPECT_EQ(m_operations->GetProblems(), std::vector<std::string>());
}

INSTANTIATE_TEST_SUITE_P(All, NoLinksTest,
                         testing::Values(TLinkOffer{"Depot_oenrR", "instance"},
                                         TLinkOffer{"Depot_oen", "instance association"},
                                         TLinkOffer{"Depot_oenx", "instance association"},
                                         TLinkOffer{"Depot_oenrRq", "instance association"},
                                         TLinkOffer{"Depot_oenrRu", "instance association"}));

TEST_F(DerivedLinksTest, WhatFailsWithoutHavingBeenAskedIsForTheLog) {
  TKeptLog log("the depot burns");
  OpenLinks({"Depot_oenrRu", "instance association"});
  Enumerate("D_Holds");
  EXPECT_FALSE(log.lines.empty());
  const std::size_t count = log.lines.size();
  Enumerate("D_Holds");
  EXPECT_EQ(log.lines.size(), count) << "each once";
  // Now somebody asks.
  EXPECT_EQ(StatusOf([&] { References(PathTo("D_Shelf", "S1")); }), 1U);
  EXPECT_EQ(m_operations->GetProblems().size(), 1U);
}

TEST_F(DerivedLinksTest, AnEndThatFailsWithoutHavingBeenAskedIsForTheLog) {
  TKeptLog log("the depot burns");
  Open({"D_Shelf root/cimv2 Depot_f instance", "D_Box root/cimv2 Depot_f instance",
        "D_Holds root/cimv2 Depot_oenr instance association"});
  EXPECT_EQ(Enumerate("D_Holds"), "");
  EXPECT_FALSE(log.lines.empty());
  EXPECT_EQ(m_operations->GetProblems(), std::vector<std::string>());
}

TEST_F(DerivedLinksTest, BothEndsOfOneClassGiveEachAssociationOnce) {
  OpenWith("D_Stacks root/cimv2 Depot_sr association");
  EXPECT_EQ(Enumerate("D_Stacks"), "D_Stacks:X1 D_Stacks:X2 D_Stacks:X3");
  EXPECT_EQ(EnumerateNames("D_Stacks"), "D_Stacks:X1 D_Stacks:X2 D_Stacks:X3");
}

TEST_F(DerivedLinksTest, TheOtherEndServesWhenTheFirstHasNothing) {
  // Nobody enumerates shelves.
  Open({"D_Box root/cimv2 Depot_eng instance", "D_Holds root/cimv2 Depot_r association"});
  EXPECT_EQ(Enumerate("D_Holds"), "D_Holds:B1-S1 D_Holds:B3-S2");
  m_operations.reset();
  // The shelves' provider fails.
  Open({"D_Shelf root/cimv2 Depot_f instance", "D_Box root/cimv2 Depot_eng instance",
        "D_Holds root/cimv2 Depot_r association"});
  EXPECT_EQ(EnumerateNames("D_Holds"), "D_Holds:B1-S1 D_Holds:B3-S2");
}

TEST_F(DerivedLinksTest, AnEndMayBeServedUnderAClassAboveTheDeclaredOne) {
  // The association is declared between trays and boxes.
  Open({"D_Shelf root/cimv2 Depot_n instance", "D_HoldsSafely root/cimv2 Depot_r association"});
  EXPECT_EQ(Enumerate("D_HoldsSafely"), "D_HoldsSafely:B2-S1");
}

TEST_F(DerivedLinksTest, AnEndWithoutObjectsHasNoAssociations) {
  Open({"D_Crate root/elsewhere Depot_n instance", "D_Tray root/cimv2 Depot_n instance",
        "D_HoldsSafely root/cimv2 Depot_r association"});
  EXPECT_EQ(Enumerate("D_HoldsSafely"), "");
  EXPECT_EQ(m_operations->GetProblems(), std::vector<std::string>());
}

TEST_F(DerivedLinksTest, WhenAllFailTheReasonIsToldAndReported) {
  OpenLinks({"Depot_f", "association"});
  EXPECT_EQ(StatusOf([&] { Enumerate("D_Holds"); }), 1U);
  EXPECT_EQ(StatusOf([&] { EnumerateNames("D_Holds"); }), 1U);
  ASSERT_FALSE(m_operations->GetProblems().empty());
  EXPECT_THAT(m_operations->GetProblems()[0], HasSubstr("the depot burns"));
}

TEST_F(DerivedLinksTest, AFailureOfEnumerationIsNoReasonToDerive) {
  OpenLinks({"Depot_fr", "instance association"});
  EXPECT_EQ(StatusOf([&] { Enumerate("D_Holds"); }), 1U);
}

TEST_F(DerivedLinksTest, WhatCannotBeDerivedIsNotSupported) {
  // No function tells of the associations themselves, and looking for them ends.
  OpenLinks({"Depot_aA", "association"});
  EXPECT_EQ(StatusOf([&] { Enumerate("D_Holds"); }), 7U);
  EXPECT_EQ(StatusOf([&] { References(PathTo("D_Shelf", "S1")); }), 7U);
  m_operations.reset();
  OpenLinks({"Depot_xA", "instance association"});
  EXPECT_EQ(StatusOf([&] { EnumerateNames("D_Holds"); }), 7U);
}

TEST_F(DerivedLinksTest, WithoutAnyObjectToAskAboutTheClassIsNotSupported) {
  Open({"D_Holds root/cimv2 Depot_r association"});
  EXPECT_EQ(StatusOf([&] { Enumerate("D_Holds"); }), 7U);
  ASSERT_EQ(m_operations->GetProblems().size(), 1U);
  EXPECT_THAT(m_operations->GetProblems()[0],
              HasSubstr("nobody enumerates the objects that it joins"));
}

TEST_F(DerivedLinksTest, AProviderFindsThemToo) {
  OpenLinks({"Depot_r", "association"});
  EXPECT_EQ(Ask({{"What", TCIMValue("names")},
                 {"Class", TCIMValue("D_HoldsSafely")},
                 {"Place", TCIMValue("root/cimv2")}}),
            "D_HoldsSafely:");
}

TEST_F(DerivedLinksTest, AClassWithoutReferencesIsEmptyAsBefore) {
  Open({"D_Box root/cimv2 Depot_aArR association"});
  EXPECT_EQ(Enumerate("D_Box"), "");
  EXPECT_EQ(m_operations->GetProblems(), std::vector<std::string>());
}

}  // namespace
}  // namespace NZEPQEL20
