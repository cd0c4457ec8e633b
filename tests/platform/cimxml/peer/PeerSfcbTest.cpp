// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/cimxml/peer/TPeerStyleTest.h"

namespace cimserver {
namespace {

using testing::HasSubstr;

/// The manner of the other maker, to the byte.
class PeerSfcbTest : public TPeerStyleTest {
 protected:
  PeerSfcbTest() : TPeerStyleTest(EStyle::kSfcb) {}
};

TEST_F(PeerSfcbTest, WritesAClassBackwards) {
  const std::string reply =
      Ask("GetClass", ClassParameter("PEER_Base") + ValueParameter("IncludeClassOrigin", "TRUE"));
  EXPECT_EQ(reply,
            "HTTP/1.1 200 OK\r\n"
            "Content-Type: application/xml; charset=\"utf-8\"\r\n"
            "Content-Length: 469\r\n"
            "Cache-Control: no-cache\r\n"
            "CIMOperation: MethodResponse\r\n"
            "\r\n" +
                Frame("GetClass",
                      "<IRETURNVALUE>\n"
                      "<CLASS NAME=\"PEER_Base\">\n"
                      "<PROPERTY NAME=\"Caption\" TYPE=\"string\">\n"
                      "<VALUE>none</VALUE>\n"
                      "</PROPERTY>\n"
                      "<PROPERTY NAME=\"Id\" TYPE=\"string\">\n"
                      "<QUALIFIER NAME=\"Key\" TYPE=\"boolean\">\n"
                      "<VALUE>TRUE</VALUE>\n"
                      "</QUALIFIER>\n"
                      "</PROPERTY>\n"
                      "</CLASS>\n"
                      "</IRETURNVALUE>\n"));
}

TEST_F(PeerSfcbTest, WritesAFetchedInstanceWithHostsInItsReferences) {
  const std::string reply = Ask(
      "GetInstance", PathParameter("one") + ListParameter({"Other", "Numbers", "Caption", "When"}));
  EXPECT_EQ(GetBody(reply),
            Frame("GetInstance",
                  "<IRETURNVALUE>\n"
                  "<INSTANCE CLASSNAME=\"PEER_Thing\">\n"
                  "<PROPERTY.REFERENCE NAME=\"Other\" REFERENCECLASS=\"PEER_Base\">\n"
                  "<VALUE.REFERENCE>\n"
                  "<INSTANCEPATH>\n"
                  "<NAMESPACEPATH>\n"
                  "<HOST>peer</HOST>\n"
                  "<LOCALNAMESPACEPATH>\n"
                  "<NAMESPACE NAME=\"root\"/>\n"
                  "<NAMESPACE NAME=\"cimv2\"/>\n"
                  "</LOCALNAMESPACEPATH>\n"
                  "</NAMESPACEPATH>\n"
                  "<INSTANCENAME CLASSNAME=\"PEER_Thing\">\n"
                  "<KEYBINDING NAME=\"Id\">\n"
                  "<KEYVALUE VALUETYPE=\"string\">two</KEYVALUE>\n"
                  "</KEYBINDING>\n"
                  "</INSTANCENAME>\n"
                  "</INSTANCEPATH>\n"
                  "</VALUE.REFERENCE>\n"
                  "</PROPERTY.REFERENCE>\n"
                  "<PROPERTY.ARRAY NAME=\"Numbers\" TYPE=\"uint16\">\n"
                  "<VALUE.ARRAY>\n"
                  "<VALUE>3</VALUE>\n"
                  "<VALUE>4</VALUE>\n"
                  "</VALUE.ARRAY>\n"
                  "</PROPERTY.ARRAY>\n"
                  "<PROPERTY NAME=\"When\" TYPE=\"datetime\">\n"
                  "<VALUE>20240229123456.000000+060</VALUE>\n"
                  "</PROPERTY>\n"
                  "<PROPERTY NAME=\"Caption\" TYPE=\"string\">\n"
                  "<VALUE>a &lt; b &amp; &quot;c&quot; &apos;d&apos;\n\xC3\xA4</VALUE>\n"
                  "</PROPERTY>\n"
                  "</INSTANCE>\n"
                  "</IRETURNVALUE>\n"));
}

TEST_F(PeerSfcbTest, WritesAnEnumeration) {
  const std::string reply =
      Ask("EnumerateInstances", ClassParameter("PEER_Thing") + ListParameter({"State"}));
  EXPECT_EQ(GetBody(reply), Frame("EnumerateInstances",
                                  "<IRETURNVALUE>\n"
                                  "<VALUE.NAMEDINSTANCE>\n"
                                  "<INSTANCENAME CLASSNAME=\"PEER_Thing\">\n"
                                  "<KEYBINDING NAME=\"Id\">\n"
                                  "<KEYVALUE VALUETYPE=\"string\">one</KEYVALUE>\n"
                                  "</KEYBINDING>\n"
                                  "</INSTANCENAME>\n"
                                  "<INSTANCE CLASSNAME=\"PEER_Thing\">\n"
                                  "<PROPERTY NAME=\"State\" TYPE=\"uint16\">\n"
                                  "<VALUE>2</VALUE>\n"
                                  "</PROPERTY>\n"
                                  "</INSTANCE>\n"
                                  "</VALUE.NAMEDINSTANCE>\n"
                                  "<VALUE.NAMEDINSTANCE>\n"
                                  "<INSTANCENAME CLASSNAME=\"PEER_Thing\">\n"
                                  "<KEYBINDING NAME=\"Id\">\n"
                                  "<KEYVALUE VALUETYPE=\"string\">two</KEYVALUE>\n"
                                  "</KEYBINDING>\n"
                                  "</INSTANCENAME>\n"
                                  "<INSTANCE CLASSNAME=\"PEER_Thing\">\n"
                                  "<PROPERTY NAME=\"State\" TYPE=\"uint16\">\n"
                                  "</PROPERTY>\n"
                                  "</INSTANCE>\n"
                                  "</VALUE.NAMEDINSTANCE>\n"
                                  "</IRETURNVALUE>\n"));
}

TEST_F(PeerSfcbTest, LeavesOutWhatTheClassAskedForDoesNotHave) {
  const std::string whole = Ask("EnumerateInstances", ClassParameter("PEER_Base"));
  const std::string shallow =
      Ask("EnumerateInstances",
          ClassParameter("PEER_Base") + ValueParameter("DeepInheritance", "FALSE"));
  for (const auto& [reply, count] : {std::pair(whole, 2U), std::pair(shallow, 0U)}) {
    std::size_t found = 0;
    for (std::size_t at = 0; (at = reply.find("NAME=\"Ratio\"", at)) != std::string::npos; ++at) {
      ++found;
    }
    EXPECT_EQ(found, count);
    EXPECT_THAT(reply, HasSubstr("NAME=\"Caption\""));
  }
}

TEST_F(PeerSfcbTest, MarksAnEmbeddedInstanceAsAnObject) {
  const std::string reply = Ask("GetInstance", PathParameter("one") + ListParameter({"Inner"}));
  EXPECT_THAT(reply,
              HasSubstr("<PROPERTY NAME=\"Inner\" TYPE=\"string\" EmbeddedObject=\"object\">\n"
                        "<VALUE>&lt;INSTANCE CLASSNAME=&quot;PEER_Base&quot;&gt;\n"
                        "&lt;PROPERTY NAME=&quot;Caption&quot; TYPE=&quot;string&quot;&gt;\n"
                        "&lt;VALUE&gt;&amp;lt;deep&amp;gt;&lt;/VALUE&gt;\n"));
}

TEST_F(PeerSfcbTest, WritesWhatAMethodReturns) {
  const std::string reply = m_client.Exchange(PostAdd(""));
  EXPECT_THAT(reply, HasSubstr("<METHODRESPONSE NAME=\"Add\">\n"
                               "<RETURNVALUE PARAMTYPE=\"uint32\">\n"
                               "<VALUE>0</VALUE>\n"
                               "</RETURNVALUE>\n"
                               "<PARAMVALUE NAME=\"Sum\" PARAMTYPE=\"uint64\">\n"
                               "<VALUE>0</VALUE>\n"
                               "</PARAMVALUE>\n"
                               "<PARAMVALUE NAME=\"What\" PARAMTYPE=\"string\" "
                               "EmbeddedObject=\"object\">\n"));
  EXPECT_THAT(reply, HasSubstr("<PARAMVALUE NAME=\"Where\" PARAMTYPE=\"reference\">\n"
                               "<VALUE.REFERENCE>\n<INSTANCEPATH>\n<NAMESPACEPATH>\n"
                               "<HOST>peer</HOST>\n"));
}

TEST_F(PeerSfcbTest, PutsNothingIntoAnEmptyResult) {
  EXPECT_EQ(GetBody(Ask("DeleteInstance", PathParameter("two"))),
            Frame("DeleteInstance", "<IRETURNVALUE>\n</IRETURNVALUE>\n"));
}

TEST_F(PeerSfcbTest, HasItsOwnWordsForErrors) {
  EXPECT_EQ(GetBody(Ask("GetClass", ClassParameter("PEER_None"))),
            Frame("GetClass",
                  "<ERROR CODE=\"6\" DESCRIPTION=\"The requested object could not be found\"/>\n"));
  EXPECT_EQ(GetError(Ask("EnumerateInstances", ClassParameter("PEER_None"))), "5 Class not found");
  EXPECT_EQ(GetError(Ask("GetInstance", PathParameter("three"))),
            "6 no instance root/cimv2:PEER_Thing.Id=&quot;three&quot;");
}

TEST_F(PeerSfcbTest, KnowsNoPullOperations) {
  EXPECT_EQ(GetBody(Ask("OpenEnumerateInstances",
                        ClassParameter("PEER_Thing") + ValueParameter("MaxObjectCount", "1"))),
            Frame("OpenEnumerateInstances",
                  "<ERROR CODE=\"1\" DESCRIPTION=\"invalid imethodcall XML\"/>\n"));
}

TEST_F(PeerSfcbTest, SendsNoChunks) {
  EXPECT_THAT(Ask("EnumerateClassNames", "", "TE: trailers\r\n"),
              HasSubstr("\r\nContent-Length: 286\r\n"));
}

TEST_F(PeerSfcbTest, ClosesAConnectionAfterTenRequests) {
  for (int i = 0; i < 9; ++i) {
    EXPECT_THAT(Ask("EnumerateClassNames", ""), testing::Not(HasSubstr("Connection")));
  }
  EXPECT_THAT(Ask("EnumerateClassNames", ""), HasSubstr("\r\nConnection: close\r\n"));
  EXPECT_TRUE(m_client.IsClosed());
}

TEST_F(PeerSfcbTest, MeetsNoExpectations) {
  m_client.Send(
      "POST /cimom HTTP/1.1\r\nHost: h\r\nExpect: 100-continue\r\nContent-Length: 9\r\n\r\n");
  EXPECT_THAT(m_client.Receive(), HasSubstr("HTTP/1.1 417 Expectation Failed\r\n"));
  EXPECT_TRUE(m_client.IsClosed());
}

}  // namespace
}  // namespace cimserver
