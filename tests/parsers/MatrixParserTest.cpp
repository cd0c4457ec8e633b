// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

#include "parsers/MatrixParser.h"
#include "tests/parsers/Prefixes.h"
#include "tests/parsers/TLogCapture.h"
#include "tests/parsers/TReportingParser.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using TTexts = std::vector<std::string>;
using TMatrix = std::multimap<std::string, std::string>;

const char kUnknown[] = "Unrecognized identifier";
const char kAttribute[] = "Unrecognized Attribute.";
const char kNoName[] = "No Name Specified for Object identifier";
const char kNoListName[] = "No Version Specified for DIAGLIST identifier";

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
  MatrixParser parser;
  parser.Parse(document.data(), document.size());
  return parser.getDiagnosticMatrix();
}

class MatrixParserTest : public ::testing::TestWithParam<TDocument> {
 protected:
  TLogCapture m_log;
};

TEST_P(MatrixParserTest, ReadsTheMatrixAndLogsNothing) {
  TReportingParser<MatrixParser> parser;
  std::string document = GetParam().xml;
  parser.Parse(document.data());
  EXPECT_EQ(parser.getDiagnosticMatrix(), GetParam().matrix);
  EXPECT_EQ(parser.m_reports, GetParam().reports);
  EXPECT_THAT(m_log.m_lines, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    All, MatrixParserTest,
    ::testing::Values(
        TDocument{"OneOfEach",
                  "<diaglist name='l'><diagnostictest name='t'><box name='b'/></diagnostictest>"
                  "</diaglist>",
                  {{"t", "b"}},
                  {}},
        TDocument{"AnyCaseAndAsWritten",
                  "<DiagList name='l'><DIAGNOSTICTEST name=' T '><Box name=' B '/>"
                  "</DIAGNOSTICTEST></DiagList>",
                  {{" T ", " B "}},
                  {}},
        TDocument{"BoxesInDocumentOrder",
                  "<diagnostictest name='t'><box name='2'/><box name='1'/><box name='2'/>"
                  "</diagnostictest>",
                  {{"t", "2"}, {"t", "1"}, {"t", "2"}},
                  {}},
        TDocument{"TestTwice",
                  "<diaglist name=''><diagnostictest name='b'><box name='1'/></diagnostictest>"
                  "<diagnostictest name='a'><box name='2'/></diagnostictest>"
                  "<diagnostictest name='b'><box name='3'/></diagnostictest></diaglist>",
                  {{"a", "2"}, {"b", "1"}, {"b", "3"}},
                  {}},
        TDocument{"BoxOutside", "<box name='b'/>", {{"", "b"}}, {}},
        TDocument{"BoxBehindATest",
                  "<diaglist name='l'><diagnostictest name='t'/><box name='b'/></diaglist>",
                  {{"", "b"}},
                  {}},
        TDocument{
            "BoxWithoutName", "<diagnostictest name='t'><box/></diagnostictest>", {{"t", ""}}, {}},
        TDocument{"InnerBoxTakesTheOuters",
                  "<diagnostictest name='t'><box name='b'><box/></box></diagnostictest>",
                  {{"t", "b"}, {"t", ""}},
                  {}},
        TDocument{"InnerTestTakesTheOuters",
                  "<diagnostictest name='t'><diagnostictest><box name='b'/></diagnostictest>"
                  "<box name='c'/></diagnostictest>",
                  {{"t", "b"}, {"", "c"}},
                  {}},
        TDocument{"NoListName", "<diaglist version='1'/>", {}, {kNoListName}},
        TDocument{"ListNameInCapitals", "<diaglist Name='1'/>", {}, {kNoListName}},
        TDocument{"OtherAttributesOfTheList", "<diaglist a='' name='' z=''/>", {}, {}},
        TDocument{"NoTestName",
                  "<diagnostictest><box name='b'/></diagnostictest>",
                  {{"", "b"}},
                  {kNoName}},
        TDocument{"EmptyTestName", "<diagnostictest name=''/>", {}, {kNoName}},
        TDocument{"TestNameInCapitals", "<diagnostictest Name='t'/>", {}, {kAttribute, kNoName}},
        TDocument{"AttributesAroundTheNames",
                  "<diagnostictest a='' name='t' z=''><box a='' name='b' z=''/></diagnostictest>",
                  {{"t", "b"}},
                  {kAttribute, kAttribute, kAttribute, kAttribute}},
        TDocument{"Unknown", "<x><box name='b'/></x>", {{"", "b"}}, {kUnknown, kUnknown}},
        TDocument{"TextChangesNothing", "<box name='b'>text<?p q?></box>", {{"", "b"}}, {}}),
    [](const auto& row) { return row.param.name; });

TEST_F(MatrixParserTest, ClearsTheCurrentElementOnlyAfterAnUnknownOne) {
  TReportingParser<MatrixParser> parser;
  std::string document =
      "<DiagList name='l'><DiagnosticTest name='t'><BOX/><x/></DiagnosticTest></DiagList>";
  parser.Parse(document.data());
  EXPECT_THAT(parser.m_elements, ElementsAre("diaglist", "diagnostictest", "box", "box", "x", "",
                                             "diagnostictest", "diaglist"));
}

TEST_F(MatrixParserTest, KeepsTheLatestTextUpToItsNulWhateverItsLength) {
  MatrixParser parser;
  parser.characters(" one ", 5);
  parser.characters(" two\0three", 0);
  EXPECT_EQ(TParsersTestAccess::GetCharacterData(parser), " two");
}

TEST_F(MatrixParserTest, DiscardsDebugOutput) {
  MatrixParser parser;
  parser.DebugOutput(NZEPQEL20::ILogger::kError, "lost");
  parser.FatalError("lost");
  parser.FatalError(nullptr);
  EXPECT_THAT(m_log.m_lines, IsEmpty());
}

TEST_F(MatrixParserTest, ReadsEveryPrefixAsAPartOfTheMatrix) {
  const std::string document =
      "<diaglist name='l'>\n<diagnostictest name='a'><box name='1'/><box name='2'/>"
      "</diagnostictest><diagnostictest name='b'><box name='3'></box></diagnostictest></diaglist>";
  const TMatrix whole = Read(document);
  EXPECT_EQ(whole, (TMatrix{{"a", "1"}, {"a", "2"}, {"b", "3"}}));
  for (const std::string& prefix : GetPrefixes(document)) {
    const TMatrix part = Read(prefix);
    ASSERT_LE(part.size(), whole.size()) << prefix;
    EXPECT_TRUE(std::equal(part.begin(), part.end(), whole.begin())) << prefix;
  }
}

TEST_F(MatrixParserTest, GetsNothingOutOfUselessDocuments) {
  for (const std::string& document : GetUselessDocuments()) {
    EXPECT_THAT(Read(document), IsEmpty()) << document.substr(0, 100);
  }
}

}  // namespace
