// SPDX-License-Identifier: Apache-2.0
// What vendors write because their compilers let it pass.
#include "tests/platform/schema/SchemaSupport.h"

namespace {

using namespace schematest;

struct TVendorRow {
  const char* name;
  const char* mof;
  const char* warning;
};
void PrintTo(const TVendorRow& row, std::ostream* out) {
  *out << row.name;
}

class MofVendorTest : public ::testing::TestWithParam<TVendorRow> {};

TEST_P(MofVendorTest, IsTakenWithOneWarning) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository, GetParam().mof),
            TLines{std::string("t.mof:1:") + GetParam().warning});
}

INSTANTIATE_TEST_SUITE_P(
    Oddities, MofVendorTest,
    ::testing::Values(
        TVendorRow{"RealVersion", "[Version(2.0)] class A_B { };",
                   "10: warning: qualifier Version: 2.000000 is not a value of type string; it is "
                   "taken as one"},
        TVendorRow{"NumberText", "class A_B { uint16 b = \"5\"; };",
                   "24: warning: default of property b: \"5\" is not a value of type uint16; it is "
                   "taken as one"},
        TVendorRow{"BooleanNumber", "class A_B { boolean b = 1; };",
                   "25: warning: default of property b: 1 is not a value of type boolean; it is "
                   "taken as one"},
        TVendorRow{"NoQualifiers", "[] class A_B { };",
                   "2: warning: '[' and ']' with no qualifier between them"},
        TVendorRow{"StraySemicolon", "class A_B { uint8 a;; uint8 b; };",
                   "21: warning: ';' without a feature"},
        TVendorRow{"EqualsForParentheses", "[Version = \"2\"] class A_B { };",
                   "10: warning: '=' before the value of qualifier Version, where parentheses "
                   "belong"},
        TVendorRow{"TwoLists", "[Abstract] [Version(\"1\")] class A_B { };",
                   "12: warning: a second '[' before one element; its qualifiers are added"},
        TVendorRow{"EmptyParentheses", "[Description ( )] class A_B { };",
                   "16: warning: no value between the parentheses of qualifier Description"},
        TVendorRow{"BareWord", "class A_B { [ArrayType(Indexed)] uint8 p[]; };",
                   "24: warning: a word without quotation marks; it is taken as a string"},
        TVendorRow{"BooleanForTexts", "class A_B { [Deprecated(TRUE)] uint8 p; };",
                   "25: warning: qualifier Deprecated: TRUE is not a value of type string; it is "
                   "taken as one"},
        TVendorRow{"TextForBoolean", "class A_B { [Key(\"TRUE\")] uint8 p; };",
                   "18: warning: qualifier Key: \"TRUE\" is not a value of type boolean; it is "
                   "taken as one"},
        TVendorRow{"BooleanText", "class A_B { boolean b = \"False\"; };",
                   "25: warning: default of property b: \"False\" is not a value of type boolean; "
                   "it is taken as one"},
        TVendorRow{"FlavorFirst", "Qualifier Q : uint32 = 5, Flavor(ToSubclass), Scope(class);",
                   "27: warning: Flavor stands before Scope"}),
    [](const auto& row) { return row.param.name; });

TEST(MofVendorValuesTest, TheMendedValuesHaveTheDeclaredTypes) {
  TClassRepository repository;
  LoadLines(repository,
            "[Version(2.0)] class A_B { [Key] string k; uint16 n = \"5\"; sint8 m = \"-7\"; "
            "boolean t = 1; boolean f = 0; string s = 5; uint8 l[] = 3;"
            "[ValueMap{0,1}, Values{\"a\",\"b\"}] uint16 v; };");
  const auto declaration = repository.Find("A_B");
  ASSERT_NE(declaration, nullptr);
  EXPECT_EQ(*FindValue(declaration->qualifiers, "Version"), TCIMValue("2.0"));
  EXPECT_EQ(declaration->FindProperty("n")->defaultValue, TCIMValue::UInt16(5));
  EXPECT_EQ(declaration->FindProperty("m")->defaultValue.ToString(10), "-7");
  EXPECT_EQ(declaration->FindProperty("t")->defaultValue, TCIMValue::Boolean(true));
  EXPECT_EQ(declaration->FindProperty("f")->defaultValue, TCIMValue::Boolean(false));
  EXPECT_EQ(declaration->FindProperty("s")->defaultValue, TCIMValue("5"));
  EXPECT_TRUE(declaration->FindProperty("l")->defaultValue.IsArray());
  EXPECT_EQ(declaration->FindProperty("v")->valueMap, (TLines{"0", "1"}));
}

TEST(MofVendorValuesTest, OddQualifiersHaveTheMeaningOfThoseThatTheyStandFor) {
  TClassRepository repository;
  const TLines lines = LoadLines(repository,
                                 "[Abstract = TRUE] [Version(\"1\")] class A_B { [Key(\"true\")] "
                                 "[Write = true, Description()] "
                                 "string k; [ArrayType(Indexed), Values { Yes, \"No\" }] uint8 "
                                 "n[]; [Deprecated(TRUE)] boolean "
                                 "o = \"TRUE\"; };");
  EXPECT_EQ(lines.size(), 10U) << ::testing::PrintToString(lines);
  const auto declaration = repository.Find("A_B");
  ASSERT_NE(declaration, nullptr);
  EXPECT_TRUE(declaration->isAbstract);
  EXPECT_EQ(*FindValue(declaration->qualifiers, "Version"), TCIMValue("1"));
  const auto& properties = declaration->properties;
  ASSERT_EQ(properties.size(), 3U);
  EXPECT_TRUE(properties[0].isKey);
  EXPECT_EQ(*FindValue(properties[0].qualifiers, "Write"), TCIMValue::Boolean(true));
  EXPECT_TRUE(FindValue(properties[0].qualifiers, "Description")->IsNull());
  EXPECT_EQ(*FindValue(properties[1].qualifiers, "ArrayType"), TCIMValue("Indexed"));
  EXPECT_EQ(properties[1].values, (TLines{"Yes", "No"}));
  EXPECT_EQ(FindValue(properties[2].qualifiers, "Deprecated")->ToString(10), "TRUE");
  EXPECT_EQ(properties[2].defaultValue, TCIMValue::Boolean(true));
}

struct TUnmended {
  const char* name;
  const char* property;
};
void PrintTo(const TUnmended& row, std::ostream* out) {
  *out << row.name;
}

class MofUnmendedTest : public ::testing::TestWithParam<TUnmended> {};

TEST_P(MofUnmendedTest, StaysAnErrorAndHasNoDefault) {
  TClassRepository repository;
  const TLines lines =
      LoadLines(repository, std::string("class A_B { ") + GetParam().property + "; };");
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].find("warning"), std::string::npos) << lines[0];
  EXPECT_TRUE(repository.Find("A_B")->FindProperty("p")->defaultValue.IsNull());
}

INSTANTIATE_TEST_SUITE_P(
    Values, MofUnmendedTest,
    ::testing::Values(TUnmended{"TooLarge", "uint8 p = \"300\""},
                      TUnmended{"NegativeUnsigned", "uint8 p = \"-1\""},
                      TUnmended{"NoNumber", "uint8 p = \"5x\""},
                      TUnmended{"Empty", "uint8 p = \"\""}, TUnmended{"Two", "boolean p = 2"},
                      TUnmended{"TooManyDigits", "uint64 p = \"99999999999999999999\""},
                      TUnmended{"BooleanText", "string p = true"}),
    [](const auto& row) { return row.param.name; });

TEST(MofVendorValuesTest, AnInstanceTakesThemToo) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository,
                      "class A_B { [Key] string k; string l[]; uint8 n; };\n"
                      "instance of A_B { k = \"x\"; l = \"one\"; n = \"4\";; };"),
            TLines{"t.mof:2:47: warning: ';' without a property"});
  for (const std::string& line : Lines(repository.Check())) {
    EXPECT_NE(line.find("warning: "), std::string::npos) << line;
  }
  const auto instances = repository.GetInstances();
  ASSERT_EQ(instances.size(), 1U);
  EXPECT_EQ(instances[0].Find("n")->value.ToString(10), "4");
  EXPECT_TRUE(instances[0].Find("l")->value.IsArray());
}

/// A vendor's folder beside a schema.
class MofVendorIncludeTest : public ::testing::Test {
 protected:
  TLines Load(const std::string& include) {
    TClassRepository repository;
    repository.AddSearchPath(m_folder.GetPath() + "/schema");
    repository.AddSearchPath(m_folder.GetPath() + "/acme");
    repository.Load(m_folder.Write("schema/core.mof", "class CIM_Test { };"));
    return Lines(repository.Load(
        m_folder.Write("acme/a.mof", "#pragma include (\"" + include + "\")\nclass A_B { };")));
  }

  TFolder m_folder;
};

TEST_F(MofVendorIncludeTest, WhatTheSchemaHasNeedNotBeShipped) {
  for (const char* known : {"CIM_Test.mof", "cim/cim_test.MOF", "qualifiers.mof",
                            "qualifiers_optional.mof", "Core.mof"}) {
    EXPECT_EQ(Load(known), TLines()) << known;
  }
}

TEST_F(MofVendorIncludeTest, WhatNobodyHasIsAnError) {
  const TLines lines = Load("CIM_Gone.mof");
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_NE(lines[0].find("include \"CIM_Gone.mof\": No such file"), std::string::npos);
}

TEST_F(MofVendorIncludeTest, AFileThatIsThereAndCannotBeReadIsAnError) {
  std::filesystem::create_directories(m_folder.GetPath() + "/acme/CIM_Test.mof");
  EXPECT_EQ(Load("CIM_Test.mof").size(), 1U);
}

TEST_F(MofVendorIncludeTest, TheSchemaItselfLacksWhatItIncludes) {
  TClassRepository repository;
  repository.AddSearchPath(m_folder.GetPath() + "/schema");
  EXPECT_EQ(repository
                .Load(m_folder.Write("schema/all.mof",
                                     "class CIM_Test { };\n#pragma include (\"CIM_Test.mof\")\n"))
                .size(),
            1U);
}

}  // namespace
