// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <ostream>

#include "host/Text.h"

namespace host {
namespace {

struct TUnsafe {
  const char* name;
  std::string text;
  ELines lines;
  std::string safe;
};
void PrintTo(const TUnsafe& row, std::ostream* out) {
  *out << row.name;
}

class SafeTextTest : public ::testing::TestWithParam<TUnsafe> {};

TEST_P(SafeTextTest, ShowsOnlyWhatATerminalCanBearAndLosesNothing) {
  EXPECT_EQ(SafeText(GetParam().text, GetParam().lines), GetParam().safe);
}
INSTANTIATE_TEST_SUITE_P(
    All, SafeTextTest,
    ::testing::Values(TUnsafe{"Plain", "Pass, 100 %", ELines::kOne, "Pass, 100 %"},
                      TUnsafe{"Empty", "", ELines::kKeep, ""},
                      TUnsafe{"Umlaut",
                              "Pr\xc3\xbc"
                              "fung",
                              ELines::kOne,
                              "Pr\xc3\xbc"
                              "fung"},
                      TUnsafe{"Escape", "\x1b[2J", ELines::kKeep, "\\x1b[2J"},
                      TUnsafe{"CarriageReturn", "a\rb", ELines::kKeep, "a\\x0db"},
                      TUnsafe{"Nul", std::string("a\0b", 3), ELines::kOne, "a\\x00b"},
                      TUnsafe{"Delete", "\x7f", ELines::kOne, "\\x7f"},
                      TUnsafe{"C1Control", "\xc2\x9b", ELines::kOne, "\\x9b"},
                      TUnsafe{"LinesKept", "a\n\tb", ELines::kKeep, "a\n\tb"},
                      TUnsafe{"LinesRefused", "a\n\tb", ELines::kOne, "a\\x0a\\x09b"},
                      TUnsafe{"LoneByte", "a\xff", ELines::kOne, "a\\xff"},
                      TUnsafe{"CutCharacter", "\xe2\x82", ELines::kOne, "\\xe2\\x82"},
                      TUnsafe{"Overlong", "\xc0\xaf", ELines::kOne, "\\xc0\\xaf"},
                      TUnsafe{"Surrogate", "\xed\xa0\x80", ELines::kOne, "\\xed\\xa0\\x80"},
                      TUnsafe{"TooLarge", "\xf5\x80\x80\x80", ELines::kOne, "\\xf5\\x80\\x80\\x80"},
                      TUnsafe{"FourBytes", "\xf0\x9f\x94\xa7", ELines::kOne, "\xf0\x9f\x94\xa7"},
                      TUnsafe{"TurnedDirection", "\xe2\x80\xae", ELines::kOne, "\\u{202e}"}),
    [](const auto& row) { return row.param.name; });

TEST(TextTest, CountsCharactersNotBytes) {
  EXPECT_EQ(GetWidth("\xc3\xbc\xe2\x82\xac"), 2U);
  EXPECT_EQ(PadTo("\xc3\xbc", 3), "\xc3\xbc  ");
  EXPECT_EQ(PadTo("long", 2), "long");
}

TEST(TextTest, TrimsWhiteSpaceAtTheEndsOnly) {
  EXPECT_EQ(Trim(" \n No Status\n"), "No Status");
  EXPECT_EQ(Trim(" \t\r\n"), "");
}

TEST(TextTest, FindsAPartWhateverTheCaseOfAsciiLetters) {
  EXPECT_TRUE(ContainsNoCase("Memory pattern", "MEM"));
  EXPECT_TRUE(ContainsNoCase("anything", ""));
  EXPECT_FALSE(ContainsNoCase("mem", "memory"));
}

}  // namespace
}  // namespace host
