// SPDX-License-Identifier: Apache-2.0
//
// Associations over providers that answer only some of the questions, or more than was asked.
#include "tests/platform/cmpi/operations/TDepotTest.h"

namespace NZEPQEL20 {
namespace {

/// Which provider serves the associations of shelves and boxes, and as what.
struct TOffer {
  const char* provider;
  const char* types;
};

std::ostream& operator<<(std::ostream& out, const TOffer& offer) {
  return out << offer.provider << " as " << offer.types;
}

/// All ways of answering give the same.
class PartialAssociationsTest : public TDepotTest, public testing::WithParamInterface<TOffer> {
 protected:
  PartialAssociationsTest() {
    const std::string rest = std::string(" root/cimv2 ") + GetParam().provider + ' ';
    Open({"D_Shelf root/cimv2 Depot_engm instance method", "D_Box root/cimv2 Depot_eng instance",
          "D_Crate root/cimv2 Depot_eng instance", "D_Holds" + rest + GetParam().types,
          "D_HoldsSafely" + rest + GetParam().types});
  }
  const TCIMReference m_shelf = PathTo("D_Shelf", "S1");
};

TEST_P(PartialAssociationsTest, AnswersEveryQuestion) {
  EXPECT_EQ(AssociatorNames(m_shelf), "D_Box:B1 D_Crate:B2");
  EXPECT_EQ(Associators(m_shelf), "D_Box:B1 D_Crate:B2");
  EXPECT_EQ(ReferenceNames(m_shelf), "D_Holds:B1-S1 D_HoldsSafely:B2-S1");
  EXPECT_EQ(References(m_shelf), "D_Holds:B1-S1 D_HoldsSafely:B2-S1");
  EXPECT_EQ(AssociatorNames(PathTo("D_Box", "B3")), "D_Shelf:S2");
}

TEST_P(PartialAssociationsTest, FiltersByClass) {
  EXPECT_EQ(AssociatorNames(m_shelf, {"D_HOLDSSAFELY", "", "", ""}), "D_Crate:B2");
  EXPECT_EQ(Associators(m_shelf, {"", "d_crate", "", ""}), "D_Crate:B2");
  EXPECT_EQ(AssociatorNames(m_shelf, {"", "D_Shelf", "", ""}), "");
  EXPECT_EQ(ReferenceNames(m_shelf, {"", "D_HoldsSafely", "", ""}), "D_HoldsSafely:B2-S1");
  EXPECT_EQ(References(m_shelf, {"", "D_Stacks", "", ""}), "");
}

TEST_P(PartialAssociationsTest, FiltersByRole) {
  EXPECT_EQ(AssociatorNames(m_shelf, {"", "", "Box", ""}), "");
  EXPECT_EQ(AssociatorNames(m_shelf, {"", "", "", "Shelf"}), "");
  EXPECT_EQ(Associators(m_shelf, {"", "", "Box", ""}), "");
  EXPECT_EQ(Associators(m_shelf, {"", "", "Shelf", "Box"}), "D_Box:B1 D_Crate:B2");
  EXPECT_EQ(ReferenceNames(m_shelf, {"", "", "Box", ""}), "");
  EXPECT_EQ(References(m_shelf, {"", "", "Lid", ""}), "");
  EXPECT_EQ(References(m_shelf, {"", "", "Shelf", ""}), "D_Holds:B1-S1 D_HoldsSafely:B2-S1");
}

INSTANTIATE_TEST_SUITE_P(
    All, PartialAssociationsTest,
    testing::Values(TOffer{"Depot_aArRi", "association"}, TOffer{"Depot_ri", "association"},
                    TOffer{"Depot_Rgi", "instance association"}, TOffer{"Depot_xri", "association"},
                    TOffer{"Depot_xRgi", "instance association"},
                    TOffer{"Depot_Aei", "instance association"},
                    TOffer{"Depot_ae", "instance association"}, TOffer{"Depot_Ri", "association"},
                    TOffer{"Depot_xRi", "instance association"}, TOffer{"Depot_e", "instance"},
                    TOffer{"Depot_eng", "instance"}, TOffer{"Depot_ng", "instance"}));

using DerivedAssociationsTest = TDepotTest;

TEST_F(DerivedAssociationsTest, EndsThatAreNoKeysAreReadFromTheInstance) {
  for (const char* provider : {"Depot_sRg", "Depot_sr", "Depot_seng"}) {
    SCOPED_TRACE(provider);
    OpenWith(std::string("D_Stacks root/cimv2 ") + provider + " instance association");
    const TCIMReference box = PathTo("D_Box", "B1");
    EXPECT_EQ(AssociatorNames(box), "D_Box:B3 D_Crate:B2");
    EXPECT_EQ(AssociatorNames(box, {"", "", "Upper", ""}), "D_Box:B3");
    EXPECT_EQ(AssociatorNames(box, {"", "", "Lower", "Upper"}), "D_Box:B3 D_Crate:B2");
    EXPECT_EQ(AssociatorNames(PathTo("D_Crate", "B2"), {"", "", "Lower", ""}), "");
    EXPECT_EQ(References(box, {"", "", "Upper", ""}), "D_Stacks:X2");
    EXPECT_EQ(References(box), "D_Stacks:X1 D_Stacks:X2 D_Stacks:X3");
    m_operations.reset();
  }
}

TEST_F(DerivedAssociationsTest, NamesThatDoNotTellTheEndsAreNoReferences) {
  OpenWith("D_Stacks root/cimv2 Depot_sR association");
  EXPECT_EQ(ReferenceNames(PathTo("D_Box", "B1")), "D_Stacks:X1 D_Stacks:X2 D_Stacks:X3");
  EXPECT_EQ(StatusOf([&] { References(PathTo("D_Box", "B1")); }), 7U);
}

TEST_F(DerivedAssociationsTest, NamesAreThoseOfAssociatedObjectsWhereThereIsNothingElse) {
  for (const char* provider : {"Depot_a", "Depot_xa"}) {
    SCOPED_TRACE(provider);
    OpenWith(std::string("D_Holds root/cimv2 ") + provider + " association");
    EXPECT_EQ(AssociatorNames(PathTo("D_Shelf", "S1")), "D_Box:B1 D_Crate:B2");
    EXPECT_EQ(StatusOf([&] { ReferenceNames(PathTo("D_Shelf", "S1")); }), 7U);
    m_operations.reset();
  }
}

TEST_F(DerivedAssociationsTest, AProviderThatIgnoresRolesIsCorrectedByItsReferences) {
  OpenWith("D_Stacks root/cimv2 Depot_saArRgi instance association");
  const TCIMReference crate = PathTo("D_Crate", "B2");
  EXPECT_EQ(Associators(crate), "D_Box:B1");
  EXPECT_EQ(Associators(crate, {"", "", "Upper", ""}), "D_Box:B1");
  EXPECT_EQ(Associators(crate, {"", "", "Lower", ""}), "");
  EXPECT_EQ(AssociatorNames(crate, {"", "", "", "Upper"}), "");
  EXPECT_EQ(References(crate, {"", "", "Lower", ""}), "");
}

TEST_F(DerivedAssociationsTest, AResultThatTheReferencesKeepSilentAboutStays) {
  // Nothing speaks against what it associates, be it without references or with empty ones.
  for (const char* provider : {"Depot_aAi", "Depot_aArRqi"}) {
    SCOPED_TRACE(provider);
    OpenWith(std::string("D_Holds root/cimv2 ") + provider + " association");
    EXPECT_EQ(AssociatorNames(PathTo("D_Shelf", "S2"), {"", "", "Shelf", ""}),
              "D_Box:B3 root/remote:D_Box:B9");
    m_operations.reset();
  }
}

TEST_F(DerivedAssociationsTest, SeveralProvidersGiveEachResultOnce) {
  Open({"D_Box root/cimv2 Depot_eng instance", "D_Holds root/cimv2 Depot_aArR association",
        "D_Holds root/cimv2 Depot_aArRi association",
        "D_HoldsSafely root/cimv2 Depot_r association", "D_Holds root/cimv2 Depot_r association"});
  const TCIMReference shelf = PathTo("D_Shelf", "S1");
  EXPECT_EQ(AssociatorNames(shelf), "D_Box:B1 D_Crate:B2");
  EXPECT_EQ(References(shelf), "D_Holds:B1-S1 D_HoldsSafely:B2-S1");
}

TEST_F(DerivedAssociationsTest, OneFailureIsReportedAndCostsTheOthersNothing) {
  Open({"D_Holds root/cimv2 Depot_f association", "D_Holds root/cimv2 Depot_aArR association"});
  EXPECT_EQ(AssociatorNames(PathTo("D_Shelf", "S1")), "D_Box:B1 D_Crate:B2");
  ASSERT_EQ(m_operations->GetProblems().size(), 1U);
  EXPECT_NE(m_operations->GetProblems()[0].find("the depot burns"), std::string::npos);
}

TEST_F(DerivedAssociationsTest, WhenAllFailTheRealReasonIsTold) {
  Open({"D_Holds root/cimv2 Depot_x association", "D_Holds root/cimv2 Depot_f association"});
  const TCIMReference shelf = PathTo("D_Shelf", "S1");
  EXPECT_EQ(StatusOf([&] { References(shelf); }), 1U);
  EXPECT_EQ(StatusOf([&] { AssociatorNames(shelf); }), 1U);
}

TEST_F(DerivedAssociationsTest, AnAssociatedObjectIsFetchedFromItsOwnNamespace) {
  Open({"D_Box root/cimv2 Depot_eng instance", "D_Box root/remote Depot_ng instance",
        "D_Holds root/cimv2 Depot_r association"});
  EXPECT_EQ(Associators(PathTo("D_Shelf", "S2")), "D_Box:B3 root/remote:D_Box:B9");
}

TEST_F(DerivedAssociationsTest, AnAssociationOfAnotherNamespaceServesWhenThereIsNoneHere) {
  Open({"D_Holds root/links Depot_rR association"});
  EXPECT_EQ(AssociatorNames(PathTo("D_Shelf", "S1")), "D_Box:B1 D_Crate:B2");
  EXPECT_EQ(AssociatorNames(PathTo("D_Remote", "R1")), "");
}

}  // namespace
}  // namespace NZEPQEL20
