// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <ostream>

#include "tests/platform/cimxml/codec/ReplyDocument.h"

namespace NZEPQEL20::cimxml {
namespace {

const std::string kName =
    "<INSTANCENAME CLASSNAME=\"A_Test\">\n<KEYBINDING NAME=\"Name\">\n"
    "<KEYVALUE VALUETYPE=\"string\">one</KEYVALUE>\n</KEYBINDING>\n</INSTANCENAME>\n";
const std::string kElsewhere =
    "<LOCALNAMESPACEPATH>\n<NAMESPACE NAME=\"root\"/>\n<NAMESPACE NAME=\"x\"/>\n"
    "</LOCALNAMESPACEPATH>\n";
const std::string kFullPath = "<INSTANCEPATH>\n<NAMESPACEPATH>\n<HOST>vm</HOST>\n" + kElsewhere +
                              "</NAMESPACEPATH>\n" + kName + "</INSTANCEPATH>\n";
const std::string kInstance =
    "<INSTANCE CLASSNAME=\"A_Sub\">\n<PROPERTY NAME=\"P\" TYPE=\"uint8\">\n<VALUE>1</VALUE>\n"
    "</PROPERTY>\n</INSTANCE>\n";

TEST(ReplyPathsTest, FillsInTheNamespaceOfTheRequest) {
  const TReply reply = Read(Return(kName + kName));
  ASSERT_EQ(reply.paths.size(), 2U);
  EXPECT_EQ(reply.paths[1].GetPath(), "root/cimv2:A_Test.Name=\"one\"");
}

TEST(ReplyPathsTest, KeepsANamespaceOfItsOwnAndDropsTheHost) {
  for (const std::string& path : {kFullPath, "<OBJECTPATH>\n" + kFullPath + "</OBJECTPATH>"}) {
    const TReply reply = Read(Return(path));
    ASSERT_EQ(reply.paths.size(), 1U);
    EXPECT_EQ(reply.paths[0].GetPath(), "root/x:A_Test.Name=\"one\"");
    EXPECT_EQ(reply.paths[0].GetHost(), "");
  }
}

TEST(ReplyPathsTest, GivesAnInstanceThePathItCameWith) {
  struct TForm {
    const char* element;
    std::string path;
    const char* read;
  };
  const TForm forms[] = {
      {"VALUE.NAMEDINSTANCE", kName, "root/cimv2:A_Test.Name=\"one\""},
      {"VALUE.INSTANCEWITHPATH", kFullPath, "root/x:A_Test.Name=\"one\""},
      {"VALUE.OBJECTWITHPATH", kFullPath, "root/x:A_Test.Name=\"one\""},
      {"VALUE.OBJECT", "", "root/cimv2:A_Sub"},
  };
  for (const TForm& form : forms) {
    const std::string element = form.element;
    const TReply reply =
        Read(Return("<" + element + ">" + form.path + kInstance + "</" + element + ">"));
    ASSERT_EQ(reply.instances.size(), 1U) << element;
    EXPECT_EQ(reply.instances[0].path.GetPath(), form.read) << element;
    EXPECT_EQ(reply.instances[0].properties.size(), 1U) << element;
  }
}

TEST(ReplyPathsTest, LeavesOutAnObjectThatIsAClass) {
  const TReply reply =
      Read(Return("<VALUE.OBJECTWITHPATH><CLASSPATH><NAMESPACEPATH><HOST>vm</HOST>" + kElsewhere +
                  "</NAMESPACEPATH><CLASSNAME NAME=\"A_Test\"/></CLASSPATH><CLASS NAME=\"A_Test\">"
                  "<PROPERTY NAME=\"P\" TYPE=\"uint8\"/></CLASS></VALUE.OBJECTWITHPATH>"
                  "<VALUE.OBJECTWITHPATH>" +
                  kFullPath + kInstance + "</VALUE.OBJECTWITHPATH>"));
  ASSERT_EQ(reply.instances.size(), 1U);
  EXPECT_EQ(reply.instances[0].properties.size(), 1U);
  EXPECT_EQ(reply.declaration, nullptr);
}

TEST(ReplyPathsTest, ReadsAReferenceInEveryFormOfPath) {
  struct TForm {
    std::string path;
    const char* read;
  };
  const TForm forms[] = {
      {kFullPath, "root/x:A_Test.Name=\"one\""},
      {"<LOCALINSTANCEPATH>" + kElsewhere + kName + "</LOCALINSTANCEPATH>",
       "root/x:A_Test.Name=\"one\""},
      {kName, "root/cimv2:A_Test.Name=\"one\""},
      {"<CLASSPATH><NAMESPACEPATH><HOST>vm</HOST>" + kElsewhere +
           "</NAMESPACEPATH><CLASSNAME NAME=\"A_Test\"/></CLASSPATH>",
       "root/x:A_Test"},
      {"<LOCALCLASSPATH>" + kElsewhere + "<CLASSNAME NAME=\"A_Test\"/></LOCALCLASSPATH>",
       "root/x:A_Test"},
      {"<CLASSNAME NAME=\"A_Test\"/>", "root/cimv2:A_Test"},
  };
  for (const TForm& form : forms) {
    const TReply reply = ReadProperties(
        "<PROPERTY.REFERENCE NAME=\"R\" REFERENCECLASS=\"A_Test\">"
        "<VALUE.REFERENCE>" +
        form.path + "</VALUE.REFERENCE></PROPERTY.REFERENCE>");
    const TCIMValue& value = reply.instances.at(0).properties.at(0).value;
    EXPECT_EQ(value.GetType(), ECIMType::kReference);
    EXPECT_EQ(value.ToString(10), form.read);
  }
}

struct TKey {
  const char* name;
  const char* element;
  TCIMValue value;
};

std::ostream& operator<<(std::ostream& out, const TKey& row) {
  return out << row.name;
}

class ReplyKeyTest : public ::testing::TestWithParam<TKey> {};

TEST_P(ReplyKeyTest, IsReadByItsKind) {
  const TReply reply =
      Read(Return(std::string("<INSTANCENAME CLASSNAME=\"A\"><KEYBINDING NAME=\"K\">") +
                  GetParam().element + "</KEYBINDING></INSTANCENAME>"));
  ASSERT_EQ(reply.paths.size(), 1U);
  ASSERT_NE(reply.paths[0].FindKey("k"), nullptr);
  EXPECT_EQ(*reply.paths[0].FindKey("k"), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    All, ReplyKeyTest,
    ::testing::Values(
        TKey{"String", "<KEYVALUE VALUETYPE=\"string\"> a </KEYVALUE>", TCIMValue(" a ")},
        TKey{"NoKindIsAString", "<KEYVALUE>5</KEYVALUE>", TCIMValue("5")},
        TKey{"EmptyString", "<KEYVALUE VALUETYPE=\"string\"></KEYVALUE>", TCIMValue("")},
        TKey{"Numeric", "<KEYVALUE VALUETYPE=\"numeric\"> 12 </KEYVALUE>",
             TCIMValue::Unsigned(ECIMType::kUInt64, 12)},
        TKey{"HexNumeric", "<KEYVALUE VALUETYPE=\"numeric\">0xfF</KEYVALUE>",
             TCIMValue::Unsigned(ECIMType::kUInt64, 255)},
        TKey{"NegativeNumeric", "<KEYVALUE VALUETYPE=\"numeric\">-3</KEYVALUE>",
             TCIMValue::Signed(ECIMType::kSInt64, -3)},
        TKey{"RealNumeric", "<KEYVALUE VALUETYPE=\"numeric\">0.5</KEYVALUE>",
             TCIMValue::Real64(0.5)},
        TKey{"NumericThatIsNone", "<KEYVALUE VALUETYPE=\"numeric\">abc</KEYVALUE>",
             TCIMValue("abc")},
        TKey{"Boolean", "<KEYVALUE VALUETYPE=\"boolean\">true</KEYVALUE>",
             TCIMValue::Boolean(true)},
        TKey{"TypeHoldsOverKind", "<KEYVALUE VALUETYPE=\"string\" TYPE=\"uint16\">7</KEYVALUE>",
             TCIMValue::UInt16(7)},
        TKey{"EmptyTypeCountsAsNone", "<KEYVALUE VALUETYPE=\"numeric\" TYPE=\"\">7</KEYVALUE>",
             TCIMValue::Unsigned(ECIMType::kUInt64, 7)},
        TKey{"TypeTextHoldsOverKind",
             "<KEYVALUE VALUETYPE=\"numeric\" TYPE=\"string\">7</KEYVALUE>", TCIMValue("7")},
        TKey{"KindInCapitals", "<KEYVALUE VALUETYPE=\"NUMERIC\">7</KEYVALUE>",
             TCIMValue::Unsigned(ECIMType::kUInt64, 7)},
        TKey{"UnknownType", "<KEYVALUE VALUETYPE=\"numeric\" TYPE=\"object\">7</KEYVALUE>",
             TCIMValue::Unsigned(ECIMType::kUInt64, 7)},
        TKey{"NumberThatItsTypeDoesNotHold",
             "<KEYVALUE VALUETYPE=\"numeric\" TYPE=\"uint8\">700</KEYVALUE>",
             TCIMValue::Unsigned(ECIMType::kUInt64, 700)},
        TKey{"TypeThatDoesNotFit", "<KEYVALUE VALUETYPE=\"string\" TYPE=\"uint8\">700</KEYVALUE>",
             TCIMValue("700")},
        TKey{"Reference",
             "<VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"B\"><KEYBINDING NAME=\"Id\">"
             "<KEYVALUE VALUETYPE=\"string\">1</KEYVALUE></KEYBINDING></INSTANCENAME>"
             "</VALUE.REFERENCE>",
             TCIMValue(TCIMReference("root/cimv2", "B", {{"Id", "1"}}))}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ReplyPathsTest, ReadsTheUnnamedKeyOfASingleton) {
  const TReply reply = Read(Return(
      "<INSTANCENAME CLASSNAME=\"A\"><KEYVALUE>x</KEYVALUE></INSTANCENAME>"
      "<INSTANCENAME CLASSNAME=\"A\"><VALUE.REFERENCE><CLASSNAME NAME=\"B\"/></VALUE.REFERENCE>"
      "</INSTANCENAME><INSTANCENAME CLASSNAME=\"A\"/>"));
  ASSERT_EQ(reply.paths.size(), 3U);
  EXPECT_EQ(*reply.paths[0].FindKey(""), TCIMValue("x"));
  EXPECT_EQ(reply.paths[1].FindKey("")->ToString(10), "root/cimv2:B");
  EXPECT_TRUE(reply.paths[2].GetKeys().empty());
}

}  // namespace
}  // namespace NZEPQEL20::cimxml
