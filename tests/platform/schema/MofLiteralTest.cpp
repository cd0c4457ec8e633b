// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/schema/SchemaSupport.h"

namespace {

using namespace schematest;

struct TDefaultRow {
  const char* type;
  const char* literal;
  const char* text;  ///< What the default reads; null when the literal is refused.
};

void PrintTo(const TDefaultRow& row, std::ostream* out) {
  *out << row.type << " = " << row.literal;
}

class MofDefaultTest : public ::testing::TestWithParam<TDefaultRow> {};

TEST_P(MofDefaultTest, IsTypedAndRangeChecked) {
  const TDefaultRow& row = GetParam();
  TClassRepository repository;
  const TLines lines = LoadLines(
      repository, std::string("class A_B { ") + row.type + " p = " + row.literal + "; uint8 q; };");
  const auto declaration = repository.Find("A_B");
  ASSERT_NE(declaration, nullptr);
  ASSERT_NE(declaration->FindProperty("q"), nullptr);
  if (row.text == nullptr) {
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].compare(0, 8, "t.mof:1:"), 0) << lines[0];
    return;
  }
  EXPECT_EQ(lines, TLines());
  ASSERT_NE(declaration->FindProperty("p"), nullptr);
  EXPECT_EQ(declaration->FindProperty("p")->defaultValue.ToString(10), row.text);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, MofDefaultTest,
    ::testing::Values(TDefaultRow{"uint8", "255", "255"}, TDefaultRow{"uint8", "256", nullptr},
                      TDefaultRow{"uint8", "-1", nullptr}, TDefaultRow{"uint8", "-0", "0"},
                      TDefaultRow{"sint8", "-128", "-128"}, TDefaultRow{"sint8", "-129", nullptr},
                      TDefaultRow{"sint8", "128", nullptr}, TDefaultRow{"sint32", "-0x1F", "-31"},
                      TDefaultRow{"uint32", "+7", "7"}, TDefaultRow{"uint8", "010", "8"},
                      TDefaultRow{"uint8", "08", nullptr}, TDefaultRow{"uint8", "101b", "5"},
                      TDefaultRow{"uint8", "101B", "5"}, TDefaultRow{"uint8", "102b", nullptr},
                      TDefaultRow{"uint8", "0", "0"}, TDefaultRow{"uint8", "0x", nullptr},
                      TDefaultRow{"uint64", "0xFFFFFFFFFFFFFFFF", "18446744073709551615"},
                      TDefaultRow{"uint64", "18446744073709551616", nullptr},
                      TDefaultRow{"sint64", "-9223372036854775808", "-9223372036854775808"},
                      TDefaultRow{"sint64", "9223372036854775808", nullptr},
                      TDefaultRow{"uint8", "12x", nullptr}, TDefaultRow{"uint8", "1.0", nullptr},
                      TDefaultRow{"uint8", "\"1\"", nullptr}, TDefaultRow{"uint8", "NULL", ""},
                      TDefaultRow{"uint8", "TRUE", nullptr}, TDefaultRow{"uint8", "--1", nullptr}));

INSTANTIATE_TEST_SUITE_P(Reals, MofDefaultTest,
                         ::testing::Values(TDefaultRow{"real64", "1.", nullptr},
                                           TDefaultRow{"real64", "1e5", nullptr},
                                           TDefaultRow{"real64", "1.0E999", nullptr},
                                           TDefaultRow{"real32", "1.0E+300", nullptr},
                                           TDefaultRow{"real64", "\"x\"", nullptr},
                                           TDefaultRow{"real64", "1.2.3", nullptr}));

INSTANTIATE_TEST_SUITE_P(
    Others, MofDefaultTest,
    ::testing::Values(TDefaultRow{"boolean", "tRuE", "TRUE"},
                      TDefaultRow{"boolean", "FALSE", "FALSE"},
                      TDefaultRow{"boolean", "1", nullptr}, TDefaultRow{"string", "null", ""},
                      TDefaultRow{"string", "5", nullptr},
                      TDefaultRow{"datetime", "\"00000000000500.000000:000\"",
                                  "00000000000500.000000:000"},
                      TDefaultRow{"datetime", "\"today\"", nullptr},
                      TDefaultRow{"uint8", "{ 1 }", nullptr}, TDefaultRow{"uint8", "{ }", nullptr},
                      TDefaultRow{"uint8", "$A", nullptr}, TDefaultRow{"uint8", "word", nullptr}));

struct TStringRow {
  const char* mof;
  std::string text;
};

void PrintTo(const TStringRow& row, std::ostream* out) {
  *out << row.mof;
}

class MofStringTest : public ::testing::TestWithParam<TStringRow> {};

TEST_P(MofStringTest, IsReadWithItsEscapes) {
  TClassRepository repository;
  const std::string mof = std::string("class A_B { string p = ") + GetParam().mof + "; };";
  EXPECT_EQ(LoadLines(repository, mof), TLines());
  EXPECT_EQ(repository.Find("A_B")->properties.at(0).defaultValue.ToString(10), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Escapes, MofStringTest,
                         ::testing::Values(TStringRow{R"("\x41B")", "\xD0\x9B"},
                                           TStringRow{R"("\x0041B")", "AB"},
                                           TStringRow{R"("a" /* c */ "b")", "ab"},
                                           TStringRow{"\"a\" // c\n \"b\"", "ab"},
                                           TStringRow{R"("\b\t\n\f\r\"\'\\")", "\b\t\n\f\r\"'\\"},
                                           TStringRow{R"("\xD83D\xDE00")", "\xF0\x9F\x98\x80"},
                                           TStringRow{R"("\xD83Dx")", "\xEF\xBF\xBDx"},
                                           TStringRow{R"("// text")", "// text"},
                                           TStringRow{"\"a\tb\"", "a\tb"}, TStringRow{R"("")", ""},
                                           TStringRow{"\"caf\xE9\"", "caf\xC3\xA9"},
                                           TStringRow{"\"\xC3\xA9\"", "\xC3\xA9"}));

TEST(MofLiteralTest, RealNumbersHaveADigitBehindThePoint) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(repository,
                "class A_B { real64 p[] = { .5, 1.0E+3, -2.25, 7, 1.5e-1 }; real32 q = +.5; };"),
      TLines());
  const auto declaration = repository.Find("A_B");
  const auto values = static_cast<std::vector<TCIMValue>>(declaration->properties[0].defaultValue);
  const std::vector<double> expected = {0.5, 1000.0, -2.25, 7.0, 0.15};
  ASSERT_EQ(values.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_DOUBLE_EQ(values[i].ToReal(), expected[i]);
  }
  EXPECT_DOUBLE_EQ(declaration->properties[1].defaultValue.ToReal(), 0.5);
}

TEST(MofLiteralTest, CharactersMayBeStringsOfOne) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(repository, R"(class A_B { char16 p[] = { 'x', '\n', '\x41', '\'', "y" }; };)"),
      TLines());
  EXPECT_EQ(repository.Find("A_B")->properties.at(0).defaultValue,
            TCIMValue::Array(ECIMType::kChar16, {TCIMValue::Char16('x'), TCIMValue::Char16('\n'),
                                                 TCIMValue::Char16(0x41), TCIMValue::Char16('\''),
                                                 TCIMValue::Char16('y')}));
}

TEST(MofLiteralTest, CharactersOfNoOrManyUnitsAreRefused) {
  for (const char* literal : {"''", "'ab'", "\"\"", "\"xy\"", "'\xF0\x9F\x98\x80'"}) {
    TClassRepository repository;
    EXPECT_EQ(
        LoadLines(repository, std::string("class A_B { char16 p = ") + literal + "; };").size(), 1U)
        << literal;
  }
}

TEST(MofLiteralTest, ConcatenationStaysWithinOneElementOfAnArray) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(repository, R"(class A_B { string p[] = { "a" "b", "c" }; string q[] = {}; };)"),
      TLines());
  const auto declaration = repository.Find("A_B");
  EXPECT_EQ(declaration->properties[0].defaultValue.ToString(10), "ab,c");
  EXPECT_TRUE(declaration->properties[1].defaultValue.IsArray());
  EXPECT_FALSE(declaration->properties[1].defaultValue.IsNull());
}

TEST(MofLiteralTest, UnknownEscapesStayAndAreWarnedOf) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository, R"(class A_B { string p = "a\qb\xZ"; };)"),
            (TLines{"t.mof:1:24: warning: unknown escape in the string; kept as it is"}));
  EXPECT_EQ(repository.Find("A_B")->properties.at(0).defaultValue.ToString(10), R"(a\qb\xZ)");
}

}  // namespace
