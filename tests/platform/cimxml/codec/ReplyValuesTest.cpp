// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <limits>
#include <ostream>

#include "platform/cimxml/XmlText.h"
#include "platform/contract/TQELException.h"
#include "tests/platform/cimxml/codec/ReplyDocument.h"

namespace NZEPQEL20::cimxml {
namespace {

TCIMValue Arr(ECIMType type, TCIMValue::TArray elements) {
  return TCIMValue::Array(type, std::move(elements));
}

struct TProperty {
  const char* name;
  const char* element;
  TCIMValue value;
  std::uint64_t oddities = 0;
};

std::ostream& operator<<(std::ostream& out, const TProperty& row) {
  return out << row.name;
}

class ReplyPropertyTest : public ::testing::TestWithParam<TProperty> {};

TEST_P(ReplyPropertyTest, IsReadByItsType) {
  const TReply reply = ReadProperties(GetParam().element);
  ASSERT_EQ(reply.instances.size(), 1U);
  ASSERT_EQ(reply.instances[0].properties.size(), 1U);
  EXPECT_EQ(reply.instances[0].properties[0].name, "P");
  const TCIMValue& value = reply.instances[0].properties[0].value;
  EXPECT_EQ(value, GetParam().value) << value.ToString(10);
  EXPECT_EQ(value.GetType(), GetParam().value.GetType());
  EXPECT_EQ(value.IsArray(), GetParam().value.IsArray());
  EXPECT_EQ(reply.oddities, GetParam().oddities) << reply.firstOddity;
}

#define SCALAR(type, text)                                                     \
  "<PROPERTY NAME=\"P\"  PROPAGATED=\"true\" TYPE=\"" type "\">\n<VALUE>" text \
  "</VALUE>\n</PROPERTY>"

INSTANTIATE_TEST_SUITE_P(
    Scalars, ReplyPropertyTest,
    ::testing::Values(
        TProperty{"Text", SCALAR("string", " a\n b "), TCIMValue(" a\n b ")},
        TProperty{"EmptyText", SCALAR("string", ""), TCIMValue("")},
        TProperty{"EscapedText", SCALAR("string", "&lt;&amp;&apos;&#10;<![CDATA[<x>]]>"),
                  TCIMValue("<&'\n<x>")},
        TProperty{"NoTypeIsText", "<PROPERTY NAME=\"P\"><VALUE>5</VALUE></PROPERTY>",
                  TCIMValue("5")},
        TProperty{"Null", "<PROPERTY NAME=\"P\" TYPE=\"uint16\">\n</PROPERTY>",
                  TCIMValue::Null(ECIMType::kUInt16)},
        TProperty{"TypeInCapitals", SCALAR("UINT16", "5"), TCIMValue::UInt16(5)},
        TProperty{"UInt8", SCALAR("uint8", "255"), TCIMValue::Unsigned(ECIMType::kUInt8, 255)},
        TProperty{"UInt8TooLarge", SCALAR("uint8", "256"), TCIMValue::Null(ECIMType::kUInt8), 1},
        TProperty{"UInt64", SCALAR("uint64", "18446744073709551615"),
                  TCIMValue::Unsigned(ECIMType::kUInt64, UINT64_MAX)},
        TProperty{"UInt64TooLarge", SCALAR("uint64", "18446744073709551616"),
                  TCIMValue::Null(ECIMType::kUInt64), 1},
        TProperty{"Hex", SCALAR("uint32", " 0X1f "), TCIMValue::UInt32(31)},
        TProperty{"NegativeUnsigned", SCALAR("uint32", "-1"), TCIMValue::Null(ECIMType::kUInt32),
                  1},
        TProperty{"SInt8", SCALAR("sint8", "-128"), TCIMValue::Signed(ECIMType::kSInt8, -128)},
        TProperty{"SInt8TooSmall", SCALAR("sint8", "-129"), TCIMValue::Null(ECIMType::kSInt8), 1},
        TProperty{"SInt64", SCALAR("sint64", "-9223372036854775808"),
                  TCIMValue::Signed(ECIMType::kSInt64, INT64_MIN)},
        TProperty{"PlusSign", SCALAR("sint16", "+7"), TCIMValue::Signed(ECIMType::kSInt16, 7)},
        TProperty{"Octal", SCALAR("uint16", "010"), TCIMValue::UInt16(10)},
        TProperty{"NumberWithText", SCALAR("uint16", "5 GB"), TCIMValue::Null(ECIMType::kUInt16),
                  1},
        TProperty{"TwoSigns", SCALAR("sint16", "--5"), TCIMValue::Null(ECIMType::kSInt16), 1},
        TProperty{"EmptyNumber", SCALAR("uint16", ""), TCIMValue::Null(ECIMType::kUInt16)},
        TProperty{"Boolean", SCALAR("boolean", " True "), TCIMValue::Boolean(true)},
        TProperty{"False", SCALAR("boolean", "FALSE"), TCIMValue::Boolean(false)},
        TProperty{"EmptyBoolean", SCALAR("boolean", ""), TCIMValue::Null(ECIMType::kBoolean)},
        TProperty{"BooleanYes", SCALAR("boolean", "yes"), TCIMValue::Null(ECIMType::kBoolean), 1},
        TProperty{"Real", SCALAR("real64", "-1.5E+3"), TCIMValue::Real64(-1500)},
        TProperty{"Infinity", SCALAR("real64", "-INF"),
                  TCIMValue::Real64(-std::numeric_limits<double>::infinity())},
        TProperty{"Real32", SCALAR("real32", "0.5"), TCIMValue::Real32(0.5F)},
        TProperty{"Real32TooLarge", SCALAR("real32", "1e60"), TCIMValue::Null(ECIMType::kReal32),
                  1},
        TProperty{"Char16", SCALAR("char16", "\xE2\x82\xAC"), TCIMValue::Char16(0x20AC)},
        TProperty{"Char16TwoBytes", SCALAR("char16", "\xC3\xA4"), TCIMValue::Char16(0xE4)},
        TProperty{"Char16Blank", SCALAR("char16", " "), TCIMValue::Char16(' ')},
        TProperty{"Char16TooLong", SCALAR("char16", "ab"), TCIMValue::Null(ECIMType::kChar16), 1},
        TProperty{"DateTime", SCALAR("datetime", "20260102030405.000000+060"),
                  TCIMValue::DateTime("20260102030405.000000+060")},
        TProperty{"DateTimeTooShort", SCALAR("datetime", "20260102"),
                  TCIMValue::Null(ECIMType::kDateTime), 1}),
    [](const auto& row) { return std::string(row.param.name); });

#define ARRAY(type, content)                                                     \
  "<PROPERTY.ARRAY NAME=\"P\"  TYPE=\"" type "\" PROPAGATED=\"true\">\n" content \
  "</"                                                                           \
  "PROPERTY.ARRAY>"

INSTANTIATE_TEST_SUITE_P(
    Arrays, ReplyPropertyTest,
    ::testing::Values(
        TProperty{"Null", ARRAY("uint16", ""), TCIMValue::Null(ECIMType::kUInt16, true)},
        TProperty{"Empty", ARRAY("uint16", "<VALUE.ARRAY/>"), Arr(ECIMType::kUInt16, {})},
        TProperty{
            "Numbers",
            ARRAY("uint16", "<VALUE.ARRAY>\n<VALUE>2</VALUE>\n<VALUE>3</VALUE>\n</VALUE.ARRAY>"),
            Arr(ECIMType::kUInt16, {TCIMValue::UInt16(2), TCIMValue::UInt16(3)})},
        TProperty{"NullInside",
                  ARRAY("string", "<VALUE.ARRAY><VALUE>a</VALUE><VALUE.NULL/></VALUE.ARRAY>"),
                  Arr(ECIMType::kString, {TCIMValue("a"), TCIMValue::Null(ECIMType::kString)})},
        TProperty{"EmptyNumberInside", ARRAY("uint16", "<VALUE.ARRAY><VALUE/></VALUE.ARRAY>"),
                  Arr(ECIMType::kUInt16, {TCIMValue::Null(ECIMType::kUInt16)})},
        TProperty{
            "BadNumberInside",
            ARRAY("uint16", "<VALUE.ARRAY><VALUE>x</VALUE><VALUE>1</VALUE></VALUE.ARRAY>"),
            Arr(ECIMType::kUInt16, {TCIMValue::Null(ECIMType::kUInt16), TCIMValue::UInt16(1)}), 1}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ReplyValuesTest, KeepsPropertiesInTheOrderOfTheServer) {
  const TReply reply = ReadProperties(
      "<PROPERTY NAME=\"B\" TYPE=\"string\"/><PROPERTY.ARRAY NAME=\"C\" TYPE=\"string\"/>"
      "<PROPERTY NAME=\"A\" TYPE=\"string\"/>");
  std::string names;
  for (const TCIMPropertyData& property : reply.instances.at(0).properties) names += property.name;
  EXPECT_EQ(names, "BCA");
}

TEST(ReplyValuesTest, NamesThePropertyWhoseValueCouldNotBeRead) {
  const TReply reply = ReadProperties(SCALAR("uint16", "busy"));
  EXPECT_EQ(reply.firstOddity, "P: 'busy' is no uint16");
}

TEST(ReplyValuesTest, PassesOverQualifiersOfInstances) {
  const TReply reply = ReadProperties(
      "<QUALIFIER NAME=\"Q\" TYPE=\"string\"><VALUE>x</VALUE></QUALIFIER>"
      "<PROPERTY NAME=\"P\" TYPE=\"uint16\"><QUALIFIER NAME=\"Key\" TYPE=\"boolean\">"
      "<VALUE>TRUE</VALUE></QUALIFIER><VALUE>5</VALUE></PROPERTY>");
  EXPECT_EQ(reply.instances.at(0).properties.at(0).value, TCIMValue::UInt16(5));
  EXPECT_EQ(reply.oddities, 0U);
}

std::string Embed(const std::string& attribute, const std::string& text) {
  return "<PROPERTY NAME=\"P\" TYPE=\"string\" " + attribute + "><VALUE>" + text +
         "</VALUE></PROPERTY>";
}

TEST(ReplyValuesTest, ReadsAnEmbeddedInstanceHoweverItIsMarkedAndEscaped) {
  const std::string escaped =
      "&lt;INSTANCE CLASSNAME=&quot;A_Set&quot;&gt;&lt;PROPERTY NAME=&quot;Q&quot; "
      "TYPE=&quot;string&quot;&gt;&lt;VALUE&gt;a &amp;amp; b&lt;/VALUE&gt;&lt;/PROPERTY&gt;"
      "&lt;/INSTANCE&gt;";
  const std::string plain =
      "<![CDATA[<INSTANCE CLASSNAME=\"A_Set\"><PROPERTY NAME=\"Q\" TYPE=\"string\"><VALUE>a &amp; b"
      "</VALUE></PROPERTY></INSTANCE>]]>";
  for (const char* attribute :
       {"EmbeddedObject=\"instance\"", "EmbeddedObject=\"object\"", "EMBEDDEDOBJECT=\"object\""}) {
    for (const std::string& text : {escaped, plain}) {
      const TReply reply = ReadProperties(Embed(attribute, text));
      const auto inner = reply.instances.at(0).properties.at(0).value.ToInstance();
      ASSERT_NE(inner, nullptr) << attribute << reply.firstOddity;
      EXPECT_EQ(inner->path.GetClassName(), "A_Set");
      EXPECT_EQ(inner->properties.at(0).value, TCIMValue("a & b"));
    }
  }
}

TEST(ReplyValuesTest, TakesAnEmbeddedClassForNoInstance) {
  const TReply reply =
      ReadProperties(Embed("EmbeddedObject=\"object\"", "&lt;CLASS NAME=&quot;A&quot;/&gt;"));
  EXPECT_TRUE(reply.instances.at(0).properties.at(0).value.IsNull());
  EXPECT_EQ(reply.oddities, 0U);
}

TEST(ReplyValuesTest, ReportsAnEmbeddedInstanceThatCannotBeRead) {
  const TReply reply = ReadProperties(Embed("EmbeddedObject=\"instance\"", "&lt;INSTANCE"));
  EXPECT_TRUE(reply.instances.at(0).properties.at(0).value.IsNull());
  EXPECT_EQ(reply.firstOddity.substr(0, 35), "P: '<INSTANCE' is no instance: line");
}

TEST(ReplyValuesTest, BoundsHowDeepInstancesAreEmbedded) {
  std::string text = "x";
  for (int level = 0; level < 12; ++level) {
    std::string escaped;
    AppendEscaped(escaped, text);
    text =
        "<INSTANCE CLASSNAME=\"A\"><PROPERTY NAME=\"P\" TYPE=\"string\" "
        "EmbeddedObject=\"instance\"><VALUE>" +
        escaped + "</VALUE></PROPERTY></INSTANCE>";
  }
  auto inner = std::make_shared<const TCIMInstanceData>(Read(Return(text)).instances.at(0));
  int levels = 0;
  while (inner != nullptr) {
    ++levels;
    inner = inner->properties.at(0).value.ToInstance();
  }
  EXPECT_EQ(levels, 9);
}

TEST(ReplyValuesTest, ReadsTheResultsOfAMethod) {
  const TReply reply = Read(MethodReturn(
      "<RETURNVALUE PARAMTYPE=\"uint32\"><VALUE>4096</VALUE></RETURNVALUE>"
      "<PARAMVALUE NAME=\"Job\" PARAMTYPE=\"reference\"><VALUE.REFERENCE>"
      "<INSTANCENAME CLASSNAME=\"A_Job\"/></VALUE.REFERENCE></PARAMVALUE>"
      "<PARAMVALUE NAME=\"Parts\" PARAMTYPE=\"reference\"><VALUE.REFARRAY><VALUE.REFERENCE>"
      "<CLASSNAME NAME=\"A\"/></VALUE.REFERENCE></VALUE.REFARRAY></PARAMVALUE>"
      "<PARAMVALUE NAME=\"List\" TYPE=\"uint8\"><VALUE.ARRAY><VALUE>1</VALUE></VALUE.ARRAY>"
      "</PARAMVALUE>"
      "<PARAMVALUE NAME=\"None\" PARAMTYPE=\"string\"/>"
      "<PARAMVALUE NAME=\"Set\" PARAMTYPE=\"string\"><INSTANCE "
      "CLASSNAME=\"A_Set\"/></PARAMVALUE>"));
  EXPECT_EQ(reply.name, "Run");
  EXPECT_EQ(reply.returnValue, TCIMValue::UInt32(4096));
  ASSERT_EQ(reply.parameters.size(), 5U);
  EXPECT_EQ(reply.parameters.at("Job").ToString(10), "root/cimv2:A_Job");
  EXPECT_EQ(reply.parameters.at("Parts").ToString(10), "root/cimv2:A");
  EXPECT_TRUE(reply.parameters.at("Parts").IsArray());
  EXPECT_EQ(reply.parameters.at("List"),
            Arr(ECIMType::kUInt8, {TCIMValue::Unsigned(ECIMType::kUInt8, 1)}));
  EXPECT_TRUE(reply.parameters.at("None").IsNull());
  EXPECT_EQ(reply.parameters.at("Set").ToInstance()->path.GetClassName(), "A_Set");
}

TEST(ReplyValuesTest, RefusesAResultThatItsTypeCannotHold) {
  try {
    Read(MethodReturn("<RETURNVALUE PARAMTYPE=\"uint32\"><VALUE>ok</VALUE></RETURNVALUE>"));
    FAIL() << "was read";
  } catch (const TQELException& e) {
    EXPECT_STREQ(e.what(), "the reply's return value: 'ok' is no uint32");
  }
}

}  // namespace
}  // namespace NZEPQEL20::cimxml
