// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <utility>

#include "parsers/ResultParser.h"
#include "platform/contract/TOSSpecific.h"
#include "tests/parsers/Prefixes.h"
#include "tests/parsers/TLogCapture.h"
#include "tests/parsers/TReportingParser.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using TTexts = std::vector<std::string>;

const char kUnknown[] = "Unrecognized identifier";
const char kAttribute[] = "Unrecognized Attribute.";
const char kNoName[] = "No Name Specified for Object identifier";
const char kNoVersion[] = "No Version Specified for DIAGANALYSIS identifier";

// An entry in one line: `key{name|state|code|message;message;|priority.text;priority.text;}`.
std::string Describe(const std::string& key, const TDiagnosticResultMessage& entry) {
  std::string messages;
  for (const std::string& text : entry.messages) messages += text + ";";
  std::string actions;
  for (const TDiagnosticAction& action : entry.actions) {
    actions += action.priority + "." + action.text + ";";
  }
  return key + "{" + entry.testName + "|" + entry.state + "|" + entry.errorCode + "|" + messages +
         "|" + actions + "}";
}

TTexts Describe(const ResultParser::TResultMsgs& entries) {
  TTexts texts;
  for (const auto& [key, entry] : entries) texts.push_back(Describe(key, entry));
  return texts;
}

struct TDocument {
  const char* name;
  const char* xml;
  TTexts entries;
  TTexts reports;
};
void PrintTo(const TDocument& row, std::ostream* out) {
  *out << row.xml;
}

class ResultParserTest : public ::testing::TestWithParam<TDocument> {
 protected:
  ~ResultParserTest() override { NZEPQEL20::TOSSpecific::SetOEMBuild(false); }

  static TTexts Read(std::string document) {
    ResultParser parser;
    parser.Parse(document.data());
    return Describe(parser.getResultMsgs());
  }

  TLogCapture m_log;
};

TEST_P(ResultParserTest, ReadsTheEntriesAndLogsNothing) {
  TReportingParser<ResultParser> parser;
  std::string document = GetParam().xml;
  parser.Parse(document.data());
  EXPECT_EQ(Describe(parser.getResultMsgs()), GetParam().entries);
  EXPECT_EQ(parser.m_reports, GetParam().reports);
  EXPECT_THAT(m_log.m_lines, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Good, ResultParserTest,
    ::testing::Values(
        TDocument{"Whole",
                  "<diaganalysis version='1'>\n <diagnostictest name='Disk Test'>\n"
                  "  <result state='Failed'>\n   <errorcode>0xAB</errorcode>\n"
                  "   <msg>Bad.</msg>\n   <action priority='1'>Mend it.</action>\n"
                  "   <action priority='A'>Replace it.</action>\n"
                  "   <oemaction priority='1'>Call us.</oemaction>\n"
                  "  </result>\n </diagnostictest>\n</diaganalysis>\n",
                  {"disk test{disk test|failed|0xAB|Bad.;|1.Mend it.;a.Replace it.;}"},
                  {}},
        TDocument{"AnyCase",
                  "<DiagAnalysis version='1'><DiagnosticTest name='T'><RESULT state='OK'>"
                  "<ErrorCode>C</ErrorCode><MSG>M</MSG><Action priority='P'>A</Action>"
                  "<OEMaction>O</OEMaction></RESULT></DiagnosticTest></DiagAnalysis>",
                  {"t{t|ok|C|M;|p.A;}"},
                  {}},
        TDocument{"ResultsOfATestInFileOrder",
                  "<diagnostictest name='t'><result state='z'/><result state='a'/>"
                  "<result state='z'/></diagnostictest>",
                  {"t{t|z|||}", "t{t|a|||}", "t{t|z|||}"},
                  {}},
        TDocument{"TestTwice",
                  "<diaganalysis version=''><diagnostictest name='b'><result state='1'/>"
                  "</diagnostictest><diagnostictest name='a'><result state='2'/></diagnostictest>"
                  "<diagnostictest name='B'><result state='3'/></diagnostictest></diaganalysis>",
                  {"a{a|2|||}", "b{b|1|||}", "b{b|3|||}"},
                  {}},
        TDocument{"NothingCarriedToTheNextResult",
                  "<diagnostictest name='t'><result state='1'><errorcode>c</errorcode><msg>m</msg>"
                  "<action priority='p'>a</action></result><result/></diagnostictest>",
                  {"t{t|1|c|m;|p.a;}", "t{t||||}"},
                  {}},
        TDocument{"MessagesAndActionsInOrder",
                  "<diagnostictest name='t'><result><msg>b</msg><msg>a</msg><action>2</action>"
                  "<action>1</action></result></diagnostictest>",
                  {"t{t|||b;a;|.2;.1;}"},
                  {}},
        TDocument{"EmptyMessagesCount",
                  "<diagnostictest name='t'><result><msg/><msg> </msg></result></diagnostictest>",
                  {"t{t|||;;|}"},
                  {}},
        TDocument{"OtherAttributesOfAnAction",
                  "<diagnostictest name='t'><result><action a='' priority='1' z=''>x</action>"
                  "<oemaction q=''>y</oemaction></result></diagnostictest>",
                  {"t{t||||1.x;}"},
                  {}},
        TDocument{"InstructionsAndComments",
                  "<diagnostictest name='t'><result><msg>a<?p q?>b<!-- c -->d</msg></result>"
                  "</diagnostictest>",
                  {"t{t|||abd;|}"},
                  {}}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Text, ResultParserTest,
    ::testing::Values(
        TDocument{"Trimmed",
                  "<diagnostictest name='t'><result><msg> \t\r\n a \n b \n</msg></result>"
                  "</diagnostictest>",
                  {"t{t|||a \n b;|}"},
                  {}},
        TDocument{"OneEventIsTrimmedOnce",
                  "<diagnostictest name='t'><result><msg>a &amp; <![CDATA[ b ]]> c</msg></result>"
                  "</diagnostictest>",
                  {"t{t|||a &  b  c;|}"},
                  {}},
        TDocument{"EventsAreJoinedWithoutASeparator",
                  "<diagnostictest name='t'><result><msg> a <x/> b <x/> c </msg></result>"
                  "</diagnostictest>",
                  {"t{t|||abc;|}"},
                  {kUnknown, kUnknown, kUnknown, kUnknown}},
        TDocument{"CaseKept",
                  "<diagnostictest name='t'><result><errorcode>aB</errorcode><msg>cD</msg>"
                  "<action>eF</action></result></diagnostictest>",
                  {"t{t||aB|cD;|.eF;}"},
                  {}},
        TDocument{"GluedFromOutsideATest",
                  "<diaganalysis version=''><msg>1</msg><errorcode>2</errorcode>"
                  "<diagnostictest name='t'><result><msg>3</msg><errorcode>4</errorcode></result>"
                  "</diagnostictest></diaganalysis>",
                  {"t{t||4|123;|}"},
                  {}},
        TDocument{"GluedIntoAnAction",
                  "<diagnostictest name='t'>1<result>2<action>3</action></result>"
                  "</diagnostictest>",
                  {"t{t||||.123;}"},
                  {}},
        TDocument{"GluedAcrossTests",
                  "<diaganalysis version=''><diagnostictest name='a'><result>1</result>"
                  "</diagnostictest><diagnostictest name='b'><result><msg>2</msg></result>"
                  "</diagnostictest></diaganalysis>",
                  {"a{a||||}", "b{b|||12;|}"},
                  {}},
        TDocument{"DroppedWithTheActionThatDoesNotApply",
                  "<diagnostictest name='t'><result>1<oemaction>2</oemaction><msg>3</msg></result>"
                  "</diagnostictest>",
                  {"t{t|||3;|}"},
                  {}},
        TDocument{"OfAnUnknownElementIsGlued",
                  "<diagnostictest name='t'><result><note>1</note><msg>2</msg></result>"
                  "</diagnostictest>",
                  {"t{t|||12;|}"},
                  {kUnknown, kUnknown}}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Bad, ResultParserTest,
    ::testing::Values(
        TDocument{"NoVersion", "<diaganalysis/>", {}, {kNoVersion}},
        TDocument{"VersionInCapitals", "<diaganalysis Version='1'/>", {}, {kNoVersion}},
        TDocument{"OtherAttributesOfTheCatalogue", "<diaganalysis a='' version='' z=''/>", {}, {}},
        TDocument{"NameInCapitals",
                  "<diagnostictest Name='t'><result state='s'><errorcode>1</errorcode>"
                  "<msg>2</msg><action priority='1'>3</action></result></diagnostictest>",
                  {"{|s|||1.123;}"},
                  {kAttribute, kNoName}},
        TDocument{"EmptyName", "<diagnostictest name=''/>", {}, {kNoName}},
        TDocument{"AttributesAroundTheName",
                  "<diagnostictest a='' name='t' z=''><result a='' state='s' z=''/>"
                  "</diagnostictest>",
                  {"t{t|s|||}"},
                  {kAttribute, kAttribute, kAttribute, kAttribute}},
        TDocument{"StateInCapitals",
                  "<diagnostictest name='t'><result State='s'/></diagnostictest>",
                  {"t{t||||}"},
                  {kAttribute}},
        TDocument{"InnerTestWithoutNameTakesTheOuters",
                  "<diagnostictest name='t'><diagnostictest><result/></diagnostictest><result/>"
                  "</diagnostictest>",
                  {"{||||}", "t{t||||}"},
                  {}},
        TDocument{"ResultOutside", "<result state='s'/>", {"{|s|||}"}, {}},
        TDocument{"ActionOutsideAResultGoesToTheNext",
                  "<diagnostictest name='t'><action priority='1'>a</action><result/>"
                  "</diagnostictest>",
                  {"t{t||||1.a;}"},
                  {}},
        TDocument{"Unknown", "<x><result state='s'/></x>", {"{|s|||}"}, {kUnknown, kUnknown}},
        TDocument{"BrokenOff",
                  "<diagnostictest name='t'><result state='1'></result><result state='2'><msg>cut",
                  {"t{t|1|||}"},
                  {"no element found"}}),
    [](const auto& row) { return row.param.name; });

TEST_F(ResultParserTest, UsesTheOtherActionsInAnOEMBuild) {
  NZEPQEL20::TOSSpecific::SetOEMBuild(true);
  EXPECT_THAT(Read("<diagnostictest name='t'><result><action priority='1'>a</action>"
                   "<oemaction priority='B'>o</oemaction><msg>m</msg></result></diagnostictest>"),
              ElementsAre("t{t|||m;|b.o;}"));
}

TEST_F(ResultParserTest, LeavesThePriorityOfAnActionThatDoesNotApply) {
  EXPECT_THAT(Read("<diagnostictest name='t'><result><oemaction priority='1'>o</oemaction>"
                   "<action>a</action></result></diagnostictest>"),
              ElementsAre("t{t||||.a;}"));
}

TEST_F(ResultParserTest, AsksOnceWhetherThisIsAnOEMBuild) {
  ResultParser parser;
  NZEPQEL20::TOSSpecific::SetOEMBuild(true);
  std::string document = "<result><action>a</action><oemaction>o</oemaction></result>";
  parser.Parse(document.data());
  EXPECT_THAT(Describe(parser.getResultMsgs()), ElementsAre("{||||.a;}"));
}

TEST_F(ResultParserTest, ClearsTheCurrentElementAfterEveryEnd) {
  TReportingParser<ResultParser> parser;
  std::string document =
      "<DiagAnalysis version=''><DiagnosticTest name='t'><Result><Msg/><ErrorCode/><Action/>"
      "<OemAction/><X/></Result></DiagnosticTest></DiagAnalysis>";
  parser.Parse(document.data());
  EXPECT_THAT(parser.m_elements,
              ElementsAre("diaganalysis", "diagnostictest", "result", "msg", "", "errorcode", "",
                          "action", "", "oemaction", "", "x", "", "", "", ""));
}

TEST_F(ResultParserTest, TakesTextUpToItsNulWhateverItsLength) {
  ResultParser parser;
  NZEPQEL20::TXmlAttributes test{{"name", "t"}};
  parser.StartElement("diagnostictest", test);
  parser.characters(" a ", 0);
  parser.characters("b\0c", 3);
  parser.characters(" \n", 2);
  parser.EndElement("msg");
  parser.EndElement("result");
  EXPECT_THAT(Describe(parser.getResultMsgs()), ElementsAre("t{t|||ab;|}"));
}

TEST_F(ResultParserTest, GivesItsEntriesAsACopyOrAway) {
  ResultParser parser;
  std::string document = "<result state='s'/>";
  parser.Parse(document.data());
  EXPECT_EQ(parser.getResultMsgs().size(), 1U);
  EXPECT_EQ(parser.getResultMsgs().size(), 1U);
  EXPECT_EQ(std::move(parser).getResultMsgs().size(), 1U);
}

TEST_F(ResultParserTest, DiscardsDebugOutput) {
  ResultParser parser;
  parser.DebugOutput(NZEPQEL20::ILogger::kError, "lost");
  parser.FatalError("lost");
  parser.FatalError(nullptr);
  EXPECT_THAT(m_log.m_lines, IsEmpty());
}

TEST_F(ResultParserTest, ReadsEveryPrefixAsThePrefixOfTheCatalogue) {
  const std::string document =
      "<diaganalysis version='1'>\n<diagnostictest name='a'><result state='ok'><msg>x &amp; y"
      "</msg></result><result state='failed'><errorcode>1</errorcode><action priority='1'>do"
      "</action></result></diagnostictest><diagnostictest name='b'><result/></diagnostictest>"
      "</diaganalysis>";
  const TTexts whole = Read(document);
  EXPECT_THAT(whole, ElementsAre("a{a|ok||x & y;|}", "a{a|failed|1||1.do;}", "b{b||||}"));
  for (const std::string& prefix : GetPrefixes(document)) {
    const TTexts part = Read(prefix);
    ASSERT_LE(part.size(), whole.size()) << prefix;
    EXPECT_TRUE(std::equal(part.begin(), part.end(), whole.begin())) << prefix;
  }
}

TEST_F(ResultParserTest, GetsNothingOutOfUselessDocuments) {
  for (const std::string& document : GetUselessDocuments()) {
    EXPECT_THAT(Read(document), IsEmpty()) << document.substr(0, 100);
  }
}

}  // namespace
