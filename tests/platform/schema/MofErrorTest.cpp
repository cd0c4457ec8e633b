// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/schema/SchemaSupport.h"

namespace {

using namespace schematest;

struct TErrorRow {
  const char* mof;
  const char* line;  ///< The one problem that is reported.
};

void PrintTo(const TErrorRow& row, std::ostream* out) {
  *out << row.mof;
}

class MofErrorTest : public ::testing::TestWithParam<TErrorRow> {};

TEST_P(MofErrorTest, TellsThePlaceAndWhatWasExpectedAndGoesOn) {
  TClassRepository repository;
  const std::string mof = std::string(GetParam().mof) + "\nclass A_Last { uint8 p; };";
  EXPECT_EQ(LoadLines(repository, mof), TLines{GetParam().line});
  ASSERT_NE(repository.Find("A_Last"), nullptr);
  EXPECT_EQ(repository.Find("A_Last")->properties.size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(
    File, MofErrorTest,
    ::testing::Values(
        TErrorRow{"foo;",
                  "t.mof:1:1: expected a class, instance, qualifier or pragma, found 'foo'"},
        TErrorRow{"\n  };",
                  "t.mof:2:3: expected a class, instance, qualifier or pragma, found '}'"},
        TErrorRow{"[Abstract] foo;",
                  "t.mof:1:12: expected 'class' or 'instance' behind the qualifiers, found 'foo'"},
        TErrorRow{"# include (\"x\");", "t.mof:1:3: expected 'pragma' after '#', found 'include'"},
        TErrorRow{"#pragma include \"x\";",
                  "t.mof:1:17: expected '(' after the pragma include, found \"x\""},
        TErrorRow{"#pragma include (x)", "t.mof:1:18: expected a string, found 'x'"},
        TErrorRow{"#pragma include (\"no.mof\")",
                  "t.mof:1:18: include \"no.mof\": No such file or directory"},
        TErrorRow{"#pragma frobnicate (\"x\", 5)",
                  "t.mof:1:9: warning: unknown pragma 'frobnicate' is ignored"},
        TErrorRow{"#pragma autorecover on",
                  "t.mof:1:9: warning: unknown pragma 'autorecover' is ignored"},
        TErrorRow{"#pragma x \"bar\" @", "t.mof:1:9: warning: unknown pragma 'x' is ignored"},
        TErrorRow{"#pragma x ((a), (b))", "t.mof:1:9: warning: unknown pragma 'x' is ignored"},
        TErrorRow{"#pragma x (a,\n 5)", "t.mof:1:9: warning: unknown pragma 'x' is ignored"},
        TErrorRow{"#pragma x (a", "t.mof:1:9: warning: unknown pragma 'x' is ignored"},
        TErrorRow{"#pragma x on class A_X { };",
                  "t.mof:1:9: warning: unknown pragma 'x' is ignored"},
        TErrorRow{"#pragma x on [Abstract] class A_X { };",
                  "t.mof:1:9: warning: unknown pragma 'x' is ignored"},
        TErrorRow{"\r\n\r@;", "t.mof:3:1: unexpected character '@'"},
        TErrorRow{"\x01\x01;", "t.mof:1:1: unexpected byte 0x01"},
        TErrorRow{"$;", "t.mof:1:1: '$' without the name of an alias"}));

INSTANTIATE_TEST_SUITE_P(
    Classes, MofErrorTest,
    ::testing::Values(
        TErrorRow{"class { uint8 p; };", "t.mof:1:7: expected the name of a class, found '{'"},
        TErrorRow{"class A_B : { uint8 p; };",
                  "t.mof:1:13: expected the name of the superclass, found '{'"},
        TErrorRow{"class A_B;",
                  "t.mof:1:10: expected '{' before the features of class A_B, found ';'"},
        TErrorRow{"class A_B { uint8 p };", "t.mof:1:21: expected ';' after property p, found '}'"},
        TErrorRow{"class A_B { uint8; };", "t.mof:1:18: expected a name after the type, found ';'"},
        TErrorRow{"class A_B { int p; };",
                  "t.mof:1:13: expected a type, or a class and REF, found 'int'"},
        TErrorRow{"class A_B { void f(); };",
                  "t.mof:1:13: 'void' is not a CIM type: every method returns a value, such as "
                  "uint32"},
        TErrorRow{"class A_B { uint8 p[0]; };",
                  "t.mof:1:21: the size of an array must be positive"},
        TErrorRow{"class A_B { uint8 p[3; };",
                  "t.mof:1:22: expected ']' after the size of the array, found ';'"},
        TErrorRow{"[Association] class A_B { A_B REF p[]; };",
                  "t.mof:1:36: reference p cannot be an array"},
        TErrorRow{"class A_B { uint8 p = ; };", "t.mof:1:23: expected a constant, found ';'"},
        TErrorRow{"class A_B { uint8 p[] = { 1 2 }; };",
                  "t.mof:1:29: expected '}' or ',' after an element of the array, found '2'"},
        TErrorRow{"class A_B { string p = \"abc;\n };",
                  "t.mof:1:24: string is not closed by '\"' on its line"},
        TErrorRow{"class A_B { uint8 f(uint8 a uint8 b); };",
                  "t.mof:1:29: expected ')' after the parameters of method f, found 'uint8'"},
        TErrorRow{"class A_B { uint8 f(uint8 a) };",
                  "t.mof:1:30: expected ';' after method f, found '}'"},
        TErrorRow{"class A_B { uint8 p; uint16 P; };",
                  "t.mof:1:29: property P is declared twice in class A_B; the first one holds"},
        TErrorRow{"class A_B { uint8 f(); uint16 F(); };",
                  "t.mof:1:31: method F is declared twice in class A_B; the first one holds"},
        TErrorRow{"class A_B { uint8 p = 300; };",
                  "t.mof:1:23: default of property p: 300 is not a value of type uint8"},
        TErrorRow{"class A_B { uint8 p;",
                  "t.mof:2:1: expected '}' at the end of class A_B, found the next declaration"},
        TErrorRow{"class A_B { uint8 p; } foo;",
                  "t.mof:1:24: expected ';' after class A_B, found 'foo'"},
        // The column counts characters, not bytes.
        TErrorRow{"class A_B { string p = \"\xC3\xA9\xC3\xA9\" 5; };",
                  "t.mof:1:29: expected ';' after property p, found '5'"}));

INSTANTIATE_TEST_SUITE_P(
    Qualifiers, MofErrorTest,
    ::testing::Values(
        TErrorRow{"[,] class A_B { };", "t.mof:1:2: expected the name of a qualifier, found ','"},
        TErrorRow{"[Key = ] class A_B { };", "t.mof:1:8: expected a constant, found ']'"},
        TErrorRow{"[Version(2 class A_B { };",
                  "t.mof:1:12: expected ')' after the value of qualifier Version, found 'class'"},
        TErrorRow{"[Version( class A_B { };", "t.mof:1:11: expected a constant, found 'class'"},
        TErrorRow{"[Version(\"2\"] class A_B { };",
                  "t.mof:1:13: expected ')' after the value of qualifier Version, found ']'"},
        TErrorRow{"[Key(5)] class A_B { };",
                  "t.mof:1:6: qualifier Key: 5 is not a value of type boolean"},
        TErrorRow{"[Key : Restricted ToSubclass] class A_B { };",
                  "t.mof:1:19: ToSubclass and Restricted exclude each other"},
        TErrorRow{"[Description {\"a\", \"b\"}] class A_B { };",
                  "t.mof:1:14: qualifier Description: expected one constant, found an array"},
        TErrorRow{"Qualifier Foo boolean, Scope(any);",
                  "t.mof:1:15: expected ':' after qualifier Foo, found 'boolean'"},
        TErrorRow{"Qualifier Foo : bool, Scope(any);",
                  "t.mof:1:17: expected the type of qualifier Foo, found 'bool'"},
        TErrorRow{"Qualifier Foo : boolean;",
                  "t.mof:1:24: expected ',' and Scope after the type of qualifier Foo, found ';'"},
        TErrorRow{"Qualifier Foo : boolean, Scope(all);",
                  "t.mof:1:32: expected a kind of element, such as property or any, found 'all'"},
        TErrorRow{"Qualifier Foo : boolean, Scope(any), Flavour(Restricted);",
                  "t.mof:1:38: expected Flavor after Scope, found 'Flavour'"},
        TErrorRow{"Qualifier Foo : boolean, Scope(any), Flavor(EnableOverride, DisableOverride);",
                  "t.mof:1:61: EnableOverride and DisableOverride exclude each other"},
        TErrorRow{"Qualifier Foo : boolean = 3, Scope(any);",
                  "t.mof:1:27: default of qualifier Foo: 3 is not a value of type boolean"}));

INSTANTIATE_TEST_SUITE_P(
    Instances, MofErrorTest,
    ::testing::Values(
        TErrorRow{"instance A_Last { p = 1; };",
                  "t.mof:1:10: expected 'of' after 'instance', found 'A_Last'"},
        TErrorRow{"instance of { p = 1; };", "t.mof:1:13: expected the name of a class, found '{'"},
        TErrorRow{"instance of A_Last as B { p = 1; };",
                  "t.mof:1:23: expected an alias, such as $Name, found 'B'"},
        TErrorRow{"instance of A_Last { p 1; };",
                  "t.mof:1:24: expected '=' after property p, found '1'"},
        TErrorRow{"instance of A_Last { p = 1 };",
                  "t.mof:1:28: expected ';' after property p, found '}'"},
        TErrorRow{"instance of A_Last { p = 1;",
                  "t.mof:2:1: expected '}' at the end of the instance of A_Last, found the next "
                  "declaration"}));

TEST(MofErrorsTest, EveryMistakeOfAClassIsReportedAndTheRestOfItStays) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository,
                      "class A_B {\n"
                      "  [Values { \"x\", \"y\" ] uint8 a;\n"
                      "  uint8 b = ;\n"
                      "  uint8 c;\n"
                      "  uint8 d(;\n"
                      "  uint8 e;\n"
                      "};\n"),
            (TLines{"t.mof:2:22: expected '}' or ',' after an element of the array, found ']'",
                    "t.mof:3:13: expected a constant, found ';'",
                    "t.mof:5:11: expected a type, or a class and REF, found ';'"}));
  const auto declaration = repository.Find("A_B");
  ASSERT_NE(declaration, nullptr);
  ASSERT_EQ(declaration->properties.size(), 2U);
  EXPECT_EQ(declaration->properties[0].name, "c");
  EXPECT_EQ(declaration->properties[1].name, "e");
}

TEST(MofErrorsTest, QualifiersBehindAMissingBraceBelongToTheNextClass) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository, "class A_B { uint8 p;\n[Association] class A_C { A_B REF r; };"),
            TLines{"t.mof:2:15: expected '}' at the end of class A_B, found the next declaration"});
  EXPECT_NE(repository.Find("A_B"), nullptr);
  EXPECT_TRUE(repository.Find("A_C")->isAssociation);
}

TEST(MofErrorsTest, AnUnclosedCommentIsAnErrorWhereItBegins) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository, "class A_B { };\n /* class A_C { };"),
            TLines{"t.mof:2:2: comment is not closed by '*/'"});
  EXPECT_NE(repository.Find("A_B"), nullptr);
}

TEST(MofErrorsTest, AnInstanceWithAFaultyPropertyIsLeftOut) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository,
                      "class A_B { uint8 p; uint8 q; };\n"
                      "instance of A_B { p = ; q = 2; };\n"
                      "instance of A_B { p = 1; q = 2; };")
                .size(),
            1U);
  EXPECT_EQ(repository.GetInstances().size(), 1U);
}

}  // namespace
