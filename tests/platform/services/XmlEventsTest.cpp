// SPDX-License-Identifier: Apache-2.0
// Documents, and the events that each of them is read as.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "tests/platform/services/TRecordingXmlParser.h"

namespace NZEPQEL20 {
namespace {

using TEvents = std::vector<std::string>;

struct TDocument {
  const char* name;
  const char* xml;
  TEvents events;
};
void PrintTo(const TDocument& row, std::ostream* out) {
  *out << row.xml;
}

class XmlEventsTest : public ::testing::TestWithParam<TDocument> {};

TEST_P(XmlEventsTest, AreTheSameForATerminatedAndABoundedBuffer) {
  std::string document = GetParam().xml;
  TRecordingXmlParser terminated;
  terminated.Parse(document.data());
  EXPECT_EQ(terminated.m_events, GetParam().events);

  std::vector<char> bytes(document.begin(), document.end());
  TRecordingXmlParser bounded;
  bounded.Parse(bytes.data(), bytes.size());
  EXPECT_EQ(bounded.m_events, GetParam().events);
}

const char* GetName(const ::testing::TestParamInfo<TDocument>& row) {
  return row.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Elements, XmlEventsTest,
    ::testing::Values(
        TDocument{"Empty", "<a/>", {"<a>", "</a>"}},
        TDocument{"Nested", "<a><b/><c></c></a>", {"<a>", "<b>", "</b>", "<c>", "</c>", "</a>"}},
        TDocument{"CaseKept", "<Ab cD='E'/>", {"<Ab cD=E>", "</Ab>"}},
        TDocument{"AttributesByName", "<a z='1' b='2' B='3'/>", {"<a B=3 b=2 z=1>", "</a>"}},
        TDocument{
            "AttributesOfEachTagAlone", "<a x='1'><b/></a>", {"<a x=1>", "<b>", "</b>", "</a>"}},
        TDocument{"AttributeBlanksKept", "<a x=' y '/>", {"<a x= y >", "</a>"}},
        TDocument{"AttributeEntities", "<a x='&lt;&#65;&quot;'/>", {"<a x=<A\">", "</a>"}},
        TDocument{"Declaration", "<?xml version='1.0'?><a/>", {"<a>", "</a>"}},
        TDocument{"Instruction", "<?go  on now?><a/>", {"?go on now", "<a>", "</a>"}},
        TDocument{"Notation",
                  "<!DOCTYPE a [<!NOTATION n PUBLIC 'p' 's'><!NOTATION m SYSTEM 't'>]><a/>",
                  {"notation n p s", "notation m - t", "<a>", "</a>"}},
        TDocument{"DefaultedAttribute",
                  "<!DOCTYPE a [<!ATTLIST a k CDATA 'v'>]><a/>",
                  {"<a k=v>", "</a>"}},
        TDocument{"ByteOrderMark", "\xEF\xBB\xBF<a/>", {"<a>", "</a>"}},
        TDocument{"Latin1",
                  "<?xml version='1.0' encoding='ISO-8859-1'?><a x='\xE9'>\xE8</a>",
                  {"<a x=\xC3\xA9>", "[\xC3\xA8]", "</a>"}},
        TDocument{
            "OutsideDtdUnread", "<!DOCTYPE a SYSTEM 'file:///etc/hostname'><a/>", {"<a>", "</a>"}}),
    GetName);

INSTANTIATE_TEST_SUITE_P(
    TextIsOneEvent, XmlEventsTest,
    ::testing::Values(
        TDocument{"Plain", "<a>text</a>", {"<a>", "[text]", "</a>"}},
        TDocument{"Blank", "<a> </a>", {"<a>", "[ ]", "</a>"}},
        TDocument{"Lines", "<a>1\n2\r\n3</a>", {"<a>", "[1\n2\n3]", "</a>"}},
        TDocument{"Entities", "<a>1&lt;2&#51;&amp;</a>", {"<a>", "[1<23&]", "</a>"}},
        TDocument{"Cdata", "<a>1<![CDATA[<2>]]>3</a>", {"<a>", "[1<2>3]", "</a>"}},
        TDocument{"EmptyCdata", "<a><![CDATA[]]></a>", {"<a>", "</a>"}},
        TDocument{"Comment", "<a>1<!-- 2 -->3</a>", {"<a>", "[13]", "</a>"}},
        TDocument{"InstructionGoesFirst", "<a>1<?p q?>3</a>", {"<a>", "?p q", "[13]", "</a>"}},
        TDocument{"OwnEntity",
                  "<!DOCTYPE a [<!ENTITY e 'x&#33;y'>]><a>1&e;2</a>",
                  {"<a>", "[1x!y2]", "</a>"}},
        TDocument{"AroundATag",
                  "<a>1<b/>2<b>3</b></a>",
                  {"<a>", "[1]", "<b>", "</b>", "[2]", "<b>", "[3]", "</b>", "</a>"}},
        TDocument{"TagInAnEntity",
                  "<!DOCTYPE a [<!ENTITY e '2<b>3</b>4'>]><a>1&e;5</a>",
                  {"<a>", "[12]", "<b>", "[3]", "</b>", "[45]", "</a>"}}),
    GetName);

INSTANTIATE_TEST_SUITE_P(
    Errors, XmlEventsTest,
    ::testing::Values(
        TDocument{"Nothing", "", {"!1:no element found"}},
        TDocument{"Blanks", " \n\n", {"!3:no element found"}},
        TDocument{"NoXml", "ELF", {"!1:syntax error"}},
        TDocument{"TextBefore", "x<a/>", {"!1:not well-formed (invalid token)"}},
        TDocument{"TextBehind", "<a/>\nx", {"<a>", "</a>", "!2:junk after document element"}},
        TDocument{"TwoRoots", "<a/><b/>", {"<a>", "</a>", "!1:junk after document element"}},
        TDocument{"BrokenOff", "<a>\n<b>cut", {"<a>", "[\n]", "<b>", "!2:no element found"}},
        TDocument{"WrongEnd", "<a>1\n</b></c>", {"<a>", "!2:mismatched tag"}},
        TDocument{"AttributeTwice", "<a x='1' x='2'/>", {"!1:duplicate attribute"}},
        TDocument{"BareAmpersand", "<a>1 & 2</a>", {"<a>", "!1:not well-formed (invalid token)"}},
        TDocument{"NoUtf8", "<a>\xFF</a>", {"<a>", "!1:not well-formed (invalid token)"}},
        TDocument{"UnknownEncoding",
                  "<?xml version='1.0' encoding='klingon'?><a/>",
                  {"!1:unknown encoding"}},
        TDocument{"OtherEncoding",
                  "<?xml version='1.0' encoding='UTF-16'?><a/>",
                  {"!1:encoding specified in XML declaration is incorrect"}},
        TDocument{"UndefinedEntity", "<a>&e;</a>", {"<a>", "!1:undefined entity"}},
        TDocument{"EntityOfAnUnreadDtd",
                  "<!DOCTYPE a SYSTEM 'x'><a>1&e;2<b/></a>",
                  {"<a>", "!1:undefined entity: e"}},
        TDocument{"ItselfInAnEntity",
                  "<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>",
                  {"<a>", "!1:recursive entity reference"}},
        TDocument{"OutsideEntity",
                  "<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/hostname'>]><a>1&e;2</a>",
                  {"<a>", "!1:error in processing external entity reference"}}),
    GetName);

}  // namespace
}  // namespace NZEPQEL20
