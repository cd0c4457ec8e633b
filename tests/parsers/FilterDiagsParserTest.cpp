// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

#include "parsers/FilterDiagsParser.h"
#include "tests/parsers/Prefixes.h"
#include "tests/parsers/TLogCapture.h"
#include "tests/parsers/TReportingParser.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using TTexts = std::vector<std::string>;
using TMatrix = std::map<std::string, TTexts>;

const char kUnknown[] = "Unrecognized identifier";
const char kAttribute[] = "Unrecognized Attribute.";

struct TDocument {
  const char* name;
  const char* xml;
  TMatrix matrix;
  TTexts reports;
};
void PrintTo(const TDocument& row, std::ostream* out) {
  *out << row.xml;
}

TMatrix Read(std::string document) {
  FilterDiagsParser parser;
  parser.Parse(document.data(), document.size());
  return parser.getDiagnosticMatrix();
}

class FilterDiagsParserTest : public ::testing::TestWithParam<TDocument> {
 protected:
  TLogCapture m_log;
};

TEST_P(FilterDiagsParserTest, ReadsTheMatrixAndLogsNothing) {
  TReportingParser<FilterDiagsParser> parser;
  std::string document = GetParam().xml;
  parser.Parse(document.data());
  EXPECT_EQ(parser.getDiagnosticMatrix(), GetParam().matrix);
  EXPECT_EQ(parser.m_reports, GetParam().reports);
  EXPECT_THAT(m_log.m_lines, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    All, FilterDiagsParserTest,
    ::testing::Values(
        TDocument{"OneOfEach",
                  "<biosid name='b'><diagnostictest name='t'/></biosid>",
                  {{"b", {"t"}}},
                  {}},
        TDocument{"AnyRoot", "<m><biosid name='b'/></m>", {{"b", {}}}, {kUnknown, kUnknown}},
        TDocument{"DuplicatesInDocumentOrder",
                  "<biosid name='b'><diagnostictest name='t'/><diagnostictest name='s'/>"
                  "<diagnostictest name='t'/></biosid>",
                  {{"b", {"t", "s", "t"}}},
                  {}},
        TDocument{"AsWritten",
                  "<BiosID name=' B '><DIAGNOSTICTEST name=' T '/></BiosID>",
                  {{" B ", {" T "}}},
                  {}},
        TDocument{"FirstEntryWins",
                  "<m><biosid name='b'><diagnostictest name='1'/></biosid>"
                  "<biosid name='b'><diagnostictest name='2'/></biosid>"
                  "<biosid name='c'><diagnostictest name='3'/></biosid></m>",
                  {{"b", {"1"}}, {"c", {"3"}}},
                  {kUnknown, kUnknown}},
        TDocument{"TestsBeforeAndBetween",
                  "<m><diagnostictest name='0'/><biosid name='b'/><diagnostictest name='1'/>"
                  "<biosid name='c'><diagnostictest name='2'/></biosid></m>",
                  {{"b", {"0"}}, {"c", {"1", "2"}}},
                  {kUnknown, kUnknown}},
        TDocument{
            "NoNameOfATest", "<biosid name='b'><diagnostictest/></biosid>", {{"b", {""}}}, {}},
        TDocument{
            "NoNameOfABios", "<biosid><diagnostictest name='t'/></biosid>", {{"", {"t"}}}, {}},
        TDocument{"InnerBiosWithoutNameTakesTheOuters",
                  "<biosid name='b'><diagnostictest name='t'/><biosid/></biosid>",
                  {{"b", {"t"}}, {"", {}}},
                  {}},
        TDocument{"InnerTestWithoutNameTakesTheOuters",
                  "<biosid name='b'><diagnostictest name='t'><diagnostictest/></diagnostictest>"
                  "</biosid>",
                  {{"b", {"t", ""}}},
                  {}},
        TDocument{"AttributeBeforeTheName",
                  "<biosid id='' name='b'><diagnostictest a='' b='' name='t'/></biosid>",
                  {{"b", {"t"}}},
                  {kAttribute, kAttribute, kAttribute}},
        TDocument{"AttributeBehindTheName",
                  "<biosid name='b' zzz=''><diagnostictest name='t' zzz=''/></biosid>",
                  {{"b", {"t"}}},
                  {}},
        TDocument{"NameInCapitals", "<biosid Name='b'/>", {{"", {}}}, {kAttribute}},
        TDocument{"TextAndInstructions", "<biosid name='b'>text<?p q?></biosid>", {{"b", {}}}, {}},
        TDocument{"UnknownInTheMiddle",
                  "<biosid name='b'><x name='n'/><diagnostictest name='t'/></biosid>",
                  {{"b", {"t"}}},
                  {kUnknown, kUnknown}},
        TDocument{"BrokenOff",
                  "<m><biosid name='b'></biosid><biosid name='c'>",
                  {{"b", {}}},
                  {kUnknown, "no element found"}}),
    [](const auto& row) { return row.param.name; });

TEST_F(FilterDiagsParserTest, KeepsTheBiosAsTheCurrentElementAfterItsEnd) {
  TReportingParser<FilterDiagsParser> parser;
  std::string document = "<M><BIOSID name='b'><DiagnosticTest name='t'/></BIOSID></M>";
  parser.Parse(document.data());
  EXPECT_THAT(parser.m_elements, ElementsAre("m", "biosid", "diagnostictest", "", "biosid", ""));
}

TEST_F(FilterDiagsParserTest, DiscardsDebugOutput) {
  FilterDiagsParser parser;
  parser.DebugOutput(NZEPQEL20::ILogger::kError, "lost");
  parser.FatalError("lost");
  parser.FatalError(nullptr);
  EXPECT_THAT(m_log.m_lines, IsEmpty());
}

TEST_F(FilterDiagsParserTest, ReadsEveryPrefixAsAPartOfTheMatrix) {
  const std::string document =
      "<matrix>\n<biosid name='a'><diagnostictest name='1'/><diagnostictest name='2'/></biosid>"
      "<biosid name='b'><diagnostictest name='3'/></biosid><biosid name='c'/></matrix>";
  const TMatrix whole = Read(document);
  EXPECT_EQ(whole, (TMatrix{{"a", {"1", "2"}}, {"b", {"3"}}, {"c", {}}}));
  for (const std::string& prefix : GetPrefixes(document)) {
    const TMatrix part = Read(prefix);
    ASSERT_LE(part.size(), whole.size()) << prefix;
    EXPECT_TRUE(std::equal(part.begin(), part.end(), whole.begin())) << prefix;
  }
}

TEST_F(FilterDiagsParserTest, GetsNothingOutOfUselessDocuments) {
  for (const std::string& document : GetUselessDocuments()) {
    EXPECT_THAT(Read(document), IsEmpty()) << document.substr(0, 100);
  }
}

}  // namespace
