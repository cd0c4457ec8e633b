// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/cmpi/operations/TWorkshopTest.h"

namespace NZEPQEL20 {
namespace {

class AssociationOperationsTest : public TWorkshopTest {
 protected:
  using TFilter = ICIMOperations::TAssociationFilter;

  std::vector<TCIMInstanceData> Associators(const TFilter& filter,
                                            const std::string& id = "W_Bolt-1") {
    std::vector<TCIMInstanceData> found;
    m_operations->Associators(PathTo(id), filter, [&](TCIMInstanceData&& data) {
      found.push_back(std::move(data));
      return true;
    });
    return found;
  }
};

TEST_F(AssociationOperationsTest, UnsetFiltersAreNullAndSetOnesAreHandedOn) {
  EXPECT_EQ(NoteOf(Associators({}).at(0)), "- - - -");
  EXPECT_EQ(NoteOf(Associators({"W_Fits", "W_Part", "Left", "Right"}).at(0)),
            "W_Fits W_Part Left Right");
}

TEST_F(AssociationOperationsTest, ResultsOfOtherClassesAreLeftOut) {
  const auto found = Associators({"", "W_Nut", "", ""});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].path.GetPath(), "root/cimv2:W_Nut.Id=\"W_Nut-1\"");
  const auto names = m_operations->AssociatorNames(PathTo("W_Bolt-1"), {"", "W_Bolt", "", ""});
  ASSERT_EQ(names.size(), 1U);
  EXPECT_EQ(names[0].GetClassName(), "W_Bolt");
}

TEST_F(AssociationOperationsTest, AnAssociationOfAnotherKindAsksNobody) {
  EXPECT_TRUE(Associators({"W_Tool", "", "", ""}).empty());
  EXPECT_TRUE(m_operations->ReferenceNames(PathTo("x"), {"", "W_Tool", "", ""}).empty());
}

TEST_F(AssociationOperationsTest, AnObjectThatTheAssociationCannotReferToAsksNobody) {
  const TCIMReference tool("root/cimv2", "W_Tool", {{"Number", TCIMValue::UInt16(1)}});
  EXPECT_TRUE(m_operations->AssociatorNames(tool, {}).empty());
}

TEST_F(AssociationOperationsTest, AReferenceIsKeyedByItsEnds) {
  std::vector<TCIMInstanceData> found;
  m_operations->References(PathTo("W_Bolt-1"), {}, [&](TCIMInstanceData&& data) {
    found.push_back(std::move(data));
    return true;
  });
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].path.GetClassName(), "W_Fits");
  ASSERT_EQ(found[0].path.GetKeys().size(), 2U);
  const auto left = static_cast<TCIMReference>(*found[0].path.FindKey("Left"));
  EXPECT_EQ(left.GetPath(), PathTo("W_Bolt-1").GetPath());
  const auto names = m_operations->ReferenceNames(PathTo("W_Bolt-1"), {"", "W_Fits", "Left", ""});
  ASSERT_EQ(names.size(), 1U);
  EXPECT_EQ(names[0].GetPath(), found[0].path.GetPath());
}

TEST_F(AssociationOperationsTest, TheSinkEndsTheWalk) {
  int count = 0;
  m_operations->Associators(PathTo("W_Bolt-1"), {}, [&](TCIMInstanceData&&) {
    ++count;
    return false;
  });
  EXPECT_EQ(count, 1);
}

TEST_F(AssociationOperationsTest, AFailureHasTheProvidersWords) {
  const TQELException failure = Failure([&] { Associators({}, "fails"); });
  EXPECT_EQ(failure.GetCIMStatus(), 1U);
  EXPECT_NE(std::string(failure.what()).find("nothing fits"), std::string::npos);
}

}  // namespace
}  // namespace NZEPQEL20
