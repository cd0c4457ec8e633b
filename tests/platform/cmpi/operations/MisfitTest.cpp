// SPDX-License-Identifier: Apache-2.0
//
// Answers of providers that do not fit what the MOF declares.
#include <gmock/gmock.h>
#include <pwd.h>
#include <unistd.h>

#include <filesystem>

#include "platform/cmpi/TCMPIOperations.h"
#include "platform/contract/TQELException.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20 {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class MisfitTest : public testing::Test {
 protected:
  /// Things and what joins them, by one provider.
  void Open(const std::string& provider) {
    std::filesystem::create_symlink(WORKSHOP_DIR "/libmisfit.so", m_folder.GetPath("libmisfit.so"));
    const std::string rest = " root/x " + provider + " misfit instance\n";
    const std::string file = m_folder.Write("m.registration", "M_Thing" + rest + "M_Joins" + rest);
    auto classes = std::make_shared<TClassRepository>();
    ASSERT_THAT(classes->Load(WORKSHOP_DIR "/misfit.mof"), IsEmpty());
    TRegistrations registrations;
    registrations.Load(file);
    m_operations = std::make_unique<TCMPIOperations>(classes, registrations);
  }
  std::vector<TCIMInstanceData> Enumerate(const std::string& className) {
    std::vector<TCIMInstanceData> found;
    m_operations->EnumerateInstances("root/x", className, [&found](TCIMInstanceData&& data) {
      found.push_back(std::move(data));
      return true;
    });
    return found;
  }
  TCIMValue Get(const std::string& property) {
    const TCIMReference path("root/x", "M_Thing", {{"Id", TCIMValue("T1")}});
    return m_operations->GetInstance(path).Find(property)->value;
  }

  const TTemporaryFolder m_folder;
  std::unique_ptr<TCMPIOperations> m_operations;
};

TEST_F(MisfitTest, ATextThatIsANumberIsOne) {
  Open("Misfit_7");
  EXPECT_EQ(Get("Level"), TCIMValue::UInt16(7));
  EXPECT_EQ(Get("Count"), TCIMValue::UInt32(12));
  EXPECT_EQ(Get("When"), TCIMValue::DateTime("20260102030405.000000+000"));
}

TEST_F(MisfitTest, AWordOfValuesIsItsNumber) {
  Open("Misfit_high");
  EXPECT_EQ(Get("Level"), TCIMValue::UInt16(9));
}

TEST_F(MisfitTest, AScalarIsAnArrayOfOne) {
  Open("Misfit_7");
  EXPECT_EQ(Get("Kinds"), TCIMValue::Array(ECIMType::kUInt16, {TCIMValue::UInt16(4)}));
}

TEST_F(MisfitTest, WhatCannotBeConvertedIsNullAndOneLineForAllInstances) {
  Open("Misfit_purple");
  const auto things = Enumerate("M_Thing");
  ASSERT_EQ(things.size(), 2U);
  for (const TCIMInstanceData& thing : things) {
    EXPECT_EQ(thing.Find("Level")->value, TCIMValue::Null(ECIMType::kUInt16));
    EXPECT_EQ(thing.Find("Number")->value, TCIMValue::Null(ECIMType::kUInt16)) << "too large";
    EXPECT_EQ(thing.Find("Levels")->value, TCIMValue::Null(ECIMType::kUInt16, true));
  }
  EXPECT_THAT(m_operations->GetProblems(),
              ElementsAre(AllOf(HasSubstr("M_Thing.Level should be a uint16"), HasSubstr("R23")),
                          HasSubstr("M_Thing.Levels should be a uint16 array"),
                          HasSubstr("M_Thing.Number should be a uint16")));
}

TEST_F(MisfitTest, ATextThatIsNotUtf8IsOneOfIso88591) {
  Open("Misfit_0");
  EXPECT_EQ(Get("Note"),
            "Gr\xC3\xBC\xC3\x9F"
            "e aus \xC3\xA4");
}

TEST_F(MisfitTest, TheCallerHasTheNameOfTheEffectiveUser) {
  Open("Misfit_0");
  const std::string name = Get("User").ToString(10);
  ASSERT_NE(name, "");
  const passwd* user = ::getpwuid(::geteuid());
  EXPECT_EQ(name, user == nullptr ? std::to_string(::geteuid()) : user->pw_name);
}

TEST_F(MisfitTest, ReferencesAsTextsAreReferences) {
  Open("Misfit_0");
  const auto links = Enumerate("M_Joins");
  ASSERT_EQ(links.size(), 1U);
  const TCIMValue left = links[0].Find("Left")->value;
  ASSERT_EQ(left.GetType(), ECIMType::kReference);
  EXPECT_EQ(left.ToString(10), "root/far:M_Thing.Id=\"L\"");
  EXPECT_EQ(links[0].Find("Right")->value.ToString(10), "root/x:M_Thing.Id=\"R\"");
  EXPECT_EQ(links[0].path.FindKey("Left")->GetType(), ECIMType::kReference);
  const auto names = m_operations->EnumerateInstanceNames("root/x", "M_Joins");
  ASSERT_EQ(names.size(), 1U);
  EXPECT_EQ(names[0].FindKey("Right")->GetType(), ECIMType::kReference);
  EXPECT_THAT(m_operations->GetProblems(), IsEmpty());
}

TEST_F(MisfitTest, AnObjectIsAssociatedByReferencesThatAreTexts) {
  Open("Misfit_0");
  const TCIMReference left("root/far", "M_Thing", {{"Id", TCIMValue("L")}});
  const TCIMReference right("root/x", "M_Thing", {{"Id", TCIMValue("R")}});
  const auto found = m_operations->AssociatorNames(right, {});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].GetPath(), left.GetPath());
}

TEST_F(MisfitTest, ATextThatIsNoPathIsOneLineThatNamesClassAndProperty) {
  Open("Misfit_Garbage");
  const auto links = Enumerate("M_Joins");
  ASSERT_EQ(links.size(), 1U);
  EXPECT_TRUE(links[0].Find("Left")->value.IsNull());
  EXPECT_THAT(m_operations->GetProblems(),
              ElementsAre(AllOf(HasSubstr("M_Joins.Left should be a reference"),
                                HasSubstr("under the left rug"))));
}

TEST_F(MisfitTest, OkWithNothingIsNotFoundAndNamesTheProvider) {
  Open("Misfit_Silent");
  for (const char* property : {"Level", "Count"}) {
    try {
      Get(property);
      ADD_FAILURE() << "found";
    } catch (const TQELException& failure) {
      EXPECT_EQ(failure.GetCIMStatus(), 6U);
    }
  }
  EXPECT_THAT(m_operations->GetProblems(),
              ElementsAre(AllOf(HasSubstr("provider Misfit_Silent"), HasSubstr("libmisfit.so"),
                                HasSubstr("answered OK and returned no instance"))));
}

}  // namespace
}  // namespace NZEPQEL20
