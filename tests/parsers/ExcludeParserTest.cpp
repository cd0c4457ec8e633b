// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <ostream>

#include "parsers/ExcludeParser.h"
#include "platform/contract/TRootObject.h"
#include "tests/parsers/Prefixes.h"
#include "tests/parsers/TLogCapture.h"
#include "tests/parsers/TReportingParser.h"

namespace {

using NZEPQEL20::ILogger;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using TTexts = std::vector<std::string>;

struct TDocument {
  const char* name;
  const char* xml;
  TTexts tests;
  TTexts log;
};
void PrintTo(const TDocument& row, std::ostream* out) {
  *out << row.xml;
}

class ExcludeParserTest : public ::testing::TestWithParam<TDocument> {
 protected:
  static TTexts Read(std::string document) {
    ExcludeParser parser;
    parser.Parse(document.data(), document.size());
    return parser.GetRequestedData();
  }

  TLogCapture m_log;
};

TEST_P(ExcludeParserTest, ReadsTheTestsAndLogsWhatIsWrong) {
  EXPECT_EQ(Read(GetParam().xml), GetParam().tests);
  EXPECT_EQ(m_log.m_lines, GetParam().log);
}

TEST_F(ExcludeParserTest, WithoutALoggerReportsNothingAndStillReads) {
  NZEPQEL20::TRootObject::SetCoreLogger(nullptr);
  EXPECT_EQ(Read("<qel><oops/><test name='a'/></qel>"), TTexts{"a"});
  EXPECT_THAT(m_log.m_lines, IsEmpty());
}

const char kUnknown[] = "0 TPrebootTest Parser line 1:Unrecognized identifier";
const char kAttribute[] = "0 TPrebootTest Parser line 1:Unrecognized Attribute.";
const char kNoName[] = "0 TPrebootTest Parser line 1:No Name Specified for Counter identifier";
const char kNoVersion[] = "0 TPrebootTest Parser line 1:No Version Specified for QEL identifier";
const char kNested[] =
    "0 TPrebootTest Parser line 1:Expecting End of Counter Before Beginning New Counter.";

INSTANTIATE_TEST_SUITE_P(
    Good, ExcludeParserTest,
    ::testing::Values(
        TDocument{"NoTests", "<qel version='1'/>", {}, {}},
        TDocument{"InDocumentOrder",
                  "<qel version='1'><test name='b'/><test name='a'/></qel>",
                  {"b", "a"},
                  {}},
        TDocument{
            "Twice", "<qel version='1'><test name='a'/><test name='a'/></qel>", {"a", "a"}, {}},
        TDocument{"AsWritten", "<qel version='1'><test name=' A b '/></qel>", {" A b "}, {}},
        TDocument{"AnyCase",
                  "<QEL version='1'><TEST name='a'/><Test name='b'></tEST></QEL>",
                  {"a"},
                  {"0 TPrebootTest Parser line 1:mismatched tag"}},
        TDocument{"AnyCaseMatching", "<Qel version='1'><TesT name='a'></TesT></Qel>", {"a"}, {}},
        TDocument{"OtherAttributesOfTheList", "<qel a='' version='' z=''/>", {}, {}},
        TDocument{"OtherTextAndInstructions",
                  "<qel version='1'>text<?p q?><test name='a'>more</test></qel>",
                  {"a"},
                  {}},
        TDocument{"TestAlone", "<test name='a'/>", {"a"}, {}},
        TDocument{"ListInATest",
                  "<test name='a'><qel version='1'><test name='b'/></qel></test>",
                  {"b", ""},
                  {}},
        TDocument{"AttributeBehindTheName", "<test name='a' zzz='1'/>", {"a"}, {}}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Bad, ExcludeParserTest,
    ::testing::Values(
        TDocument{"NoVersion", "<qel/>", {}, {kNoVersion}},
        TDocument{"VersionInCapitals", "<qel Version='1'/>", {}, {kNoVersion}},
        TDocument{"NoName", "<test/>", {""}, {kNoName}},
        TDocument{"NameInCapitals", "<test Name='a'/>", {""}, {kAttribute, kNoName}},
        TDocument{"AttributeBeforeTheName", "<test id='1' name='a'/>", {"a"}, {kAttribute}},
        TDocument{"ManyAttributes",
                  "<test a='' b='' c='' x=''/>",
                  {""},
                  {kAttribute, kAttribute, kAttribute, kAttribute, kNoName}},
        TDocument{
            "EmptyNameIsTakenAndIsNone", "<test name=''><test name='b'/></test>", {"b", ""}, {}},
        TDocument{
            "TestInATest", "<test name='a'><test name='b'/></test>", {"a", ""}, {kNested, kNoName}},
        TDocument{"TestInATestWithMore",
                  "<test name='a'><test id='' name='b' z=''/></test>",
                  {"a", ""},
                  {kAttribute, kNested, kAttribute, kNoName}},
        TDocument{"ListWithoutVersionKeepsTheName",
                  "<test name='a'><qel><test name='b'/></qel></test>",
                  {"a", ""},
                  {kNoVersion, kNested, kNoName}},
        TDocument{
            "Unknown", "<other name='x'><test name='a'/></other>", {"a"}, {kUnknown, kUnknown}},
        TDocument{"InTheMiddle",
                  "<qel version='1'><test name='a'/><testt/><test/><test name='b'/></qel>",
                  {"a", "", "b"},
                  {kUnknown, kUnknown, kNoName}},
        TDocument{"LineOfTheError",
                  "<qel version='1'>\n<test name='a'/>\n<x/>\n</qel>",
                  {"a"},
                  {"0 TPrebootTest Parser line 3:Unrecognized identifier",
                   "0 TPrebootTest Parser line 3:Unrecognized identifier"}},
        TDocument{"BrokenOff",
                  "<qel version='1'>\n<test name='a'/><test name='b'>",
                  {"a"},
                  {"0 TPrebootTest Parser line 2:no element found"}}),
    [](const auto& row) { return row.param.name; });

TEST_F(ExcludeParserTest, KeepsTheListAsTheCurrentElementAfterItsEnd) {
  TReportingParser<ExcludeParser> parser;
  std::string document = "<QEL version='1'><Test name='a'/><Other/></QEL>";
  parser.Parse(document.data());
  EXPECT_THAT(parser.m_elements, ElementsAre("qel", "test", "", "other", "", "qel"));
  EXPECT_THAT(parser.m_reports, ElementsAre("Unrecognized identifier", "Unrecognized identifier"));
}

TEST_F(ExcludeParserTest, PutsNothingBehindTheColonForNoText) {
  ExcludeParser parser;
  parser.FatalError(nullptr);
  EXPECT_THAT(m_log.m_lines, ElementsAre("0 TPrebootTest Parser line 1:"));
}

TEST_F(ExcludeParserTest, LogsDebugOutputUnderItsOwnNameAndSeverity) {
  ExcludeParser parser;
  parser.DebugOutput(ILogger::kWarning, "careful");
  parser.DebugOutput(ILogger::kTrace, "");
  EXPECT_THAT(m_log.m_lines,
              ElementsAre("1 ExcludeParser line 1:careful", "3 ExcludeParser line 1:"));
}

TEST_F(ExcludeParserTest, AsksForTheLoggerForEachMessage) {
  ExcludeParser parser;
  parser.FatalError("first");
  {
    TLogCapture other;
    parser.FatalError("second");
    EXPECT_EQ(other.m_lines.size(), 1U);
  }
  EXPECT_EQ(m_log.m_lines.size(), 1U);
}

TEST_F(ExcludeParserTest, GivesACopyOfItsList) {
  ExcludeParser parser;
  std::string document = "<test name='a'/>";
  parser.Parse(document.data());
  parser.GetRequestedData().clear();
  EXPECT_THAT(parser.GetRequestedData(), ElementsAre("a"));
}

TEST_F(ExcludeParserTest, IsDestroyedThroughItsBase) {
  std::unique_ptr<NZEPQEL20::TXmlParser> parser = std::make_unique<ExcludeParser>();
  std::string document = "<test name='a name that does not fit into the string object itself'>";
  parser->Parse(document.data());
  parser.reset();
  EXPECT_EQ(m_log.m_lines.size(), 1U);
}

TEST_F(ExcludeParserTest, ReadsEveryPrefixAsThePrefixOfTheList) {
  const std::string document =
      "<?xml version='1.0'?>\n<qel version='1'>\n<!-- c -->\n<test name='a'/><test name='b'>"
      "</test><TEST name='c'/>\n</qel>\n";
  const TTexts whole = Read(document);
  EXPECT_THAT(whole, ElementsAre("a", "b", "c"));
  for (const std::string& prefix : GetPrefixes(document)) {
    const TTexts part = Read(prefix);
    ASSERT_LE(part.size(), whole.size()) << prefix;
    EXPECT_TRUE(std::equal(part.begin(), part.end(), whole.begin())) << prefix;
  }
}

TEST_F(ExcludeParserTest, GetsNothingOutOfUselessDocuments) {
  for (const std::string& document : GetUselessDocuments()) {
    m_log.m_lines.clear();
    EXPECT_THAT(Read(document), IsEmpty()) << document.substr(0, 100);
    EXPECT_FALSE(m_log.m_lines.empty()) << document.substr(0, 100);
  }
}

}  // namespace
