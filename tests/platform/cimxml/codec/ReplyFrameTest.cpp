// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "platform/contract/TQELException.h"
#include "tests/platform/cimxml/codec/ReplyDocument.h"

namespace NZEPQEL20::cimxml {
namespace {

std::string GetFailure(const std::string& document) {
  try {
    Read(document);
  } catch (const TQELException& e) {
    return e.what();
  }
  return "";
}

TEST(ReplyFrameTest, TellsWhichMessageItAnswers) {
  const TReply reply = Read(Frame("<IMETHODRESPONSE NAME=\"DeleteInstance\">\n</IMETHODRESPONSE>"));
  EXPECT_EQ(reply.id, "42");
  EXPECT_EQ(reply.name, "DeleteInstance");
  EXPECT_FALSE(reply.error);
  EXPECT_EQ(reply.oddities, 0U);
}

TEST(ReplyFrameTest, ReadsAnErrorWithItsDescription) {
  const TReply reply = Read(Frame(
      "<IMETHODRESPONSE NAME=\"GetClass\">\n<ERROR CODE=\"6\" DESCRIPTION=\"CIM_ERR_NOT_FOUND: "
      "A &lt;thing&gt;\"/></IMETHODRESPONSE>"));
  ASSERT_TRUE(reply.error);
  EXPECT_EQ(reply.error->code, 6U);
  EXPECT_EQ(reply.error->description, "CIM_ERR_NOT_FOUND: A <thing>");
}

TEST(ReplyFrameTest, PassesOverTheInstancesThatAnErrorMayHold) {
  const TReply reply = Read(Frame(
      "<METHODRESPONSE NAME=\"Run\"><ERROR CODE=\"200\"><INSTANCE CLASSNAME=\"CIM_Error\">"
      "<PROPERTY NAME=\"Message\" TYPE=\"string\"><VALUE>x</VALUE></PROPERTY></INSTANCE></ERROR>"
      "</METHODRESPONSE>"));
  ASSERT_TRUE(reply.error);
  EXPECT_EQ(reply.error->code, 200U);
  EXPECT_EQ(reply.error->description, "");
  EXPECT_TRUE(reply.instances.empty());
}

TEST(ReplyFrameTest, RefusesAnErrorWithoutAUsableCode) {
  for (const char* code : {"0", "", "six", "-1", "99999999999"}) {
    const std::string error = std::string("<ERROR CODE=\"") + code + "\"/>";
    EXPECT_EQ(GetFailure(Frame("<IMETHODRESPONSE NAME=\"X\">" + error + "</IMETHODRESPONSE>")),
              std::string("the reply holds an error whose code is '") + code + "'");
  }
}

TEST(ReplyFrameTest, RefusesADocumentThatIsNoCimMessage) {
  EXPECT_EQ(GetFailure("<html><body>Login</body></html>"),
            "the reply is no CIM message: it starts with the element 'html'");
  EXPECT_EQ(GetFailure("<INSTANCE CLASSNAME=\"A\"/>"),
            "the reply is no CIM message: it starts with the element 'INSTANCE'");
}

TEST(ReplyFrameTest, RefusesAMessageWithoutAResponse) {
  EXPECT_EQ(GetFailure("<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"/>"),
            "the reply holds no response");
  EXPECT_EQ(GetFailure("<CIM><MESSAGE ID=\"1\"><SIMPLEREQ><IMETHODRESPONSE NAME=\"x\"/>"
                       "</SIMPLEREQ></MESSAGE></CIM>"),
            "the reply holds no response");
}

TEST(ReplyFrameTest, RefusesADocumentThatEndsEarly) {
  const std::string whole = Return("<CLASSNAME NAME=\"A_Test\"/>");
  const std::string cut = whole.substr(0, whole.find("</IRETURNVALUE>"));
  EXPECT_NE(GetFailure(cut).find("no element found"), std::string::npos) << GetFailure(cut);
}

TEST(ReplyFrameTest, ReadsTheSameWhereverTheTextIsCut) {
  const std::string document = Return(
      "<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"A_Test\"><KEYBINDING NAME=\"K\">"
      "<KEYVALUE VALUETYPE=\"string\">\xC3\xA4&amp;&#x41;</KEYVALUE></KEYBINDING>"
      "</INSTANCENAME><INSTANCE CLASSNAME=\"A_Test\"><PROPERTY NAME=\"P\" TYPE=\"string\">"
      "<VALUE>\xE2\x82\xAC uro</VALUE></PROPERTY></INSTANCE></VALUE.NAMEDINSTANCE>");
  for (std::size_t cut = 0; cut <= document.size(); ++cut) {
    TReplyReader reader("root/cimv2");
    reader.Take(document.data(), cut);
    reader.Take(document.data() + cut, document.size() - cut);
    const TReply reply = reader.Finish();
    ASSERT_EQ(reply.instances.size(), 1U) << cut;
    EXPECT_EQ(reply.instances[0].path.GetPath(), "root/cimv2:A_Test.K=\"\xC3\xA4&A\"") << cut;
    EXPECT_EQ(reply.instances[0].properties.at(0).value, TCIMValue("\xE2\x82\xAC uro")) << cut;
  }
}

TEST(ReplyFrameTest, PassesOverElementsThatItDoesNotKnowAndSaysSo) {
  const TReply reply =
      Read(Return("<CORRELATOR NAME=\"x\"><VALUE>1</VALUE></CORRELATOR>"
                  "<CLASSNAME NAME=\"A_Test\"/><KEYVALUE>5</KEYVALUE>"));
  EXPECT_EQ(reply.classNames, std::vector<std::string>{"A_Test"});
  EXPECT_EQ(reply.oddities, 2U);
  EXPECT_EQ(reply.firstOddity, "element 'CORRELATOR' in a place where it means nothing");
}

TEST(ReplyFrameTest, MendsTextThatXmlCannotHoldAndSaysSo) {
  const TReply reply = Read(Return("<CLASSNAME NAME=\"A\x01&#2;\"/>"));
  EXPECT_EQ(reply.classNames.at(0), "A\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(reply.oddities, 2U);
  EXPECT_EQ(reply.firstOddity, "characters that XML cannot hold");
}

TEST(ReplyFrameTest, ReadsAnEmptyResultInBothItsForms) {
  EXPECT_TRUE(Read(Return("")).instances.empty());
  EXPECT_TRUE(Read(Frame("<IMETHODRESPONSE NAME=\"X\"/>")).instances.empty());
}

}  // namespace
}  // namespace NZEPQEL20::cimxml
