// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/schema/SchemaSupport.h"

namespace {

using namespace schematest;

TEST(MofDeviationTest, TypesKeywordsAndQualifiersAreReadInAnyCase) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(
          repository,
          "[ASSOCIATION] CLASS A_B : A_A { [KEY] A_A Ref R; Uint32 u; dateTime d; Boolean b = "
          "True; uint8 F([in(FALSE), OUT] String s); };"
          "[association] class A_A { };"),
      TLines());
  const auto declaration = repository.Find("a_b");
  ASSERT_NE(declaration, nullptr);
  EXPECT_TRUE(declaration->isAssociation);
  EXPECT_EQ(declaration->qualifiers.at(0).name, "Association");
  EXPECT_TRUE(declaration->properties.at(0).isKey);
  EXPECT_EQ(declaration->properties[0].referenceClass, "A_A");
  EXPECT_EQ(declaration->properties[0].qualifiers.at(0).name, "Key");
  EXPECT_EQ(declaration->properties[1].type, ECIMType::kUInt32);
  EXPECT_EQ(declaration->properties[2].type, ECIMType::kDateTime);
  EXPECT_EQ(declaration->properties[3].defaultValue, TCIMValue::Boolean(true));
  EXPECT_FALSE(declaration->methods.at(0).parameters.at(0).isIn);
  EXPECT_TRUE(declaration->methods[0].parameters[0].isOut);
}

TEST(MofDeviationTest, KeywordsMayBeNames) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository,
                      "[Schema(\"x\")] class A_B { string Reference; uint8 class; uint8 instance; "
                      "uint8 ref; uint8 string; string uint8; A_B ref any; uint8 qualifier; uint8 "
                      "Indication(uint8 of, A_B REF ref[]); };"
                      "instance of A_B { class = 1; instance = 2; qualifier = 3; };"),
            TLines());
  const auto declaration = repository.Find("A_B");
  ASSERT_EQ(declaration->properties.size(), 8U);
  EXPECT_EQ(declaration->properties[6].type, ECIMType::kReference);
  ASSERT_EQ(declaration->methods.at(0).parameters.size(), 2U);
  EXPECT_TRUE(declaration->methods[0].parameters[1].isArray);
  EXPECT_EQ(repository.GetInstances().size(), 1U);
}

TEST(MofDeviationTest, QualifierValuesComeInParenthesesOrBraces) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository,
                      "class A_B { [Key(true), Write(true), ValueMap(\"1\"), Values({\"one\"}), "
                      "Deprecated] uint8 p; [Description{\"d\"}, MaxLen(4)] string q; };"),
            TLines());
  const auto declaration = repository.Find("A_B");
  EXPECT_TRUE(declaration->properties[0].isKey);
  EXPECT_EQ(declaration->properties[0].valueMap, TLines{"1"});
  EXPECT_EQ(declaration->properties[0].values, TLines{"one"});
  EXPECT_TRUE(FindValue(declaration->properties[0].qualifiers, "Deprecated")->IsNull());
  EXPECT_EQ(*FindValue(declaration->properties[1].qualifiers, "Description"), TCIMValue("d"));
  EXPECT_EQ(*FindValue(declaration->properties[1].qualifiers, "MaxLen"), TCIMValue::UInt32(4));
}

TEST(MofDeviationTest, InlineFlavorsAreRead) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(repository,
                "class A_A { [Key : DisableOverride ToInstance, Description(\"d\") : Restricted "
                "Translatable, Units(\"u\") : Amended NotToInstance loud] uint8 p; };"
                "class A_B : A_A { [Override(\"p\")] uint8 p; };"),
      TLines{"t.mof:1:127: warning: unknown flavor 'loud' is ignored"});
  const auto& qualifiers = repository.Find("A_B")->properties.at(0).qualifiers;
  EXPECT_EQ(FindValue(qualifiers, "Description"), nullptr);
  EXPECT_NE(FindValue(qualifiers, "Units"), nullptr);
}

TEST(MofDeviationTest, PairsOfValuesGoUpToTheShorterList) {
  TClassRepository repository;
  const TLines lines = LoadLines(
      repository,
      "class A_B { [ValueMap{\"1\",\"2\",\"3\"}, Values{\"a\",\"b\"}] uint8 p;\n"
      "[ValueMap{\"1\"}] uint8 q; [ValueMap{\"x\"}] string r; [Values{\"n\",\"m\"}] uint8 s; };");
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(
      lines[0],
      "t.mof:1:60: warning: ValueMap of p has 3 entries and Values has 2; the pairs are used");
  EXPECT_EQ(
      lines[1],
      "t.mof:2:23: warning: ValueMap of q has 1 entries and Values has 0; the pairs are used");
  const auto declaration = repository.Find("A_B");
  EXPECT_EQ(declaration->properties[0].valueMap, (TLines{"1", "2"}));
  EXPECT_EQ(declaration->properties[0].values, (TLines{"a", "b"}));
  EXPECT_EQ(declaration->properties[1].valueMap, TLines());
  EXPECT_EQ(declaration->properties[3].valueMap, (TLines{"0", "1"}));
}

TEST(MofDeviationTest, CommasTooManyAndSemicolonsTooFewAreWarnedOf) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository,
                      "class A_B { [Values{\"a\", }, ] uint8 p; }\n"
                      "class A_C { }\n#pragma locale (\"en_US\")\n"
                      "instance of A_B { p = 1; }\n[Abstract] class A_D { }"),
            (TLines{"t.mof:1:26: warning: ',' behind the last element of the array",
                    "t.mof:1:29: warning: ',' behind the last qualifier",
                    "t.mof:2:1: warning: ';' is missing after class A_B",
                    "t.mof:3:1: warning: ';' is missing after class A_C",
                    "t.mof:5:1: warning: ';' is missing after the instance of A_B",
                    "t.mof:5:25: warning: ';' is missing after class A_D"}));
  EXPECT_EQ(repository.GetCount(), 3U);
  EXPECT_TRUE(repository.Find("A_D")->isAbstract);
}

TEST(MofDeviationTest, ARepeatedQualifierIsWarnedOfAndTheLastOneHolds) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository, "[Version(\"1\"), VERSION(\"2\")] class A_B { };"),
            TLines{"t.mof:1:16: warning: qualifier VERSION is given twice; the last one holds"});
  EXPECT_EQ(*FindValue(repository.Find("A_B")->qualifiers, "Version"), TCIMValue("2"));
}

TEST(MofDeviationTest, UndeclaredQualifiersAreGuessedAndWarnedOfOnce) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository, "[Foo, Bar(3), Baz{\"x\"}] class A_B { [foo(-1)] uint8 p; };"),
            (TLines{"t.mof:1:2: warning: qualifier Foo is not declared",
                    "t.mof:1:7: warning: qualifier Bar is not declared",
                    "t.mof:1:15: warning: qualifier Baz is not declared"}));
  const auto& qualifiers = repository.Find("A_B")->qualifiers;
  EXPECT_EQ(*FindValue(qualifiers, "Foo"), TCIMValue::Boolean(true));
  EXPECT_EQ(*FindValue(qualifiers, "Bar"), TCIMValue::Unsigned(ECIMType::kUInt64, 3));
  EXPECT_EQ(FindValue(qualifiers, "Baz")->ToString(10), "x");
}

TEST(MofDeviationTest, MaxValueMayExceedItsType) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository, "class A_B { [MaxValue(18446744073709551615)] uint64 p; };"),
            TLines());
  EXPECT_EQ(
      FindValue(repository.Find("A_B")->properties.at(0).qualifiers, "MaxValue")->ToString(10),
      "18446744073709551615");
}

TEST(MofDeviationTest, ReferenceDefaultsThatAreNoPathsStayText) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(repository,
                "[Association] class A_B { A_B REF r = \"A_B.k=\\\"v\\\"\"; A_B REF s = \"=\"; };")
          .size(),
      1U);
  const auto declaration = repository.Find("A_B");
  EXPECT_EQ(declaration->properties[0].defaultValue.GetType(), ECIMType::kReference);
  EXPECT_EQ(declaration->properties[1].defaultValue, TCIMValue("="));
}

TEST(MofDeviationTest, EveryEncodingAndLineEndIsRead) {
  const std::string mof = "class A_B {\r\n\tstring p = \"x\";\r}; // end\x1A";
  std::string wide;
  for (const char c : "\xFF" + mof) {
    wide += c;
    wide += c == '\xFF' ? '\xFE' : '\0';
  }
  std::string swapped = wide;
  for (std::size_t i = 0; i + 1 < swapped.size(); i += 2) {
    std::swap(swapped[i], swapped[i + 1]);
  }
  for (const std::string& text : {mof, "\xEF\xBB\xBF" + mof, wide, swapped, "\f" + mof}) {
    TClassRepository repository;
    EXPECT_EQ(LoadLines(repository, text), TLines());
    EXPECT_NE(repository.Find("A_B"), nullptr);
  }
}

TEST(MofDeviationTest, BytesThatAreNotUtf8AreThoseOfWindows) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(repository, "class A_B { string p = \"\x93Q\x94 Acme\x99 5\xB0 \x80 \x81\"; };"),
      TLines());
  EXPECT_EQ(repository.Find("A_B")->properties.at(0).defaultValue,
            TCIMValue("\u201CQ\u201D Acme\u2122 5\u00B0 \u20AC \xC2\x81"));
}

struct TRedeclaredRow {
  const char* name;
  const char* mof;
};
void PrintTo(const TRedeclaredRow& row, std::ostream* out) {
  *out << row.name;
}

class MofRedeclaredTest : public ::testing::TestWithParam<TRedeclaredRow> {};

TEST_P(MofRedeclaredTest, IsNotTheSame) {
  TClassRepository repository;
  const TLines first = LoadLines(
      repository, "class A_B { [Key, Description(\"d\")] uint8 p; uint8 f([In] uint8 q); };");
  EXPECT_EQ(first, TLines());
  TLines lines = LoadLines(repository, GetParam().mof);
  const TLines late = Lines(repository.Check());
  lines.insert(lines.end(), late.begin(), late.end());
  EXPECT_EQ(lines.size(), 1U) << ::testing::PrintToString(lines);
}

INSTANTIATE_TEST_SUITE_P(
    Changes, MofRedeclaredTest,
    ::testing::Values(
        TRedeclaredRow{"OtherValue",
                       "class A_B { [Key, Description(\"e\")] uint8 p; uint8 f([In] uint8 q); };"},
        TRedeclaredRow{"OtherQualifier",
                       "class A_B { [Key, DisplayName(\"d\")] uint8 p; uint8 f([In] uint8 q); };"},
        TRedeclaredRow{"OneLess", "class A_B { [Key] uint8 p; uint8 f([In] uint8 q); };"},
        TRedeclaredRow{"OtherName",
                       "class A_B { [Key, Description(\"d\")] uint8 o; uint8 f([In] uint8 q); };"},
        TRedeclaredRow{
            "OfParameter",
            "class A_B { [Key, Description(\"d\")] uint8 p; uint8 f([Out] uint8 q); };"}),
    [](const auto& row) { return row.param.name; });

TEST(MofDeviationTest, FilesWithoutDeclarationsAreValid) {
  for (const char* text :
       {"", "// only a comment", "/* one\n two */\n//#pragma include (\"x\")", " \t\r\n\x1A"}) {
    TClassRepository repository;
    EXPECT_EQ(LoadLines(repository, text), TLines()) << text;
    EXPECT_EQ(repository.GetCount(), 0U);
  }
}

TEST(MofDeviationTest, DeclaredQualifiersReplaceTheStandardOnes) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(
          repository,
          "Qualifier version : uint32[4] = { 1 }, Scope(class, any), Flavor(DisableOverride);\n"
          "[Version] class A_B { };\n"
          "Qualifier version : uint32[4] = { 1 }, Scope(any), Flavor(DisableOverride);\n"
          "Qualifier Version : string = null, Scope(class);"),
      TLines{"t.mof:4:11: warning: qualifier Version is declared again, differently; the last "
             "one holds"});
  EXPECT_EQ(FindValue(repository.Find("A_B")->qualifiers, "version")->ToString(10), "1");
}

}  // namespace
