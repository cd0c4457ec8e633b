// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <ostream>

#include "platform/cimxml/XmlText.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cimxml {
namespace {

TEST(XmlTextTest, EscapesWhatHasAMeaningOfItsOwn) {
  std::string document = "x";
  AppendEscaped(document, "a & b < c > \"d\" 'e'");
  EXPECT_EQ(document, "xa &amp; b &lt; c &gt; &quot;d&quot; 'e'");
}

TEST(XmlTextTest, KeepsLineEndsAndTabsFromBeingNormalised) {
  std::string document;
  AppendEscaped(document, "a\tb\r\nc");
  EXPECT_EQ(document, "a&#9;b&#13;&#10;c");
}

TEST(XmlTextTest, PassesCharactersOfEveryLength) {
  std::string document;
  AppendEscaped(document, "\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80");
  EXPECT_EQ(document, "\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80");
}

struct TBadText {
  const char* name;
  std::string text;
};

std::ostream& operator<<(std::ostream& out, const TBadText& row) {
  return out << row.name;
}

class XmlBadTextTest : public ::testing::TestWithParam<TBadText> {};

TEST_P(XmlBadTextTest, IsRefusedByThePlaceOfItsFirstBadByte) {
  std::string document;
  try {
    AppendEscaped(document, "ok" + GetParam().text);
    FAIL() << "went through as " << document;
  } catch (const TQELException& e) {
    EXPECT_EQ(e.GetStatusCode(), TQELStatusCode(TQELStatusCode::kInvalidArgument));
    EXPECT_STREQ(e.what(), "byte 2 of a text is no UTF-8 character that XML can hold");
  }
}

INSTANTIATE_TEST_SUITE_P(All, XmlBadTextTest,
                         ::testing::Values(TBadText{"NUL", std::string(1, '\0')},
                                           TBadText{"Bell", "\a"}, TBadText{"Latin1", "\xE4 "},
                                           TBadText{"LoneContinuation", "\x80"},
                                           TBadText{"OverlongSlash", "\xC0\xAF"},
                                           TBadText{"OverlongThreeBytes", "\xE0\x80\xAF"},
                                           TBadText{"OverlongFourBytes", "\xF0\x80\x80\xAF"},
                                           TBadText{"Surrogate", "\xED\xA0\x80"},
                                           TBadText{"Noncharacter", "\xEF\xBF\xBE"},
                                           TBadText{"BeyondUnicode", "\xF4\x90\x80\x80"},
                                           TBadText{"CutShort", "\xE2\x82"}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace NZEPQEL20::cimxml
