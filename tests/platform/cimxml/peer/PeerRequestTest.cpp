// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "tests/platform/cimxml/peer/PeerMessages.h"
#include "tests/platform/cimxml/peer/TPeerWorld.h"
#include "tests/platform/cimxml/peer/TRawClient.h"
#include "tests/support/cimserver/RequestValues.h"

namespace cimserver {
namespace {

using testing::HasSubstr;
using testing::Not;

struct TValueRow {
  const char* type;
  const char* text;
  TCIMValue value;
};
void PrintTo(const TValueRow& row, std::ostream* out) {
  *out << row.type << ' ' << row.text;
}

TEST(RequestValuesTest, AreReadByTheirTypes) {
  const auto wide = [](std::uint64_t value) {
    return TCIMValue::Unsigned(ECIMType::kUInt64, value);
  };
  for (const TValueRow& row : {TValueRow{"string", " a\n", TCIMValue(" a\n")},
                               {"boolean", " true ", TCIMValue::Boolean(true)},
                               {"uint64", "18446744073709551615", wide(~std::uint64_t{0})},
                               {"uint64", " 0x1F ", wide(31)},
                               {"uint64", "+010", wide(10)},
                               {"sint8", "-128", TCIMValue::Signed(ECIMType::kSInt8, -128)},
                               {"real64", "-1.5E+1", TCIMValue::Real64(-15)},
                               {"real32", "0.5", TCIMValue::Real32(0.5F)},
                               {"char16", "a", TCIMValue::Char16('a')},
                               {"char16", "\xC3\xA4", TCIMValue::Char16(0xE4)},
                               {"char16", "\xE2\x82\xAC", TCIMValue::Char16(0x20AC)},
                               {"datetime", "20240229123456.000000+060",
                                TCIMValue::DateTime("20240229123456.000000+060")}}) {
    EXPECT_EQ(ReadValue({"VALUE", {}, row.text, {}}, ReadType(row.type), ""), row.value)
        << testing::PrintToString(row);
  }
}

TEST(RequestValuesTest, AreRefusedWhenTheirTypesCannotHoldThem) {
  for (const TValueRow& row : {TValueRow{"uint8", "256", {}},
                               {"uint8", "-1", {}},
                               {"sint8", "-129", {}},
                               {"uint64", "18446744073709551616", {}},
                               {"uint16", "", {}},
                               {"uint16", "1 2", {}},
                               {"uint16", "0xG", {}},
                               {"boolean", "", {}},
                               {"boolean", "1", {}},
                               {"real64", "x", {}},
                               {"real64", "", {}},
                               {"char16", "ab", {}},
                               {"char16", "", {}},
                               {"char16", "\xF0\x9F\x98\x80", {}},
                               {"datetime", "2024", {}},
                               {"reference", "x", {}}}) {
    EXPECT_THROW(ReadValue({"VALUE", {}, row.text, {}}, ReadType(row.type), ""), TNotValid)
        << testing::PrintToString(row);
  }
  EXPECT_THROW(ReadType("int"), TNotValid);
}

/// What arrives at the object model.
class PeerRequestTest : public testing::Test {
 protected:
  std::string Ask(const std::string& name, const std::string& parameters) {
    return m_client.Exchange(PostIntrinsic(name, parameters));
  }

  TPeerWorld m_world;
  TCimServer m_server{m_world.GetOperations()};
  TRawClient m_client{m_server.GetPort()};
};

TEST_F(PeerRequestTest, AMethodGetsItsParametersTyped) {
  const std::string reply = m_client.Exchange(
      PostAdd("<PARAMVALUE NAME=\"Left\" PARAMTYPE=\"uint16\"><VALUE>3</VALUE></PARAMVALUE>"
              "<PARAMVALUE NAME=\"Right\" PARAMTYPE=\"uint16\"><VALUE.ARRAY><VALUE>4</VALUE>"
              "<VALUE>0x10</VALUE></VALUE.ARRAY></PARAMVALUE>"
              "<PARAMVALUE NAME=\"To\" PARAMTYPE=\"reference\"><VALUE.REFERENCE>" +
              ThingName("two") +
              "</VALUE.REFERENCE></PARAMVALUE>"
              "<PARAMVALUE NAME=\"With\" PARAMTYPE=\"string\" EmbeddedObject=\"instance\"><VALUE>"
              "&lt;INSTANCE CLASSNAME=\"PEER_Base\">&lt;PROPERTY NAME=\"Id\" TYPE=\"string\">"
              "&lt;VALUE>&amp;lt;i&lt;/VALUE>&lt;/PROPERTY>&lt;/INSTANCE></VALUE></PARAMVALUE>"
              "<PARAMVALUE NAME=\"None\"/>"));
  EXPECT_THAT(reply, HasSubstr("<VALUE>23</VALUE>"));
  const TKeyMap parameters = m_world.GetCallParameters();
  ASSERT_EQ(parameters.size(), 5U);
  EXPECT_EQ(parameters.at("Left"), TCIMValue::UInt16(3));
  EXPECT_EQ(parameters.at("Right"),
            TCIMValue::Array(ECIMType::kUInt16, {TCIMValue::UInt16(4), TCIMValue::UInt16(16)}));
  EXPECT_EQ(parameters.at("To"), TCIMValue(TPeerWorld::GetPath("two")));
  EXPECT_EQ(parameters.at("With").ToInstance()->Find("Id")->value.ToString(10), "<i");
  EXPECT_TRUE(parameters.at("None").IsNull());
}

TEST_F(PeerRequestTest, AReferenceMayNameItsNamespaceAndHost) {
  const std::string place =
      "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE "
      "NAME=\"far\"/></LOCALNAMESPACEPATH>";
  for (const std::string& path :
       {"<LOCALINSTANCEPATH>" + place + ThingName("x") + "</LOCALINSTANCEPATH>",
        "<INSTANCEPATH><NAMESPACEPATH><HOST>h</HOST>" + place + "</NAMESPACEPATH>" +
            ThingName("x") + "</INSTANCEPATH>"}) {
    m_client.Exchange(PostAdd("<PARAMVALUE NAME=\"To\" PARAMTYPE=\"reference\"><VALUE.REFERENCE>" +
                              path + "</VALUE.REFERENCE></PARAMVALUE>"));
    const auto to = static_cast<TCIMReference>(m_world.GetCallParameters().at("To"));
    EXPECT_EQ(to.GetNamespaceName(), "root/far");
  }
}

TEST_F(PeerRequestTest, ANamespaceIsFoundInAnyCase) {
  const std::string body = MakeIntrinsic("EnumerateInstanceNames", ClassParameter("PEER_Thing"));
  std::string shouted = body;
  shouted.replace(shouted.find("cimv2"), 5, "CIMV2");
  const std::string reply =
      m_client.Exchange(MakePost("EnumerateInstanceNames", "root/CIMV2", shouted));
  EXPECT_THAT(reply, HasSubstr("<KEYVALUE VALUETYPE=\"string\">two</KEYVALUE>"));
  EXPECT_THAT(m_world.GetOperations()->GetCalls(),
              testing::Contains("EnumerateInstanceNames root/cimv2:PEER_Thing"));
}

TEST_F(PeerRequestTest, AnUnknownNamespaceIsRefusedByName) {
  std::string body = MakeIntrinsic("EnumerateClassNames", "");
  body.replace(body.find("cimv2"), 5, "other");
  EXPECT_EQ(GetError(m_client.Exchange(MakePost("EnumerateClassNames", "root/other", body))),
            "3 CIM_ERR_INVALID_NAMESPACE: root/other");
}

TEST_F(PeerRequestTest, LocalOnlyLeavesOutWhatIsInherited) {
  const std::string local = Ask("GetClass", ClassParameter("PEER_Thing"));
  EXPECT_THAT(local, Not(HasSubstr("NAME=\"Caption\"")));
  EXPECT_THAT(local, HasSubstr("NAME=\"State\""));
  const std::string whole =
      Ask("GetClass", ClassParameter("PEER_Thing") + ValueParameter("LocalOnly", "false"));
  EXPECT_THAT(whole, HasSubstr("NAME=\"Caption\""));
}

TEST_F(PeerRequestTest, QualifiersAndPropertiesOfAClassAreThoseAskedFor) {
  const std::string reply =
      Ask("GetClass", ClassParameter("PEER_Thing") + ValueParameter("LocalOnly", "FALSE") +
                          ValueParameter("IncludeQualifiers", "FALSE") + ListParameter({"STATE"}));
  EXPECT_THAT(reply, Not(HasSubstr("QUALIFIER")));
  EXPECT_THAT(reply, HasSubstr("NAME=\"State\""));
  EXPECT_THAT(reply, Not(HasSubstr("NAME=\"Caption\"")));
  EXPECT_THAT(Ask("GetInstance", PathParameter("one") + ListParameter({})),
              Not(HasSubstr("<PROPERTY")));
}

TEST_F(PeerRequestTest, ClassesComeOneLevelDeepOrAll) {
  EXPECT_THAT(Ask("EnumerateClasses", ""), Not(HasSubstr("<CLASS NAME=\"PEER_Thing\"")));
  const std::string deep = Ask("EnumerateClasses", ValueParameter("DeepInheritance", "TRUE"));
  EXPECT_THAT(deep, HasSubstr("<CLASS NAME=\"PEER_Thing\"  SUPERCLASS=\"PEER_Base\" >"));
  EXPECT_THAT(deep, HasSubstr("<CLASS NAME=\"PEER_Base\" >"));
}

TEST_F(PeerRequestTest, ACreatedInstanceHasItsKeysFromItsProperties) {
  const std::string reply =
      Ask("CreateInstance",
          "<IPARAMVALUE NAME=\"NewInstance\"><INSTANCE CLASSNAME=\"PEER_Thing\">"
          "<PROPERTY NAME=\"id\" TYPE=\"string\"><VALUE>new</VALUE></PROPERTY>"
          "<PROPERTY.ARRAY NAME=\"Numbers\" TYPE=\"uint16\"><VALUE.ARRAY><VALUE>9</VALUE>"
          "</VALUE.ARRAY></PROPERTY.ARRAY>"
          "<PROPERTY NAME=\"State\" TYPE=\"uint16\"/></INSTANCE></IPARAMVALUE>");
  EXPECT_THAT(reply, HasSubstr("<IRETURNVALUE>\n<INSTANCENAME CLASSNAME=\"PEER_Thing\">\n"
                               "<KEYBINDING NAME=\"Id\">\n"
                               "<KEYVALUE VALUETYPE=\"string\">new</KEYVALUE>\n"));
  const auto made = m_world.GetOperations()->GetInstance(TPeerWorld::GetPath("new"));
  EXPECT_EQ(made.Find("Numbers")->value.ToString(10), "9");
  EXPECT_TRUE(made.Find("State")->value.IsNull());
  EXPECT_EQ(made.Find("State")->value.GetType(), ECIMType::kUInt16);
}

TEST_F(PeerRequestTest, AModificationTouchesWhatIsListedElseAllButTheKeys) {
  const std::string changes =
      "<IPARAMVALUE NAME=\"ModifiedInstance\"><VALUE.NAMEDINSTANCE>" + ThingName("two") +
      "<INSTANCE CLASSNAME=\"PEER_Thing\">"
      "<PROPERTY NAME=\"Id\" TYPE=\"string\"><VALUE>two</VALUE></PROPERTY>"
      "<PROPERTY NAME=\"Caption\" TYPE=\"string\"><VALUE>c</VALUE></PROPERTY>"
      "<PROPERTY NAME=\"State\" TYPE=\"uint16\"><VALUE>1</VALUE></PROPERTY>"
      "</INSTANCE></VALUE.NAMEDINSTANCE></IPARAMVALUE>";
  const auto count = [this] {
    return m_world.GetOperations()->GetInstance(TPeerWorld::GetPath("two")).properties.size();
  };
  EXPECT_EQ(GetError(Ask("ModifyInstance", changes)), "");
  EXPECT_EQ(count(), 2U);
  EXPECT_EQ(GetError(Ask("ModifyInstance", changes + ListParameter({"state"}))), "");
  EXPECT_EQ(count(), 1U);
}

TEST_F(PeerRequestTest, WhatIsMissingOrOfAnotherKindIsRefused) {
  EXPECT_EQ(GetError(Ask("GetInstance", "")),
            "4 CIM_ERR_INVALID_PARAMETER: parameter InstanceName is missing");
  EXPECT_THAT(Ask("GetInstance", ClassParameter("PEER_Thing", "InstanceName")),
              HasSubstr("CIMError: request-not-valid\r\n"));
  EXPECT_THAT(Ask("EnumerateInstances", ValueParameter("ClassName", "PEER_Thing")),
              HasSubstr("CIMError: request-not-valid\r\n"));
}

TEST_F(PeerRequestTest, WhatTheModelThrowsIsTheReplysError) {
  m_world.GetOperations()->Fail("EnumerateInstances", "root/cimv2",
                                TQELException(TQELStatusCode::kFailed, "its words"));
  EXPECT_EQ(GetError(Ask("EnumerateInstances", ClassParameter("PEER_Thing"))),
            "1 CIM_ERR_FAILED: its words");
}

}  // namespace
}  // namespace cimserver
