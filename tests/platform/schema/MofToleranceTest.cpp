// SPDX-License-Identifier: Apache-2.0
// What real files hold beside the rules: it is read, and the class is what its author meant.
#include <algorithm>
#include <sstream>

#include "tests/platform/schema/SchemaSupport.h"

namespace {

using namespace schematest;

struct TAcceptedRow {
  const char* name;
  std::string mof;
  std::vector<const char*> warnings = {};  ///< Each in one line; nothing else is reported.
};
void PrintTo(const TAcceptedRow& row, std::ostream* out) {
  *out << row.name;
}

class MofAcceptedTest : public ::testing::TestWithParam<TAcceptedRow> {};

TEST_P(MofAcceptedTest, IsReadAndSoIsWhatFollows) {
  TClassRepository repository;
  TLines lines = LoadLines(repository, GetParam().mof + "\nclass A_Last : A_B { uint8 last; };");
  const TLines late = Lines(repository.Check());
  lines.insert(lines.end(), late.begin(), late.end());
  ASSERT_EQ(lines.size(), GetParam().warnings.size()) << ::testing::PrintToString(lines);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_NE(lines[i].find(std::string("warning: ") + GetParam().warnings[i]), std::string::npos)
        << lines[i];
  }
  const auto declaration = repository.Find("A_B");
  ASSERT_NE(declaration, nullptr);
  EXPECT_TRUE(std::any_of(declaration->properties.begin(), declaration->properties.end(),
                          [](const auto& property) { return property.name == "p"; }));
  ASSERT_NE(repository.Find("A_Last"), nullptr);
  EXPECT_NE(repository.Find("A_Last")->FindProperty("last"), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Classes, MofAcceptedTest,
    ::testing::Values(
        TAcceptedRow{"Alias", "class A_B as $Alias { uint8 p; };"},
        TAcceptedRow{"AliasAndSuperclass", "class A_A { };class A_B AS $A : A_A { uint8 p; };"},
        TAcceptedRow{"NoUnderscore", "class B { };class A_B : B { uint8 p; };"},
        TAcceptedRow{"SystemName", "class __A { };class A_B : __A { uint8 p; };"},
        TAcceptedRow{"DollarInName", "class A_B$1 { };class A_B : A_B$1 { uint8 p; };"},
        TAcceptedRow{"NamesBeyondAscii",
                     "class A_\xC3\xA9 { };class A_B : A_\xC3\xA9 { uint8 p; };"},
        TAcceptedRow{"MarkInFront",
                     "\xEF\xBB\xBF\xEF\xBB\xBF"
                     "class A_B { uint8 p; };"},
        TAcceptedRow{"MarkAmidText",
                     "class A_A { };\n\xEF\xBB\xBF"
                     "class A_B : A_A { uint8 p; };"},
        TAcceptedRow{"NoBreakSpaces",
                     "class\xC2\xA0"
                     "A_B\xC2\xA0{ uint8\xC2\xA0p = 5\xC2\xA0;\xC2\xA0};"},
        TAcceptedRow{"NoBreakSpacesOfOneByte", "class A_B { uint8\xA0p = 5\xA0; };"},
        TAcceptedRow{
            "SameAgain",
            "class A_B { [Description(\"d\"), Key] uint8 p; uint8 f([In, Out] A_B REF q); };"
            "class a_b { [KEY, description(\"d\")] Uint8 P; uint8 F([OUT, in] a_b ref Q); };"},
        TAcceptedRow{"KeywordsAsClasses",
                     "class Class { };class Instance : Class { };class Qualifier : Instance { };"
                     "class A_B : Qualifier { uint8 p; };"},
        TAcceptedRow{"SuperclassBehind", "class A_B : A_Z { uint8 p; };class A_Z { };"},
        TAcceptedRow{"SuperclassGone",
                     "class A_B : A_Gone { uint8 p; };",
                     {"superclass A_Gone of class A_B is not known"}},
        TAcceptedRow{"ForwardReference",
                     "[Association] class A_B { A_Later REF r; uint8 p; }; class A_Later { };"},
        TAcceptedRow{"FeaturesInAnyOrder", "class A_B { uint8 f(); uint8 p; uint8 g(); };"},
        TAcceptedRow{"FixedArray", "class A_B { uint8 p[64]; };"},
        TAcceptedRow{"EmptyArrayDefault", "class A_B { uint8 p[] = { }; };"},
        TAcceptedRow{"ReferenceReturn", "class A_B { uint8 p; A_B REF Get(); };"},
        TAcceptedRow{"ReferenceArrayParameter", "class A_B { uint8 p; uint8 f(A_B REF r[4]); };"},
        TAcceptedRow{"OverrideWithoutQualifier",
                     "class A_A { string p; };class A_B : A_A { string p; };"},
        TAcceptedRow{
            "OverrideOfAnotherClass",
            "class A_A { string p; };class A_B : A_A { [Override(\"A_A.p\")] string p; };"},
        TAcceptedRow{"AssociationNotFirst",
                     "[Version(\"1\"), Association] class A_B { A_B REF r; uint8 p; };"},
        TAcceptedRow{
            "SubclassOfAssociation",
            "[Association] class A_A { A_A REF r; };class A_B : A_A { A_B REF s; uint8 p; };"},
        TAcceptedRow{"SameClassTwice", "class A_B { uint8 p; };class A_B { uint8 p; };"},
        TAcceptedRow{"NoBlanks", "[Key]class A_B{[Key]uint8 p;[Write]string q[]={\"a\"};};"},
        TAcceptedRow{"LongLine", "[Description(\"" + std::string(100'000, 'x') +
                                     "\")] class A_B { uint8 p; };"},
        TAcceptedRow{"StraySemicolon", "class A_B { uint8 p; };;", {"';' without a declaration"}},
        TAcceptedRow{"SemicolonOfAPragma",
                     "#pragma locale(\"en_US\");class A_B { uint8 p; };",
                     {"';' without a declaration"}}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Qualifiers, MofAcceptedTest,
    ::testing::Values(
        TAcceptedRow{"CommentsInLists",
                     "[Version /*a*/ ( // b\n \"1\" /*c*/ ) /*d*/ , // e ]\n Abstract] class A_B { "
                     "uint8 p; };"},
        TAcceptedRow{"OneForMany", "class A_B { [Values(\"a\"), ValueMap(\"1\")] uint8 p; };"},
        TAcceptedRow{
            "BracesInParentheses",
            "class A_B { [Values({\"a\", \"b\"}), ValueMap ( { \"1\", \"2\" } )] uint8 p; };"},
        TAcceptedRow{"ManyForOne", "[Version { \"1\" }] class A_B { uint8 p; };"},
        TAcceptedRow{"NullValue", "[Description(NULL), Deprecated(null)] class A_B { uint8 p; };"},
        TAcceptedRow{"Flavors",
                     "[Key(true) : EnableOverride ToSubclass, Version(\"1\") : Restricted "
                     "ToInstance Translatable] class A_B { uint8 p; };"},
        TAcceptedRow{"DeclaredWithBlanks",
                     "Qualifier Q : string = null, Scope(any), Flavor(EnableOverride ToSubclass);"
                     "[Q(\"x\")] class A_B { uint8 p; };"},
        TAcceptedRow{"DeclaredWithEveryScope",
                     "QUALIFIER Q : BOOLEAN[] , SCOPE(Schema, Class, Association, Indication, "
                     "Qualifier, Property, Reference, Method, Parameter, Any);"
                     "[Q{true}] class A_B { uint8 p; };"},
        TAcceptedRow{"DeclaredTwiceTheSame",
                     "Qualifier Q : uint32 = null, Scope(any);Qualifier q : UINT32 = NULL, "
                     "Scope(class); class A_B { [Q(3)] uint8 p; };"},
        TAcceptedRow{"UsedBeforeItsDeclaration",
                     "[Q] class A_B { uint8 p; };Qualifier Q : boolean = false, Scope(any);",
                     {"qualifier Q is not declared"}},
        TAcceptedRow{"StandardOnesDeclared",
                     "Qualifier Key : boolean = false, Scope(property, reference), "
                     "Flavor(DisableOverride); class A_B { [Key] uint8 p; };"},
        TAcceptedRow{"NameOfAQualifierAsProperty",
                     "class A_B { [Schema(\"s\")] string Reference; uint8 Schema; uint8 p; };"},
        TAcceptedRow{
            "GivenTwice", "class A_B { [Key, Key] uint8 p; };", {"qualifier Key is given"}},
        TAcceptedRow{"ShortValues",
                     "class A_B { [ValueMap{\"1\",\"2\"}, Values{\"a\"}] uint8 p; };",
                     {"ValueMap of p has 2 entries and Values has 1"}},
        TAcceptedRow{"TrailingCommaInDefault",
                     "class A_B { uint8 p[] = { 1, }; };",
                     {"',' behind the last element"}}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Pragmas, MofAcceptedTest,
    ::testing::Values(
        TAcceptedRow{"Locale",
                     "#pragma Locale (\"en_US\")\n#PRAGMA locale(\"de\")\nclass A_B { "
                     "uint8 p; };"},
        TAcceptedRow{"Blanks", "#  pragma\n locale\n(\n\"en_US\"\n)\nclass A_B { uint8 p; };"},
        TAcceptedRow{"OldOnes",
                     "#pragma instancelocale(\"a\")\n#pragma nonlocal(\"a\")\n#pragma "
                     "nonlocaltype(\"a\")\n#pragma source(\"a\")\n#pragma sourcetype(\"a\")\n"
                     "class A_B { uint8 p; };"},
        TAcceptedRow{"UnknownWithout",
                     "#pragma autorecover\nclass A_B { uint8 p; };",
                     {"unknown pragma 'autorecover' is ignored"}},
        TAcceptedRow{"UnknownWithMore",
                     "#pragma deleteclass(\"A_B\", NOFAIL)\nclass A_B { uint8 p; };",
                     {"unknown pragma 'deleteclass' is ignored"}},
        TAcceptedRow{"Commented", "//#pragma include (\"x.mof\")\nclass A_B { uint8 p; };"},
        TAcceptedRow{"InAString", "class A_B { string p = \"#pragma include // /* \"; };"}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Texts, MofAcceptedTest,
    ::testing::Values(
        TAcceptedRow{"NoNewlineAtTheEnd", "class A_B { uint8 p; };\n//"},
        TAcceptedRow{"LoneCarriageReturns", "// comment\rclass A_B {\ruint8 p;\r};\r"},
        TAcceptedRow{"FormFeedsAndTabs", "\f\tclass\tA_B\f{\vuint8\tp;\t};\f"},
        TAcceptedRow{"Latin1", "// \xAE\n[Description(\"\xB0\xAE\")] class A_B { uint8 p; };"},
        TAcceptedRow{"UnknownEscape",
                     "[Description(\"a\\d\")] class A_B { uint8 p; };",
                     {"unknown escape in the string"}},
        TAcceptedRow{"ControlZ", "class A_B { uint8 p; };\n\x1A"}),
    [](const auto& row) { return row.param.name; });

TEST(MofToleranceTest, AllStandardQualifiersAreBuiltIn) {
  // With a value of the type that the standard gives them, none needs a declaration.
  const std::vector<std::pair<const char*, const char*>> kinds = {
      {"",
       "Abstract Aggregate Aggregation Association Composition Counter Delete DN EmbeddedObject "
       "Exception Expensive Experimental Gauge IfDeleted In Indication Invisible IsPUnit Key "
       "Large Octetstring Out Read Required Static Structure Terminal Weak Write"},
      {"(\"x\")",
       "Alias ArrayType Description DisplayDescription DisplayName EmbeddedInstance Nonlocal "
       "NonlocalType NullValue Override Propagated PropertyUsage Provider PUnit Reference Revision "
       "Schema Source SourceType Syntax SyntaxType TriggerType UMLPackagePath Units Version "
       "XMLNamespaceName"},
      {"{\"x\"}",
       "BitMap BitValues ClassConstraint Correlatable Deprecated MappingStrings MethodConstraint "
       "ModelCorrespondence PropertyConstraint UnknownValues UnsupportedValues ValueMap Values"},
      {"(5)", "Max MaxLen MaxValue Min MinLen MinValue"}};
  std::size_t count = 0;
  for (const auto& [value, names] : kinds) {
    std::istringstream words(names);
    for (std::string name; words >> name; ++count) {
      TClassRepository repository;
      EXPECT_EQ(LoadLines(repository, "[" + name + value + "] class A_B { };"), TLines()) << name;
      const auto declaration = repository.Find("A_B");
      ASSERT_EQ(declaration->qualifiers.size(), 1U) << name;
      EXPECT_EQ(declaration->qualifiers[0].value.IsArray(), *value == '{') << name;
      EXPECT_FALSE(declaration->qualifiers[0].value.IsNull()) << name;
    }
  }
  EXPECT_EQ(count, 74U);
}

TEST(MofToleranceTest, QualifiersWithoutAValueHaveTheirDeclaredDefault) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository,
                      "class A_B { [ArrayType, Min, MinLen, MaxLen, PropertyUsage, "
                      "Deprecated, Write, Read, In, Description] uint8 p[]; };"),
            TLines());
  const auto& qualifiers = repository.Find("A_B")->properties.at(0).qualifiers;
  EXPECT_EQ(*FindValue(qualifiers, "ArrayType"), TCIMValue("Bag"));
  EXPECT_EQ(*FindValue(qualifiers, "Min"), TCIMValue::UInt32(0));
  EXPECT_EQ(*FindValue(qualifiers, "MinLen"), TCIMValue::UInt32(0));
  EXPECT_EQ(*FindValue(qualifiers, "MaxLen"), TCIMValue::Null(ECIMType::kUInt32));
  EXPECT_EQ(*FindValue(qualifiers, "PropertyUsage"), TCIMValue("CurrentContext"));
  EXPECT_EQ(*FindValue(qualifiers, "Deprecated"), TCIMValue::Null(ECIMType::kString, true));
  EXPECT_EQ(*FindValue(qualifiers, "Write"), TCIMValue::Boolean(true));
  EXPECT_EQ(*FindValue(qualifiers, "Description"), TCIMValue::Null(ECIMType::kString));
}

TEST(MofToleranceTest, OnlyTheRestrictedOnesAreNotInherited) {
  TClassRepository repository;
  LoadLines(
      repository,
      "[Abstract, Experimental, Deprecated{\"x\"}, Version(\"1\"), Terminal, Revision(\"2\")] "
      "class A_A { [Override(\"p\"), Required, Experimental] uint8 p; };"
      "class A_B : A_A { uint8 p; };");
  const auto declaration = repository.Find("A_B");
  TLines names;
  for (const TCIMQualifier& qualifier : declaration->qualifiers) names.push_back(qualifier.name);
  EXPECT_EQ(names, (TLines{"Terminal", "Revision"}));
  ASSERT_EQ(declaration->properties.at(0).qualifiers.size(), 1U);
  EXPECT_EQ(declaration->properties[0].qualifiers[0].name, "Required");
}

TEST(MofToleranceTest, AnInlineFlavorHoldsOverTheDeclaredOne) {
  TClassRepository repository;
  LoadLines(repository,
            "class A_A { [Description(\"a\") : DisableOverride, Version(\"1\") : ToSubclass] uint8 "
            "p; };class A_B : A_A { [Description(\"b\")] uint8 p; };");
  const auto& qualifiers = repository.Find("A_B")->properties.at(0).qualifiers;
  EXPECT_EQ(*FindValue(qualifiers, "Description"), TCIMValue("a"));
  EXPECT_EQ(*FindValue(qualifiers, "Version"), TCIMValue("1"));
}

TEST(MofToleranceTest, CharactersAreUnitsOfUtf16) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository, R"(class A_B { char16 p[] = { '\xD83D', '\xde00', '\x0', '\xe9',
      '\"', '\\' }; };)"),
            TLines());
  TCIMValue::TArray units;
  for (const unsigned int unit : {0xD83DU, 0xDE00U, 0U, 0xE9U, 0x22U, 0x5CU}) {
    units.push_back(TCIMValue::Char16(static_cast<std::uint16_t>(unit)));
  }
  EXPECT_EQ(repository.Find("A_B")->properties.at(0).defaultValue,
            TCIMValue::Array(ECIMType::kChar16, units));
}

TEST(MofToleranceTest, ClassesWithoutTheirSuperclassTakeInstances) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository,
                      "class V_System : CIM_ComputerSystem { [Key] string Id; uint16 Slots; };\n"
                      "instance of V_System { Id = \"1\"; Name = \"n\"; Slots = 3; };"),
            TLines());
  EXPECT_EQ(Lines(repository.Check()).size(), 1U);
  EXPECT_FALSE(repository.IsComplete("V_System"));
  const auto instances = repository.GetInstances();
  ASSERT_EQ(instances.size(), 1U);
  EXPECT_EQ(instances[0].path.GetPath(), "V_System.Id=\"1\"");
  EXPECT_EQ(instances[0].Find("Name")->value, TCIMValue("n"));
  EXPECT_EQ(instances[0].Find("Slots")->value, TCIMValue::UInt16(3));
}

TEST(MofToleranceTest, ADefaultThatDoesNotFitCostsTheDefaultOnly) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository, "class A_B { uint8 p = -1; uint8 q[] = \"x\"; };"),
            (TLines{"t.mof:1:23: default of property p: -1 is not a value of type uint8",
                    "t.mof:1:39: default of property q: expected an array between '{' and '}'"}));
  EXPECT_EQ(repository.Find("A_B")->properties.size(), 2U);
}

}  // namespace
