// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "platform/cimxml/TRequestText.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cimxml {
namespace {

const std::string kHead =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
    "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">"
    "<MESSAGE ID=\"7\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ>";
const std::string kTail = "</SIMPLEREQ></MESSAGE></CIM>\n";
const std::string kPlace =
    "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/>"
    "</LOCALNAMESPACEPATH>";

std::string Call(const std::string& name, const std::string& parameters) {
  return kHead + "<IMETHODCALL NAME=\"" + name + "\">" + kPlace + parameters + "</IMETHODCALL>" +
         kTail;
}

TCIMReference MakePath() {
  TCIMReference path("root/cimv2", "A_Test", {});
  path.SetKey("Name", TCIMValue("a<b"));
  path.SetKey("Id", TCIMValue::UInt32(7));
  path.SetKey("On", TCIMValue::Boolean(true));
  return path;
}

const std::string kName =
    "<INSTANCENAME CLASSNAME=\"A_Test\">"
    "<KEYBINDING NAME=\"Id\"><KEYVALUE VALUETYPE=\"numeric\">7</KEYVALUE></KEYBINDING>"
    "<KEYBINDING NAME=\"Name\"><KEYVALUE VALUETYPE=\"string\">a&lt;b</KEYVALUE></KEYBINDING>"
    "<KEYBINDING NAME=\"On\"><KEYVALUE VALUETYPE=\"boolean\">TRUE</KEYVALUE></KEYBINDING>"
    "</INSTANCENAME>";

TEST(RequestTextTest, WritesAnOperationWithoutParameters) {
  TRequestText request = TRequestText::Operation("EnumerateClassNames", "root/cimv2", 7);
  EXPECT_EQ(request.Finish(), Call("EnumerateClassNames", ""));
}

TEST(RequestTextTest, PassesOverSlashesAtTheEndsOfANamespace) {
  TRequestText request = TRequestText::Operation("EnumerateClassNames", "/root//cimv2/", 7);
  EXPECT_EQ(request.Finish(), Call("EnumerateClassNames", ""));
}

TEST(RequestTextTest, WritesParametersInTheOrderOfTheCalls) {
  TRequestText request = TRequestText::Operation("GetClass", "root/cimv2", 7);
  request.AddClassName("ClassName", "A_Test");
  request.AddFlag("LocalOnly", false);
  request.AddText("Role", "Up & down");
  EXPECT_EQ(request.Finish(),
            Call("GetClass",
                 "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"A_Test\"/></IPARAMVALUE>"
                 "<IPARAMVALUE NAME=\"LocalOnly\"><VALUE>FALSE</VALUE></IPARAMVALUE>"
                 "<IPARAMVALUE NAME=\"Role\"><VALUE>Up &amp; down</VALUE></IPARAMVALUE>"));
}

TEST(RequestTextTest, SendsNothingForAClassThatIsNotNamed) {
  TRequestText request = TRequestText::Operation("EnumerateClassNames", "root/cimv2", 7);
  request.AddClassName("ClassName", "");
  EXPECT_EQ(request.Finish(), Call("EnumerateClassNames", ""));
}

TEST(RequestTextTest, WritesKeysByTheirKind) {
  TRequestText request = TRequestText::Operation("GetInstance", "root/cimv2", 7);
  request.AddInstanceName("InstanceName", MakePath());
  EXPECT_EQ(request.Finish(),
            Call("GetInstance", "<IPARAMVALUE NAME=\"InstanceName\">" + kName + "</IPARAMVALUE>"));
}

TEST(RequestTextTest, WritesAKeyWithoutANameAsItCame) {
  TRequestText request = TRequestText::Operation("GetInstance", "root/cimv2", 7);
  request.AddInstanceName("InstanceName",
                          TCIMReference("root/cimv2", "A_Only", {{"", TCIMValue("x")}}));
  EXPECT_EQ(request.Finish(),
            Call("GetInstance",
                 "<IPARAMVALUE NAME=\"InstanceName\"><INSTANCENAME CLASSNAME=\"A_Only\">"
                 "<KEYVALUE VALUETYPE=\"string\">x</KEYVALUE></INSTANCENAME></IPARAMVALUE>"));
}

TEST(RequestTextTest, WritesAReferenceInAKeyWithItsNamespaceAndWithoutItsHost) {
  TCIMReference part("root/x", "A_Part", {{"Id", TCIMValue("1")}});
  part.SetHost("elsewhere");
  TRequestText request = TRequestText::Operation("GetInstance", "root/cimv2", 7);
  request.AddInstanceName("InstanceName",
                          TCIMReference("root/cimv2", "A_Link", {{"Part", TCIMValue(part)}}));
  EXPECT_EQ(request.Finish(),
            Call("GetInstance",
                 "<IPARAMVALUE NAME=\"InstanceName\"><INSTANCENAME CLASSNAME=\"A_Link\">"
                 "<KEYBINDING NAME=\"Part\"><VALUE.REFERENCE><LOCALINSTANCEPATH>"
                 "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"x\"/>"
                 "</LOCALNAMESPACEPATH><INSTANCENAME CLASSNAME=\"A_Part\">"
                 "<KEYBINDING NAME=\"Id\"><KEYVALUE VALUETYPE=\"string\">1</KEYVALUE>"
                 "</KEYBINDING></INSTANCENAME></LOCALINSTANCEPATH></VALUE.REFERENCE>"
                 "</KEYBINDING></INSTANCENAME></IPARAMVALUE>"));
}

TCIMInstanceData MakeInstance() {
  TCIMInstanceData instance;
  instance.path = MakePath();
  instance.Set("Text", TCIMValue(" a "));
  instance.Set("None", TCIMValue::Null(ECIMType::kUInt16));
  instance.Set("Numbers",
               TCIMValue::Array(ECIMType::kUInt16,
                                {TCIMValue::UInt16(2), TCIMValue::Null(ECIMType::kUInt16)}));
  instance.Set("Empty", TCIMValue::Array(ECIMType::kString, {}));
  instance.Set("Part", TCIMValue(TCIMReference("", "A_Part", {})));
  return instance;
}

const std::string kInstance =
    "<INSTANCE CLASSNAME=\"A_Test\">"
    "<PROPERTY NAME=\"Text\" TYPE=\"string\"><VALUE> a </VALUE></PROPERTY>"
    "<PROPERTY NAME=\"None\" TYPE=\"uint16\"></PROPERTY>"
    "<PROPERTY.ARRAY NAME=\"Numbers\" TYPE=\"uint16\"><VALUE.ARRAY><VALUE>2</VALUE><VALUE.NULL/>"
    "</VALUE.ARRAY></PROPERTY.ARRAY>"
    "<PROPERTY.ARRAY NAME=\"Empty\" TYPE=\"string\"><VALUE.ARRAY></VALUE.ARRAY></PROPERTY.ARRAY>"
    "<PROPERTY.REFERENCE NAME=\"Part\"><VALUE.REFERENCE><CLASSNAME NAME=\"A_Part\"/>"
    "</VALUE.REFERENCE></PROPERTY.REFERENCE>"
    "</INSTANCE>";

TEST(RequestTextTest, WritesAnInstanceWithNullAndEmptyArrayApart) {
  TRequestText request = TRequestText::Operation("CreateInstance", "root/cimv2", 7);
  request.AddInstance("NewInstance", MakeInstance());
  EXPECT_EQ(request.Finish(), Call("CreateInstance", "<IPARAMVALUE NAME=\"NewInstance\">" +
                                                         kInstance + "</IPARAMVALUE>"));
}

TEST(RequestTextTest, WritesTheInstanceToModifyWithItsName) {
  TRequestText request = TRequestText::Operation("ModifyInstance", "root/cimv2", 7);
  request.AddNamedInstance("ModifiedInstance", MakeInstance());
  EXPECT_EQ(request.Finish(),
            Call("ModifyInstance", "<IPARAMVALUE NAME=\"ModifiedInstance\"><VALUE.NAMEDINSTANCE>" +
                                       kName + kInstance + "</VALUE.NAMEDINSTANCE></IPARAMVALUE>"));
}

std::string Arguments(const std::string& name, const TCIMValue& value) {
  TRequestText request = TRequestText::Method("Run", TCIMReference("root/cimv2", "A_Test", {}), 7);
  request.AddArgument(name, value);
  const std::string text = request.Finish();
  const std::string head = kHead + "<METHODCALL NAME=\"Run\"><LOCALCLASSPATH>" + kPlace +
                           "<CLASSNAME NAME=\"A_Test\"/></LOCALCLASSPATH>";
  const std::string tail = "</METHODCALL>" + kTail;
  EXPECT_EQ(text.substr(0, head.size()), head);
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
  return text.substr(head.size(), text.size() - head.size() - tail.size());
}

TEST(RequestTextTest, CallsAMethodOfAnInstanceByItsLocalPath) {
  TRequestText request = TRequestText::Method("Run", MakePath(), 7);
  EXPECT_EQ(request.Finish(), kHead + "<METHODCALL NAME=\"Run\"><LOCALINSTANCEPATH>" + kPlace +
                                  kName + "</LOCALINSTANCEPATH></METHODCALL>" + kTail);
}

struct TArgument {
  const char* name;
  TCIMValue value;
  const char* text;
};

std::ostream& operator<<(std::ostream& out, const TArgument& row) {
  return out << row.name;
}

class RequestArgumentTest : public ::testing::TestWithParam<TArgument> {};

TEST_P(RequestArgumentTest, IsWrittenWithItsType) {
  EXPECT_EQ(Arguments("P", GetParam().value), GetParam().text);
}

TCIMValue Embed() {
  auto inner = std::make_shared<TCIMInstanceData>();
  inner->path = TCIMReference("", "A_Set", {});
  inner->Set("Q", TCIMValue("\""));
  return TCIMValue::Instance(inner);
}

INSTANTIATE_TEST_SUITE_P(
    All, RequestArgumentTest,
    ::testing::Values(
        TArgument{"NullIsLeftOut", TCIMValue::Null(ECIMType::kString), ""},
        TArgument{"Text", TCIMValue("a&b"),
                  "<PARAMVALUE NAME=\"P\" PARAMTYPE=\"string\"><VALUE>a&amp;b</VALUE>"
                  "</PARAMVALUE>"},
        TArgument{"Number", TCIMValue::Signed(ECIMType::kSInt64, -5),
                  "<PARAMVALUE NAME=\"P\" PARAMTYPE=\"sint64\"><VALUE>-5</VALUE></PARAMVALUE>"},
        TArgument{"Real", TCIMValue::Real64(2),
                  "<PARAMVALUE NAME=\"P\" PARAMTYPE=\"real64\"><VALUE>2.0</VALUE></PARAMVALUE>"},
        TArgument{"SmallReal", TCIMValue::Real64(1e-30),
                  "<PARAMVALUE NAME=\"P\" PARAMTYPE=\"real64\"><VALUE>1.0e-30</VALUE>"
                  "</PARAMVALUE>"},
        TArgument{"Infinity", TCIMValue::Real64(-std::numeric_limits<double>::infinity()),
                  "<PARAMVALUE NAME=\"P\" PARAMTYPE=\"real64\"><VALUE>-INF</VALUE></PARAMVALUE>"},
        TArgument{"Char16", TCIMValue::Char16(0x20AC),
                  "<PARAMVALUE NAME=\"P\" PARAMTYPE=\"char16\"><VALUE>\xE2\x82\xAC</VALUE>"
                  "</PARAMVALUE>"},
        TArgument{"Boolean", TCIMValue::Boolean(false),
                  "<PARAMVALUE NAME=\"P\" PARAMTYPE=\"boolean\"><VALUE>FALSE</VALUE></PARAMVALUE>"},
        TArgument{"Array", TCIMValue::Array(ECIMType::kString, {TCIMValue("x"), TCIMValue("")}),
                  "<PARAMVALUE NAME=\"P\" PARAMTYPE=\"string\"><VALUE.ARRAY><VALUE>x</VALUE>"
                  "<VALUE></VALUE></VALUE.ARRAY></PARAMVALUE>"},
        TArgument{"Reference", TCIMValue(TCIMReference("root", "A_Part", {{"Id", TCIMValue("1")}})),
                  "<PARAMVALUE NAME=\"P\" PARAMTYPE=\"reference\"><VALUE.REFERENCE>"
                  "<LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
                  "</LOCALNAMESPACEPATH><INSTANCENAME CLASSNAME=\"A_Part\"><KEYBINDING NAME=\"Id\">"
                  "<KEYVALUE VALUETYPE=\"string\">1</KEYVALUE></KEYBINDING></INSTANCENAME>"
                  "</LOCALINSTANCEPATH></VALUE.REFERENCE></PARAMVALUE>"},
        TArgument{"References",
                  TCIMValue::Array(ECIMType::kReference, {TCIMValue(TCIMReference("", "A_P", {}))}),
                  "<PARAMVALUE NAME=\"P\" PARAMTYPE=\"reference\"><VALUE.REFARRAY>"
                  "<VALUE.REFERENCE><CLASSNAME NAME=\"A_P\"/></VALUE.REFERENCE></VALUE.REFARRAY>"
                  "</PARAMVALUE>"},
        TArgument{"EmbeddedInstance", Embed(),
                  "<PARAMVALUE NAME=\"P\" PARAMTYPE=\"string\" EmbeddedObject=\"instance\"><VALUE>"
                  "&lt;INSTANCE CLASSNAME=&quot;A_Set&quot;&gt;&lt;PROPERTY NAME=&quot;Q&quot; "
                  "TYPE=&quot;string&quot;&gt;&lt;VALUE&gt;&amp;quot;&lt;/VALUE&gt;"
                  "&lt;/PROPERTY&gt;&lt;/INSTANCE&gt;</VALUE></PARAMVALUE>"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(RequestTextTest, NamesTheParameterThatCannotBeWritten) {
  TRequestText request = TRequestText::Operation("GetClass", "root/cimv2", 7);
  try {
    request.AddText("Role", std::string("a\0b", 3));
    FAIL() << "was written";
  } catch (const TQELException& e) {
    EXPECT_STREQ(e.what(),
                 "parameter Role: byte 1 of a text is no UTF-8 character that XML can hold");
  }
}

TEST(RequestTextTest, NamesTheObjectOfAMethodForTheHeader) {
  TCIMReference part("root/x", "A_Part", {{"Id", TCIMValue("a\"b\\c")}});
  TCIMReference path("root/cimv2", "A_Link", {{"Part", TCIMValue(part)}});
  path.SetKey("N", TCIMValue::UInt16(3));
  path.SetKey("On", TCIMValue::Boolean(false));
  EXPECT_EQ(GetObjectText(path),
            "root/cimv2:A_Link.N=3,On=FALSE,"
            "Part=\"root/x:A_Part.Id=\\\"a\\\\\\\"b\\\\\\\\c\\\"\"");
  EXPECT_EQ(GetObjectText(TCIMReference("root/cimv2", "A_Test", {})), "root/cimv2:A_Test");
}

}  // namespace
}  // namespace NZEPQEL20::cimxml
