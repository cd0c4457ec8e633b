// SPDX-License-Identifier: Apache-2.0
// Reading goes on behind a mistake: what is not faulty itself is kept.
#include "tests/platform/schema/SchemaSupport.h"

namespace {

using namespace schematest;

struct TRecoveryRow {
  const char* name;
  const char* mof;
  const char* line;  ///< The one problem that is reported.
  TLines kept;       ///< Properties of A_B, a key with a star.
};
void PrintTo(const TRecoveryRow& row, std::ostream* out) {
  *out << row.name;
}

class MofRecoveryTest : public ::testing::TestWithParam<TRecoveryRow> {};

TEST_P(MofRecoveryTest, KeepsTheOtherFeaturesAndTheNextClassWhole) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(repository, GetParam().mof + std::string("\n  [Association, Version(\"2\")]\n"
                                                         "class A_Next { [Key] A_B REF r; };")),
      TLines{GetParam().line});
  TLines kept;
  if (const auto declaration = repository.Find("A_B"); declaration != nullptr) {
    for (const auto& property : declaration->properties) {
      kept.push_back(property.name + (property.isKey ? "*" : ""));
    }
  }
  EXPECT_EQ(kept, GetParam().kept);
  const auto next = repository.Find("A_Next");
  ASSERT_NE(next, nullptr);
  EXPECT_TRUE(next->isAssociation);
  EXPECT_EQ(*FindValue(next->qualifiers, "Version"), TCIMValue("2"));
  EXPECT_TRUE(repository.GetInstances().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Braces, MofRecoveryTest,
    ::testing::Values(
        TRecoveryRow{"ArrayThenQualifier",
                     "class A_B { string a[] = { \"a\", bad };\n[Key] string k; uint8 z; };",
                     "t.mof:1:33: expected a constant, found 'bad'",
                     {"k*", "z"}},
        TRecoveryRow{"ArrayThenMethod",
                     "class A_B { string a[] = { \"a\" 3 };\n[Static] uint8 f(); uint8 z; };",
                     "t.mof:1:32: expected '}' or ',' after an element of the array, found '3'",
                     {"z"}},
        TRecoveryRow{"OpenArray",
                     "class A_B { uint8 p[] = { 1; [Key] uint8 k; uint8 z; };",
                     "t.mof:1:28: expected '}' or ',' after an element of the array, found ';'",
                     {"k*", "z"}},
        TRecoveryRow{"ValuesInParameters",
                     "class A_B { uint8 f([Values{\"x\" 1}] uint8 a) [Key] uint8 k; uint8 z; };",
                     "t.mof:1:33: expected '}' or ',' after an element of the array, found '1'",
                     {"k*", "z"}},
        TRecoveryRow{"LastArray",
                     "class A_B { [Key] uint8 k; uint8 a[] = { 1, bad }; };",
                     "t.mof:1:45: expected a constant, found 'bad'",
                     {"k*"}},
        TRecoveryRow{"ClassWithoutName",
                     "class : A_Root { uint8 a[] = { 1, ; };",
                     "t.mof:1:7: expected the name of a class, found ':'",
                     {}},
        TRecoveryRow{"DeclarationsOfQualifiersInSkippedText",
                     "class { [Values { \"a\" 3 }, Version(\"9\")] uint8 a[] = { 1, ; };",
                     "t.mof:1:7: expected the name of a class, found '{'",
                     {}}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Semicolons, MofRecoveryTest,
    ::testing::Values(
        TRecoveryRow{"BeforeQualifiers",
                     "class A_B { string Caption\n[Key, MaxLen(5)] string k; uint8 z; };",
                     "t.mof:2:1: expected ';' after property Caption, found '['",
                     {"k*", "z"}},
        TRecoveryRow{"OpenCharacter",
                     "class A_B { [Key] uint8 k; char16 c = 'ab; };",
                     "t.mof:1:39: expected one character between single quotes",
                     {"k*"}},
        TRecoveryRow{"OpenSemicolonCharacter",
                     "class A_B { [Key] uint8 k; char16 c = '; };",
                     "t.mof:1:39: expected one character between single quotes",
                     {"k*"}}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Instances, MofRecoveryTest,
    ::testing::Values(
        TRecoveryRow{"WithoutBrace",
                     "class A_B { [Key] string k; };\ninstance of A_B { k = \"1\";",
                     "t.mof:4:1: expected '}' at the end of the instance of A_B, found the next "
                     "declaration",
                     {"k*"}},
        TRecoveryRow{"OpenCharacter",
                     "class A_B { [Key] string k; char16 c; };\n"
                     "instance of A_B { k = \"1\"; c = 'ab; };",
                     "t.mof:2:32: expected one character between single quotes",
                     {"k*", "c"}},
        TRecoveryRow{"FaultyArray",
                     "class A_B { [Key] string k; uint8 p[]; uint8 q; };\n"
                     "instance of A_B { p = { 1 2 }; k = \"1\"; q = 3; };",
                     "t.mof:2:27: expected '}' or ',' after an element of the array, found '2'",
                     {"k*", "p", "q"}}),
    [](const auto& row) { return row.param.name; });

TEST(MofRecoverySeamTest, AStringThatIsNotClosedCostsTheNextClassNothing) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(repository,
                "class A_B { [Key] uint8 k; string s = \"abc; };\n"
                "[Association] class A_C { [Key] A_B REF r; };"),
      (TLines{"t.mof:1:39: string is not closed by '\"' on its line",
              "t.mof:2:15: expected '}' at the end of class A_B, found the next declaration"}));
  EXPECT_NE(repository.Find("A_B")->FindProperty("k"), nullptr);
  EXPECT_TRUE(repository.Find("A_C")->isAssociation);
}

TEST(MofRecoverySeamTest, CharactersThatEndAValueElsewhereAreCharacters) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository,
                      "class A_B { char16 a = ';'; char16 b = '}'; char16 c[] = { ',', ']' }; };"),
            TLines());
  EXPECT_EQ(repository.Find("A_B")->properties.size(), 3U);
}

}  // namespace
