// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/cimxml/peer/TPeerStyleTest.h"

namespace cimserver {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

/// The manner of one maker, to the byte.
class PeerPegasusTest : public TPeerStyleTest {
 protected:
  PeerPegasusTest() : TPeerStyleTest(EStyle::kPegasus) {}
};

TEST_F(PeerPegasusTest, WritesAClass) {
  const std::string reply = Ask("GetClass", ClassParameter("peer_base"));
  EXPECT_EQ(reply,
            "HTTP/1.1 200 OK\r\n"
            "Content-Type: application/xml; charset=utf-8\r\n"
            "content-length: 0000000493\r\n"
            "CIMOperation: MethodResponse\r\n"
            "\r\n" +
                Frame("GetClass",
                      "<IRETURNVALUE>\n"
                      "<CLASS NAME=\"PEER_Base\" >\n"
                      "<PROPERTY NAME=\"Id\"  TYPE=\"string\">\n"
                      "<QUALIFIER NAME=\"Key\" TYPE=\"boolean\" OVERRIDABLE=\"false\">\n"
                      "<VALUE>TRUE</VALUE>\n"
                      "</QUALIFIER>\n"
                      "</PROPERTY>\n"
                      "<PROPERTY NAME=\"Caption\"  TYPE=\"string\">\n"
                      "<VALUE>none</VALUE>\n"
                      "</PROPERTY>\n"
                      "</CLASS>\n"
                      "</IRETURNVALUE>\n"));
}

TEST_F(PeerPegasusTest, TellsOriginsAndFlavorsInAClass) {
  const std::string reply =
      Ask("GetClass", ClassParameter("PEER_Thing") + ValueParameter("LocalOnly", "FALSE") +
                          ValueParameter("IncludeClassOrigin", "TRUE"));
  for (const char* part :
       {"<CLASS NAME=\"PEER_Thing\"  SUPERCLASS=\"PEER_Base\" >\n"
        "<QUALIFIER NAME=\"Description\" TYPE=\"string\" TRANSLATABLE=\"true\">\n"
        "<VALUE>A &lt;thing&gt; &amp; more</VALUE>\n</QUALIFIER>\n"
        "<PROPERTY NAME=\"Id\"  CLASSORIGIN=\"PEER_Base\" PROPAGATED=\"true\" TYPE=\"string\">\n",
        "<PROPERTY NAME=\"State\"  CLASSORIGIN=\"PEER_Thing\" TYPE=\"uint16\">\n"
        "<QUALIFIER NAME=\"ValueMap\" TYPE=\"string\">\n"
        "<VALUE.ARRAY>\n<VALUE>1</VALUE>\n<VALUE>2</VALUE>\n</VALUE.ARRAY>\n</QUALIFIER>\n"
        "<QUALIFIER NAME=\"Values\" TYPE=\"string\" TRANSLATABLE=\"true\">\n",
        "<PROPERTY.ARRAY NAME=\"Numbers\"  TYPE=\"uint16\" CLASSORIGIN=\"PEER_Thing\">\n"
        "</PROPERTY.ARRAY>\n",
        "<PROPERTY.REFERENCE NAME=\"Other\"  REFERENCECLASS=\"PEER_Base\" "
        "CLASSORIGIN=\"PEER_Thing\">\n</PROPERTY.REFERENCE>\n",
        "<METHOD NAME=\"Add\" TYPE=\"uint32\" CLASSORIGIN=\"PEER_Thing\">\n"
        "<PARAMETER NAME=\"Left\" TYPE=\"uint16\">\n"
        "<QUALIFIER NAME=\"IN\" TYPE=\"boolean\" OVERRIDABLE=\"false\">\n",
        "<PARAMETER.ARRAY NAME=\"Right\" TYPE=\"uint16\">\n",
        "<PARAMETER.REFERENCE NAME=\"To\" REFERENCECLASS=\"PEER_Base\">\n"}) {
    EXPECT_THAT(reply, HasSubstr(part));
  }
}

TEST_F(PeerPegasusTest, WritesAnEnumerationWithAllThatIsDeclared) {
  const std::string reply =
      Ask("EnumerateInstances", ClassParameter("PEER_Thing") + ListParameter({"caption", "Words"}));
  EXPECT_EQ(GetBody(reply),
            Frame("EnumerateInstances",
                  "<IRETURNVALUE>\n"
                  "<VALUE.NAMEDINSTANCE>\n"
                  "<INSTANCENAME CLASSNAME=\"PEER_Thing\">\n"
                  "<KEYBINDING NAME=\"Id\">\n"
                  "<KEYVALUE VALUETYPE=\"string\">one</KEYVALUE>\n"
                  "</KEYBINDING>\n"
                  "</INSTANCENAME>\n"
                  "<INSTANCE CLASSNAME=\"PEER_Thing\" >\n"
                  "<PROPERTY NAME=\"Caption\"  PROPAGATED=\"true\" TYPE=\"string\">\n"
                  "<VALUE>a &lt; b &amp; &quot;c&quot; &apos;d&apos;&#10;\xC3\xA4</VALUE>\n"
                  "</PROPERTY>\n"
                  "<PROPERTY.ARRAY NAME=\"Words\"  TYPE=\"string\">\n"
                  "<VALUE.ARRAY>\n"
                  "<VALUE>x,y</VALUE>\n"
                  "<VALUE>\\ z</VALUE>\n"
                  "</VALUE.ARRAY>\n"
                  "</PROPERTY.ARRAY>\n"
                  "</INSTANCE>\n"
                  "</VALUE.NAMEDINSTANCE>\n"
                  "<VALUE.NAMEDINSTANCE>\n"
                  "<INSTANCENAME CLASSNAME=\"PEER_Thing\">\n"
                  "<KEYBINDING NAME=\"Id\">\n"
                  "<KEYVALUE VALUETYPE=\"string\">two</KEYVALUE>\n"
                  "</KEYBINDING>\n"
                  "</INSTANCENAME>\n"
                  "<INSTANCE CLASSNAME=\"PEER_Thing\" >\n"
                  "<PROPERTY NAME=\"Caption\"  PROPAGATED=\"true\" TYPE=\"string\">\n"
                  "</PROPERTY>\n"
                  "<PROPERTY.ARRAY NAME=\"Words\"  TYPE=\"string\">\n"
                  "</PROPERTY.ARRAY>\n"
                  "</INSTANCE>\n"
                  "</VALUE.NAMEDINSTANCE>\n"
                  "</IRETURNVALUE>\n"));
}

TEST_F(PeerPegasusTest, WritesAFetchedInstance) {
  const std::string reply =
      Ask("GetInstance",
          PathParameter("one") + ListParameter({"Offset", "Ratio", "IsNew", "Letter", "Other"}));
  EXPECT_EQ(GetBody(reply),
            Frame("GetInstance",
                  "<IRETURNVALUE>\n"
                  "<INSTANCE CLASSNAME=\"PEER_Thing\" >\n"
                  "<PROPERTY NAME=\"Offset\"  TYPE=\"sint64\">\n"
                  "<VALUE>-5</VALUE>\n"
                  "</PROPERTY>\n"
                  "<PROPERTY NAME=\"Ratio\"  TYPE=\"real64\">\n"
                  "<VALUE>5.0000000000000000E-01</VALUE>\n"
                  "</PROPERTY>\n"
                  "<PROPERTY NAME=\"IsNew\"  TYPE=\"boolean\">\n"
                  "<VALUE>TRUE</VALUE>\n"
                  "</PROPERTY>\n"
                  "<PROPERTY NAME=\"Letter\"  TYPE=\"char16\">\n"
                  "<VALUE>\xE2\x82\xAC</VALUE>\n"
                  "</PROPERTY>\n"
                  "<PROPERTY.REFERENCE NAME=\"Other\"  REFERENCECLASS=\"PEER_Base\">\n"
                  "<VALUE.REFERENCE>\n"
                  "<LOCALINSTANCEPATH>\n"
                  "<LOCALNAMESPACEPATH>\n"
                  "<NAMESPACE NAME=\"root\"/>\n"
                  "<NAMESPACE NAME=\"cimv2\"/>\n"
                  "</LOCALNAMESPACEPATH>\n"
                  "<INSTANCENAME CLASSNAME=\"PEER_Thing\">\n"
                  "<KEYBINDING NAME=\"Id\">\n"
                  "<KEYVALUE VALUETYPE=\"string\">two</KEYVALUE>\n"
                  "</KEYBINDING>\n"
                  "</INSTANCENAME>\n"
                  "</LOCALINSTANCEPATH>\n"
                  "</VALUE.REFERENCE>\n"
                  "</PROPERTY.REFERENCE>\n"
                  "</INSTANCE>\n"
                  "</IRETURNVALUE>\n"));
}

TEST_F(PeerPegasusTest, EscapesAnEmbeddedInstanceOncePerLevel) {
  const std::string reply = Ask("GetInstance", PathParameter("one") + ListParameter({"Inner"}));
  EXPECT_THAT(reply,
              HasSubstr("<PROPERTY NAME=\"Inner\"  TYPE=\"string\" EmbeddedObject=\"instance\">\n"
                        "<VALUE>&lt;INSTANCE CLASSNAME=&quot;PEER_Base&quot; &gt;&#10;"
                        "&lt;PROPERTY NAME=&quot;Id&quot;  TYPE=&quot;string&quot;&gt;&#10;"
                        "&lt;VALUE&gt;in&lt;/VALUE&gt;&#10;&lt;/PROPERTY&gt;&#10;"
                        "&lt;PROPERTY NAME=&quot;Caption&quot;  TYPE=&quot;string&quot;&gt;&#10;"
                        "&lt;VALUE&gt;&amp;lt;deep&amp;gt;&lt;/VALUE&gt;&#10;&lt;/PROPERTY&gt;&#10;"
                        "&lt;/INSTANCE&gt;&#10;</VALUE>\n</PROPERTY>\n"));
}

TEST_F(PeerPegasusTest, MarksWhatIsNullInAnArray) {
  TCIMInstanceData thing{TPeerWorld::GetPath("gap"), {}};
  thing.Set("Words", TCIMValue::Array(ECIMType::kString, {TCIMValue::Null(ECIMType::kString)}));
  thing.Set("Numbers", TCIMValue::Array(ECIMType::kUInt16, {}));
  m_world.GetOperations()->AddInstance("root/cimv2", thing);
  const std::string reply =
      Ask("GetInstance", PathParameter("gap") + ListParameter({"Words", "Numbers"}));
  EXPECT_THAT(reply, HasSubstr("<PROPERTY.ARRAY NAME=\"Numbers\"  TYPE=\"uint16\">\n"
                               "<VALUE.ARRAY>\n"
                               "</VALUE.ARRAY>\n"
                               "</PROPERTY.ARRAY>\n"
                               "<PROPERTY.ARRAY NAME=\"Words\"  TYPE=\"string\">\n"
                               "<VALUE.ARRAY>\n"
                               "<VALUE.NULL/>\n"
                               "</VALUE.ARRAY>\n"
                               "</PROPERTY.ARRAY>\n"));
}

// No XML document may hold these, and yet servers send them.
TEST_F(PeerPegasusTest, SendsControlCharactersAsReferences) {
  TCIMInstanceData thing{TPeerWorld::GetPath("bell"), {}};
  thing.Set("Caption", TCIMValue("\a"));
  m_world.GetOperations()->AddInstance("root/cimv2", thing);
  EXPECT_THAT(Ask("GetInstance", PathParameter("bell")), HasSubstr("<VALUE>&#7;</VALUE>"));
}

TEST_F(PeerPegasusTest, WritesWhatAMethodReturns) {
  const std::string reply =
      m_client.Exchange(PostAdd("<PARAMVALUE NAME=\"Left\" PARAMTYPE=\"uint16\"><VALUE>3</VALUE>"
                                "</PARAMVALUE>"));
  EXPECT_THAT(reply, HasSubstr("<METHODRESPONSE NAME=\"Add\">\n"
                               "<RETURNVALUE PARAMTYPE=\"uint32\">\n"
                               "<VALUE>0</VALUE>\n"
                               "</RETURNVALUE>\n"
                               "<PARAMVALUE NAME=\"Sum\" PARAMTYPE=\"uint64\">\n"
                               "<VALUE>3</VALUE>\n"
                               "</PARAMVALUE>\n"
                               "<PARAMVALUE NAME=\"What\" PARAMTYPE=\"string\" "
                               "EmbeddedObject=\"instance\">\n"
                               "<VALUE>&lt;INSTANCE CLASSNAME=&quot;PEER_Base&quot; &gt;&#10;"));
  EXPECT_THAT(reply, HasSubstr("<PARAMVALUE NAME=\"Where\" PARAMTYPE=\"reference\">\n"
                               "<VALUE.REFERENCE>\n<LOCALINSTANCEPATH>\n"));
  EXPECT_THAT(reply, EndsWith("</VALUE.REFERENCE>\n</PARAMVALUE>\n</METHODRESPONSE>\n"
                              "</SIMPLERSP>\n</MESSAGE>\n</CIM>\n"));
}

TEST_F(PeerPegasusTest, WritesNamesAndNothingForNothing) {
  EXPECT_EQ(GetBody(Ask("EnumerateClassNames", "")),
            Frame("EnumerateClassNames",
                  "<IRETURNVALUE>\n<CLASSNAME NAME=\"PEER_Base\"/>\n</IRETURNVALUE>\n"));
  EXPECT_EQ(GetBody(Ask("EnumerateClassNames", ClassParameter("PEER_Thing"))),
            Frame("EnumerateClassNames", ""));
  EXPECT_EQ(GetBody(Ask("DeleteInstance", PathParameter("two"))), Frame("DeleteInstance", ""));
}

TEST_F(PeerPegasusTest, NamesAnErrorBeforeItsWords) {
  EXPECT_EQ(GetBody(Ask("GetClass", ClassParameter("PEER_None"))),
            Frame("GetClass", "<ERROR CODE=\"6\" DESCRIPTION=\"CIM_ERR_NOT_FOUND: PEER_None\"/>"));
  EXPECT_EQ(GetError(Ask("EnumerateInstances", ClassParameter("PEER_None"))),
            "5 CIM_ERR_INVALID_CLASS: PEER_None");
  EXPECT_EQ(GetError(Ask("GetInstance", PathParameter("three"))),
            "6 CIM_ERR_NOT_FOUND: no instance root/cimv2:PEER_Thing.Id=&quot;three&quot;");
  EXPECT_EQ(GetError(Ask("ExecQuery", "")), "7 CIM_ERR_NOT_SUPPORTED: ExecQuery");
  EXPECT_EQ(GetError(Ask("EnumerateClassNames", ValueParameter("Deep", "TRUE"))),
            "7 CIM_ERR_NOT_SUPPORTED: Deep");
}

TEST_F(PeerPegasusTest, SendsChunksToThoseWhoTakeThem) {
  const std::string reply = Ask("EnumerateClassNames", "", "TE: chunked, trailers\r\n");
  EXPECT_EQ(reply,
            "HTTP/1.1 200 OK\r\n"
            "Content-Type: application/xml; charset=utf-8\r\n"
            "transfer-encoding: chunked\r\n"
            "CIMOperation: MethodResponse\r\n"
            "Trailer: CIMStatusCode, CIMStatusCodeDescription, Content-Language\r\n"
            "\r\n"
            "11f\r\n" +
                Frame("EnumerateClassNames",
                      "<IRETURNVALUE>\n<CLASSNAME NAME=\"PEER_Base\"/>\n</IRETURNVALUE>\n") +
                "\r\n0\r\n\r\n");
}

TEST_F(PeerPegasusTest, PutsAnErrorBehindTheChunks) {
  EXPECT_EQ(GetBody(Ask("GetClass", ClassParameter("PEER_None"), "TE: trailers\r\n")),
            "d7\r\n" + Frame("GetClass", "") +
                "\r\n0\r\n"
                "CIMStatusCode: 6\r\n"
                "CIMStatusCodeDescription: CIM_ERR_NOT_FOUND%3A%20PEER_None\r\n"
                "\r\n");
}

TEST(PeerChunksTest, AreAsSmallAsWanted) {
  const TPeerWorld world;
  TPeerOptions options;
  options.chunkBytes = 100;
  const TCimServer server(world.GetOperations(), options);
  TRawClient client(server.GetPort());
  const std::string body =
      GetBody(client.Exchange(PostIntrinsic("EnumerateClassNames", "", "TE: trailers\r\n")));
  EXPECT_EQ(body.substr(0, 10), "64\r\n<?xml ");
  EXPECT_EQ(body.substr(104, 8), "\r\n64\r\nOC");
  EXPECT_THAT(body, EndsWith("</CIM>\n\r\n0\r\n\r\n"));
}

}  // namespace
}  // namespace cimserver
