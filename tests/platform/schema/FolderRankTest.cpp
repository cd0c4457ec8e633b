// SPDX-License-Identifier: Apache-2.0
// Files of several folders that declare the same: those of the folder that was named first hold.
#include <gmock/gmock.h>

#include "platform/schema/SchemaLoad.h"
#include "tests/platform/schema/SchemaSupport.h"

namespace schematest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FolderRankTest : public ::testing::Test {
 protected:
  /// Adds a file below one of the folders "schema", "a" and "b", which hold in this order.
  std::string Add(const std::string& name, const std::string& mof) {
    m_inputs.files.push_back(m_folder.Write(name, mof));
    return m_inputs.files.back();
  }
  NZEPQEL20::TLoadedSchema Load() {
    for (const char* name : {"/schema", "/a", "/b"}) {
      m_inputs.folders.push_back(m_folder.GetPath() + name);
    }
    return NZEPQEL20::LoadSchema(m_inputs, m_place);
  }

  TFolder m_folder;
  NZEPQEL20::TSchemaInputs m_inputs;
  NZEPQEL20::TSchemaCachePlace m_place;
};

TEST_F(FolderRankTest, TheFirstFoldersClassesHoldWithOneWarningForEachFile) {
  const std::string schema = Add("schema/s.mof", "class T_S { };\nclass T_R { };\n");
  const std::string a = Add("a/a.mof", "class T_A : T_S { };");
  const std::string b =
      Add("b/b.mof", "class T_A { };\nclass T_S { uint8 n; };\nclass T_R : T_A { };");
  m_place.folders = {m_folder.GetPath() + "/cache"};
  m_place.fileName = "x.cache";
  m_place.leastSize = 0;
  for (const bool isFromCache : {false, true}) {
    m_inputs.folders.clear();
    const NZEPQEL20::TLoadedSchema loaded = Load();
    EXPECT_EQ(loaded.isFromCache, isFromCache);
    EXPECT_THAT(Lines(loaded.problems),
                ElementsAre(b + ":1:7: warning: class T_A differs from its declaration at " + a +
                            ":1, which holds; this one is left out, and so are 2 more classes"));
    EXPECT_TRUE(loaded.classes->IsA("T_A", "T_S"));
    EXPECT_THAT(loaded.classes->Find("T_S")->properties, IsEmpty());
    ASSERT_EQ(loaded.leftOut.size(), 3U);
    EXPECT_EQ(loaded.leftOut[1].name, "T_S");
    EXPECT_EQ(loaded.leftOut[1].file, b);
    EXPECT_EQ(loaded.leftOut[1].holder, schema);
  }
}

TEST_F(FolderRankTest, TheSameDeclarationIsSilent) {
  Add("schema/s.mof", "class T_S { uint8 n; };");
  Add("a/a.mof", "class T_S { uint8 n; };");
  const NZEPQEL20::TLoadedSchema loaded = Load();
  EXPECT_THAT(loaded.problems, IsEmpty());
  EXPECT_THAT(loaded.leftOut, IsEmpty());
}

TEST_F(FolderRankTest, WithinAFolderTheLaterFileHolds) {
  Add("schema/s.mof", "class T_S { };");
  Add("schema/full/s.mof", "class T_S { uint8 n; };");
  EXPECT_EQ(Load().classes->Find("T_S")->properties.size(), 1U);
}

TEST_F(FolderRankTest, WhatIsReadLaterHoldsAllTheSameFromAnEarlierFolder) {
  const std::string b = Add("b/b.mof", "class T_S { uint8 n; };");
  const std::string schema = Add("schema/s.mof", "class T_S { };");
  const NZEPQEL20::TLoadedSchema loaded = Load();
  EXPECT_THAT(loaded.classes->Find("T_S")->properties, IsEmpty());
  EXPECT_THAT(Lines(loaded.problems),
              ElementsAre(b + ":1:7: warning: class T_S differs from its declaration at " + schema +
                          ":1, which holds; this one is left out"));
}

TEST_F(FolderRankTest, AnIncludedFileCountsWhereItLies) {
  m_folder.Write("a/a.mof", "class T_A { };");
  Add("b/b.mof", "#pragma include (\"../a/a.mof\")\nclass T_A { uint8 n; };");
  EXPECT_THAT(Load().classes->Find("T_A")->properties, IsEmpty());
}

TEST_F(FolderRankTest, ALoopIsCutInTheLastFolder) {
  const std::string schema = Add("schema/s.mof", "class T_S : T_B { };");
  const std::string b = Add("b/b.mof", "class T_B : T_S { };");
  const NZEPQEL20::TLoadedSchema loaded = Load();
  EXPECT_THAT(Lines(loaded.problems),
              ElementsAre(b + ":1:7: class T_B: its superclass T_S at " + schema +
                          ":1 derives from it; it is taken without a superclass"));
  EXPECT_TRUE(loaded.classes->IsComplete("T_S"));
  EXPECT_FALSE(loaded.classes->IsA("T_B", "T_S"));
}

TEST_F(FolderRankTest, ALoopWithinAFolderIsThatFoldersFault) {
  Add("schema/s.mof", "class T_S { };");
  const std::string b = Add("b/b.mof", "class T_B : T_C { };\nclass T_C : T_B { };");
  EXPECT_THAT(Lines(Load().problems),
              ElementsAre(b + ":1:7: the superclasses of class T_B form a loop",
                          b + ":2:7: the superclasses of class T_C form a loop"));
}

TEST_F(FolderRankTest, ASuperclassThatDoesNotFitIsTheFaultOfItsOwnFile) {
  const std::string schema = Add("schema/s.mof", "class T_S : T_B {\nuint8 n; };");
  const std::string b = Add("b/b.mof", "class T_B { string n; };");
  EXPECT_THAT(
      Lines(Load().problems),
      ElementsAre(b + ":1:20: property n of class T_B is string, but uint8 in class T_S at " +
                  schema + ":2"));
}

TEST_F(FolderRankTest, TooManySuperclassesAreTheFaultOfTheLastFolder) {
  Add("schema/s.mof", "class T_S : T_B0 { };");
  std::string chain;
  for (unsigned int i = 0; i + 1 < TClassRepository::kMaxInheritance; ++i) {
    chain += "class T_B" + std::to_string(i) + " : T_B" + std::to_string(i + 1) + " { };\n";
  }
  const std::string b = Add("b/b.mof", chain + "class T_B63 { };\n");
  const std::vector<std::string> lines = Lines(Load().problems);
  EXPECT_THAT(lines, ElementsAre(b + ":1:7: class T_S has more than 63 superclasses"));
}

TEST_F(FolderRankTest, AQualifierOfAFolderCountsInItsFilesOnly) {
  Add("a/a.mof", "Qualifier Mine : uint8 = 7, Scope(any);\nclass T_A { [Mine] string n; };");
  const std::string b = Add("b/b.mof", "class T_B { [Mine] string n; };");
  const NZEPQEL20::TLoadedSchema loaded = Load();
  EXPECT_THAT(Lines(loaded.problems),
              ElementsAre(b + ":1:14: warning: qualifier Mine is not declared"));
  EXPECT_EQ(*FindValue(loaded.classes->Find("T_A")->properties[0].qualifiers, "Mine"),
            TCIMValue::Unsigned(ECIMType::kUInt8, 7));
  EXPECT_EQ(*FindValue(loaded.classes->Find("T_B")->properties[0].qualifiers, "Mine"),
            TCIMValue::Boolean(true));
}

TEST_F(FolderRankTest, AStandardQualifierKeepsItsType) {
  const std::string a =
      Add("a/a.mof", "Qualifier Key : string, Scope(property);\nclass T_A { [Key] string n; };");
  Add("b/b.mof", "class T_B { [Key] string n; };");
  const NZEPQEL20::TLoadedSchema loaded = Load();
  EXPECT_THAT(Lines(loaded.problems),
              ElementsAre(a + ":1:11: warning: qualifier Key has another type in the schema; this "
                              "declaration is left out"));
  EXPECT_TRUE(loaded.classes->Find("T_A")->properties[0].isKey);
  EXPECT_TRUE(loaded.classes->Find("T_B")->properties[0].isKey);
}

}  // namespace
}  // namespace schematest
