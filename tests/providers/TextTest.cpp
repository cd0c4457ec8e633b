// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "providers/hardware/Json.h"
#include "providers/hardware/THeadTailBuffer.h"
#include "providers/hardware/Text.h"

namespace hardware {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct TTextRow {
  const char* name;
  std::string given;
  std::string expected;
};
void PrintTo(const TTextRow& row, std::ostream* out) {
  *out << row.name;
}

class CleanTextTest : public ::testing::TestWithParam<TTextRow> {};

TEST_P(CleanTextTest, LeavesValidTextAndReplacesTheRest) {
  EXPECT_EQ(CleanText(GetParam().given), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(
    All, CleanTextTest,
    ::testing::Values(TTextRow{"Plain", "a\nb\tc", "a\nb\tc"},
                      TTextRow{"Controls", std::string("a\0b\x1b[1m\x7f", 8), "ab[1m"},
                      TTextRow{"TwoBytes", "\xC3\xA4", "\xC3\xA4"},
                      TTextRow{"FourBytes", "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},
                      TTextRow{"LoneContinuation", "a\x80z", "a?z"},
                      TTextRow{"CutSequence", "a\xE2\x82", "a??"},
                      TTextRow{"OverLong", "\xC0\xAF", "??"},
                      TTextRow{"OverLongOfThree", "\xE0\x80\xAF", "???"},
                      TTextRow{"Surrogate", "\xED\xA0\x80", "???"},
                      TTextRow{"PastTheEnd", "\xF4\x90\x80\x80", "????"},
                      TTextRow{"Latin1", "caf\xE9 x", "caf? x"}),
    [](const auto& row) { return row.param.name; });

class CleanNameTest : public ::testing::TestWithParam<TTextRow> {};

TEST_P(CleanNameTest, FitsATestIdentifier) {
  EXPECT_EQ(CleanName(GetParam().given), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(All, CleanNameTest,
                         ::testing::Values(TTextRow{"Comma", "Acme, Inc.", "Acme; Inc."},
                                           TTextRow{"Bar", "a|b", "a/b"},
                                           TTextRow{"Blanks", "  a \t\n b  ", "a b"},
                                           TTextRow{"Empty", " \n", ""}),
                         [](const auto& row) { return row.param.name; });

class RenderTerminalTest : public ::testing::TestWithParam<TTextRow> {};

TEST_P(RenderTerminalTest, ShowsWhatATerminalWould) {
  EXPECT_EQ(RenderTerminal(GetParam().given), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(All, RenderTerminalTest,
                         ::testing::Values(TTextRow{"Counter", "a: 12\b\b13\b\bok\nb", "a: ok\nb"},
                                           TTextRow{"Return", "10%\r20%\r", "20%"},
                                           TTextRow{"BackPastTheLine", "x\n\b\by\n", "x\ny\n"},
                                           TTextRow{"BlanksAtTheEnd", "a   \n   \nb", "a\n\nb"}),
                         [](const auto& row) { return row.param.name; });

TEST(TextTest, AnExcerptKeepsTheLastWholeLines) {
  EXPECT_EQ(Excerpt("one\ntwo\nthree\n", 100), "one\ntwo\nthree");
  EXPECT_EQ(Excerpt("one\ntwo\nthree\n", 11), "[earlier output left out]\ntwo\nthree");
  EXPECT_EQ(Excerpt("\xC3\xA4\xC3\xA4\xC3\xA4", 3), "[earlier output left out]\n\xC3\xA4");
}

TEST(TextTest, NumbersAreTakenWholeOrNotAtAll) {
  EXPECT_EQ(ParseUnsigned("42"), 42U);
  for (const char* const bad : {"", "-1", "+1", " 1", "1 ", "1x", "99999999999999999999"}) {
    EXPECT_EQ(ParseUnsigned(bad), std::nullopt) << bad;
  }
  EXPECT_EQ(ParseDecimal("2.50"), 2.5);
  for (const char* const bad : {"", "-1", "nan", "inf", "1,5", "1e3", "x"}) {
    EXPECT_EQ(ParseDecimal(bad), std::nullopt) << bad;
  }
}

TEST(TextTest, SizesAreShownInWholeUnits) {
  EXPECT_EQ(DescribeBytes(0), "0 B");
  EXPECT_EQ(DescribeBytes(16777216), "16 MiB");
  EXPECT_EQ(DescribeBytes(274877906944), "256 GiB");
  EXPECT_EQ(DescribeBytes(UINT64_MAX), "16383 PiB");
}

TEST(TextTest, SplitsLinesAndWords) {
  EXPECT_THAT(SplitLines("a\n\nb"), ElementsAre("a", "", "b"));
  EXPECT_THAT(SplitLines(""), IsEmpty());
  EXPECT_THAT(SplitWords("  a\tb  c "), ElementsAre("a", "b", "c"));
  EXPECT_EQ(Join({"a", "", "c"}, "; "), "a; ; c");
}

TEST(HeadTailBufferTest, KeepsBothEndsOfALongStream) {
  THeadTailBuffer buffer(4, 8);
  for (int i = 0; i < 1000; ++i) buffer.Append("0123456789");
  const std::string text = buffer.GetText();
  EXPECT_EQ(text.substr(0, 4), "0123");
  EXPECT_EQ(text.substr(text.size() - 8), "23456789");
  EXPECT_THAT(text, ::testing::HasSubstr("bytes left out]"));
  EXPECT_LT(text.size(), 100U);
}

TEST(HeadTailBufferTest, KeepsAShortStreamWhole) {
  THeadTailBuffer buffer(4, 8);
  buffer.Append("01");
  buffer.Append("23456789");
  EXPECT_EQ(buffer.GetText(), "0123456789");
}

TEST(JsonTest, WhatIsNoJsonIsNull) {
  for (const char* const bad : {"", "{", "{\"a\":}", "[1,", "\xFF", "nope"}) {
    EXPECT_TRUE(ParseJson(bad).is_null()) << bad;
  }
}

TEST(JsonTest, TheLastCompleteDocumentOfAStreamCounts) {
  EXPECT_EQ(ParseLastDocument("{\n\"a\": 1\n}\n{\n\"a\": 2\n}\n")["a"], 2);
  EXPECT_EQ(ParseLastDocument("noise {\n{\n\"a\": 1\n}\n{\n\"a\": 2")["a"], 1);
  EXPECT_EQ(ParseLastDocument("fio: note\n{\n\"a\": {\n }\n}\n")["a"].size(), 0U);
  EXPECT_TRUE(ParseLastDocument("no document\n}\n").is_null());
  EXPECT_TRUE(ParseLastDocument("").is_null());
}

TEST(JsonTest, MissingStepsLeadToNull) {
  const nlohmann::json value = ParseJson(R"({"A b":{"c":7,"d":"x","e":true}})");
  EXPECT_EQ(ToUnsigned(FindMember(value, {"a B", "C"})), 7U);
  EXPECT_EQ(ToUnsigned(FindMember(value, {"a b", "d"})), std::nullopt);
  EXPECT_EQ(ToText(FindMember(value, {"a b", "d"})), "x");
  EXPECT_TRUE(IsTrue(FindMember(value, {"a b", "e"})));
  EXPECT_FALSE(IsFalse(FindMember(value, {"a b", "zz"})));
  EXPECT_TRUE(FindMember(value, {"a b", "c", "deeper"}).is_null());
}

}  // namespace
}  // namespace hardware
