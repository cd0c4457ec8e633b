// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "tests/platform/services/TRecordingXmlParser.h"

namespace NZEPQEL20 {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> Read(std::string document) {
  TRecordingXmlParser parser;
  parser.Parse(document.data(), document.size());
  return parser.m_events;
}

std::string Repeat(const std::string& text, unsigned int count) {
  std::string all;
  for (unsigned int i = 0; i < count; ++i) all += text;
  return all;
}

TEST(XmlParserTest, ReadsNothingBehindTheBytesItIsGiven) {
  // On the heap and without a spare byte, so that a sanitizer sees a step too far.
  const std::string xml = "<a>1</a>";
  const std::unique_ptr<char[]> bytes(new char[xml.size()]);
  xml.copy(bytes.get(), xml.size());
  TRecordingXmlParser parser;
  parser.Parse(bytes.get(), xml.size());
  EXPECT_THAT(parser.m_events, ElementsAre("<a>", "[1]", "</a>"));
}

TEST(XmlParserTest, TakesAnEmptyBufferWithoutAnAddress) {
  TRecordingXmlParser parser;
  parser.Parse(nullptr, 0);
  EXPECT_THAT(parser.m_events, ElementsAre("!1:no element found"));
}

TEST(XmlParserTest, EndsABoundedDocumentAtItsFirstNul) {
  using namespace std::string_literals;
  EXPECT_THAT(Read("<a/>\0<b"s), ElementsAre("<a>", "</a>"));
  EXPECT_THAT(Read("\0<a/>"s), ElementsAre("!1:no element found"));
}

TEST(XmlParserTest, ReportsSixteenBitTextAsOneError) {
  using namespace std::string_literals;
  EXPECT_EQ(Read("\xFF\xFE<\0a\0/\0>\0"s).size(), 1U);
}

TEST(XmlParserTest, CountsLinesInsideEventsAndAfterAnError) {
  struct TLineParser : TRecordingXmlParser {
    void StartElement(const char*, TXmlAttributes&) override { m_lines.push_back(GetCurLine()); }
    void EndElement(const char*) override { m_lines.push_back(GetCurLine()); }
    std::vector<unsigned int> m_lines;
  } parser;
  EXPECT_EQ(parser.GetCurLine(), 1U);
  std::string document = "<a>\n<b/>\n text\n</a>\n<";
  parser.Parse(document.data());
  EXPECT_THAT(parser.m_lines, ElementsAre(1U, 2U, 2U, 4U));
  EXPECT_EQ(parser.GetCurLine(), 5U);
}

TEST(XmlParserTest, ReadsADocumentLongerThanOnePieceAsOne) {
  const std::string text(5 << 20, 'x');
  const std::vector<std::string> events = Read("<a k='" + text + "'>" + text + "\n<b/></a>");
  ASSERT_EQ(events.size(), 5U);
  EXPECT_EQ(events[0], "<a k=" + text + ">");
  EXPECT_EQ(events[1], "[" + text + "\n]");
  EXPECT_EQ(events[2], "<b>");
}

TEST(XmlParserTest, CountsLinesAcrossPieces) {
  EXPECT_THAT(Read("<a>" + std::string(3 << 20, '\n') + "</b>"),
              ElementsAre("<a>", "!3145729:mismatched tag"));
}

TEST(XmlParserTest, RefusesASecondDocument) {
  TRecordingXmlParser parser;
  std::string document = "<a/>";
  parser.Parse(document.data());
  parser.m_events.clear();
  parser.Parse(document.data());
  EXPECT_THAT(parser.m_events, ElementsAre("!1:the parser has already read a document"));
}

TEST(XmlParserTest, RefusesADocumentFromWithinAnEvent) {
  struct TNestingParser : TRecordingXmlParser {
    void StartElement(const char*, TXmlAttributes&) override { Parse(m_other.data()); }
    std::string m_other = "<other/>";
  } parser;
  std::string document = "<a/>";
  parser.Parse(document.data());
  EXPECT_THAT(parser.m_events, ElementsAre("!1:the parser has already read a document", "</a>"));
}

// Throws from the event of a chosen kind.
class TThrowingParser : public TRecordingXmlParser {
 public:
  explicit TThrowingParser(std::string kind) : m_kind(std::move(kind)) {}

  void StartElement(const char* name, TXmlAttributes& attributes) override {
    ThrowIf("start");
    TRecordingXmlParser::StartElement(name, attributes);
  }
  void EndElement(const char* name) override {
    ThrowIf("end");
    TRecordingXmlParser::EndElement(name);
  }
  void characters(const char* text, unsigned int length) override {
    ThrowIf("text");
    TRecordingXmlParser::characters(text, length);
  }
  void processingInstruction(const char*, const char*) override { ThrowIf("instruction"); }
  void notationDecl(const char*, const char*, const char*) override { ThrowIf("notation"); }
  void FatalError(const char*) override { ThrowIf("error"); }

 private:
  void ThrowIf(const std::string& kind) {
    if (kind != m_kind) return;
    m_events.push_back("thrown");
    throw std::runtime_error(kind);
  }

  std::string m_kind;
};

class XmlExceptionTest : public ::testing::TestWithParam<const char*> {};

TEST_P(XmlExceptionTest, LeavesTheParseOnceAndEndsIt) {
  std::string document = "<!DOCTYPE a [<!NOTATION n SYSTEM 's'>]><?p q?><a>1<b/></a><b/>";
  TThrowingParser parser(GetParam());
  try {
    parser.Parse(document.data());
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), GetParam());
  }
  ASSERT_FALSE(parser.m_events.empty());
  EXPECT_EQ(parser.m_events.back(), "thrown");
}
INSTANTIATE_TEST_SUITE_P(FromEveryEvent, XmlExceptionTest,
                         ::testing::Values("start", "end", "text", "instruction", "notation",
                                           "error"));

TEST(XmlParserTest, LetsAnExceptionOutOfTheReportOfALimit) {
  std::string document = Repeat("<e>", TXmlParser::kMaxDepth + 1);
  TThrowingParser parser("error");
  EXPECT_THROW(parser.Parse(document.data()), std::runtime_error);
}

TEST(XmlLimitsTest, AcceptsTheDeepestNestingAndNoMore) {
  const unsigned int deepest = TXmlParser::kMaxDepth;
  const std::string open = Repeat("<e>", deepest);
  const std::string close = Repeat("</e>", deepest);
  EXPECT_EQ(Read(open + close).size(), 2 * deepest);

  const std::vector<std::string> events = Read(open + "<e/>" + close);
  ASSERT_EQ(events.size(), deepest + 1);
  EXPECT_EQ(events.back(), "!1:nested too deeply");
}

TEST(XmlLimitsTest, CountsDepthAndNotElements) {
  const std::vector<std::string> events =
      Read("<a>" + Repeat("<e/>", 4 * TXmlParser::kMaxDepth) + "</a>");
  EXPECT_EQ(events.size(), 8 * TXmlParser::kMaxDepth + 2);
}

std::string MakeLaughs(unsigned int levels) {
  std::string dtd = "<!ENTITY e0 'ha!'>";
  for (unsigned int i = 1; i <= levels; ++i) {
    dtd += "<!ENTITY e" + std::to_string(i) + " '" +
           Repeat("&e" + std::to_string(i - 1) + ";", 10) + "'>";
  }
  return "<!DOCTYPE a [" + dtd + "]><a>&e" + std::to_string(levels) + ";</a>";
}

TEST(XmlLimitsTest, StopsRunawayEntities) {
  EXPECT_THAT(Read(MakeLaughs(9)),
              ElementsAre("<a>",
                          "!1:limit on input amplification factor (from DTD and entities) "
                          "breached"));
}

TEST(XmlLimitsTest, StopsOneLongEntityUsedOftenInAttributes) {
  const std::string document = "<!DOCTYPE a [<!ENTITY e '" + std::string(10000, 'x') + "'>]><a>" +
                               Repeat("<b k='&e;'/>", 1000) + "</a>";
  EXPECT_EQ(Read(document).back(),
            "!1:limit on input amplification factor (from DTD and entities) breached");
}

std::string MakeDefaults(std::size_t bytes, unsigned int elements) {
  return "<!DOCTYPE a [<!ATTLIST b k CDATA '" + std::string(bytes, 'x') + "'>]><a>" +
         Repeat("<b/>", elements) + "</a>";
}

TEST(XmlLimitsTest, StopsALongDefaultOfAnAttributeThatManyElementsHave) {
  const std::vector<std::string> events = Read(MakeDefaults(10000, 1000));
  EXPECT_EQ(events.back(), "!1:attributes that the DTD fills in expand it too far");
  // 256 KiB are free, and so many tags do not fill more.
  EXPECT_EQ(events.size(), 1U + 2 * 26U + 1U);
}

TEST(XmlLimitsTest, FillsAttributesInThatAreDeclaredWithReason) {
  const std::vector<std::string> events = Read(MakeDefaults(10, 3));
  EXPECT_EQ(events[1], "<b k=xxxxxxxxxx>");
  EXPECT_EQ(events.size(), 8U);
}

TEST(XmlLimitsTest, ExpandsAFewEntitiesOfReasonableSize) {
  const std::vector<std::string> events = Read(MakeLaughs(3));
  ASSERT_EQ(events.size(), 3U);
  EXPECT_EQ(events[1].size(), 3002U);
}

TEST(XmlLimitsTest, RefusesAChainOfEntitiesThatWouldExhaustTheStack) {
  std::string dtd = "<!ENTITY e0 'x'>";
  for (unsigned int i = 1; i < 50000; ++i) {
    dtd += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>";
  }
  EXPECT_THAT(Read("<!DOCTYPE a [" + dtd + "]><a>&e49999;</a>"),
              ElementsAre("!1:too many entities"));
}

TEST(XmlLimitsTest, ReadsManyAttributesOfOneElement) {
  std::string tag = "<a";
  for (unsigned int i = 0; i < 50000; ++i) tag += " k" + std::to_string(i) + "=''";
  struct TCountingParser : TRecordingXmlParser {
    void StartElement(const char*, TXmlAttributes& attributes) override {
      m_count = attributes.size();
    }
    std::size_t m_count = 0;
  } parser;
  std::string document = tag + "/>";
  parser.Parse(document.data());
  EXPECT_EQ(parser.m_count, 50000U);
}

TEST(XmlParserTest, ReadsEveryPrefixOfADocumentAsAPrefixOfItsEvents) {
  const std::string document =
      "<?xml version='1.0'?><!DOCTYPE a [<!ENTITY e 'x'>]><a k='v'>1&e;<!-- c --><b>"
      "<![CDATA[2]]></b><?p q?>3</a>\n";
  const std::vector<std::string> whole = Read(document);
  ASSERT_EQ(whole.back(), "</a>");
  for (std::size_t size = 0; size < document.size() - 1; ++size) {
    std::vector<std::string> events = Read(document.substr(0, size));
    SCOPED_TRACE(document.substr(0, size));
    ASSERT_FALSE(events.empty());
    EXPECT_EQ(events.back().front(), '!');
    events.pop_back();
    ASSERT_LE(events.size(), whole.size());
    EXPECT_TRUE(std::equal(events.begin(), events.end(), whole.begin()));
  }
}

// A member pointer to a virtual operation holds its offset in the table, plus one (Itanium C++
// ABI).
template <typename TMember>
std::size_t GetSlot(TMember member) {
  std::uintptr_t parts[2];
  static_assert(sizeof(member) == sizeof(parts));
  std::memcpy(parts, &member, sizeof(parts));
  return (parts[0] - 1) / sizeof(void*);
}

struct TSlots : TXmlParser {
  static std::vector<std::size_t> Get() {
    return {GetSlot(&TSlots::StartElement),
            GetSlot(&TSlots::EndElement),
            GetSlot(&TSlots::processingInstruction),
            GetSlot(&TSlots::characters),
            GetSlot(&TSlots::notationDecl),
            GetSlot(&TSlots::FatalError),
            GetSlot(&TSlots::ParseJSSP),
            GetSlot(&TSlots::ParseCharData),
            GetSlot(&TSlots::GetAttributeNValue)};
  }
};

TEST(XmlParserTest, KeepsItsVirtualOperationsInTheirSlotsBehindTheTwoDestructors) {
  EXPECT_THAT(TSlots::Get(), ElementsAre(2, 3, 4, 5, 6, 7, 8, 9, 10));
}

TEST(XmlParserTest, GathersPiecesTextAndAttributesThroughItsOwnSteps) {
  struct TSteppingParser : TRecordingXmlParser {
    void ParseJSSP() override {
      m_events.push_back("piece");
      TXmlParser::ParseJSSP();
    }
    void ParseCharData() override {
      m_events.push_back("text");
      TXmlParser::ParseCharData();
    }
    void GetAttributeNValue() override {
      m_events.push_back("attributes");
      TXmlParser::GetAttributeNValue();
    }
    void Step() {
      TXmlParser::ParseJSSP();
      TXmlParser::ParseCharData();
      TXmlParser::GetAttributeNValue();
    }
  } parser;
  parser.Step();
  EXPECT_THAT(parser.m_events, IsEmpty());  // Outside a parse there is nothing to do.
  std::string document = "<a k='v'>1</a>";
  parser.Parse(document.data());
  EXPECT_THAT(parser.m_events,
              ElementsAre("piece", "text", "attributes", "<a k=v>", "text", "[1]", "</a>"));
}

}  // namespace
}  // namespace NZEPQEL20
