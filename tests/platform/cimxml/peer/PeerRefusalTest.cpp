// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "tests/platform/cimxml/peer/PeerMessages.h"
#include "tests/platform/cimxml/peer/TPeerWorld.h"
#include "tests/platform/cimxml/peer/TRawClient.h"

namespace cimserver {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// `message` with its first `from` replaced by `to`.
std::string With(std::string message, const std::string& from, const std::string& to) {
  const std::size_t found = message.find(from);
  if (found == std::string::npos) throw std::invalid_argument(from);
  return message.replace(found, from.size(), to);
}

std::string Post(const std::string& body) {
  return MakePost("EnumerateClassNames", "root/cimv2", body);
}

const std::string kGood = MakeIntrinsic("EnumerateClassNames", "");

struct TRefusalRow {
  std::string name;
  std::string request;
  std::string start;     ///< Of the reply of the maker that says more.
  std::string cimError;  ///< Empty: no such header.
  std::string detail;    ///< As it stands in the header.
};
void PrintTo(const TRefusalRow& row, std::ostream* out) {
  *out << row.name;
}

const TRefusalRow kRefusals[] = {
    {"NoXml", Post("<CIM"), "HTTP/1.1 400 Bad Request\r\n", "request-not-well-formed",
     "line%201%2C%20column%201%3A%20unclosed%20token"},
    {"OtherRoot", Post("<CIN/>"), "HTTP/1.1 400 ", "request-not-valid",
     "CIN%20in%20the%20place%20of%20CIM"},
    {"NoParameterName",
     Post(MakeIntrinsic("EnumerateClassNames",
                        "<IPARAMVALUE><CLASSNAME NAME=\"x\"/></IPARAMVALUE>")),
     "HTTP/1.1 400 ", "request-not-valid", "IPARAMVALUE%20without%20attribute%20NAME"},
    {"EmptyNamespace", Post(With(kGood, "<NAMESPACE NAME=\"cimv2\"/>", "<NAMESPACE NAME=\"\"/>")),
     "HTTP/1.1 400 ", "request-not-valid", "part%20of%20a%20namespace%20path"},
    {"NoBoolean",
     Post(MakeIntrinsic("EnumerateClassNames", ValueParameter("DeepInheritance", "maybe"))),
     "HTTP/1.1 400 ", "request-not-valid", "%22maybe%22%20as%20a%20value%20of%20type%20boolean"},
    {"OtherMethod", With(Post(kGood), "CIMMethod: EnumerateClassNames", "CIMMethod: GetClass"),
     "HTTP/1.1 400 ", "header-mismatch",
     "CIMMethod%20is%20GetClass%2C%20NAME%20EnumerateClassNames"},
    {"NoMethod", With(Post(kGood), "CIMMethod: EnumerateClassNames\r\n", ""), "HTTP/1.1 400 ",
     "header-mismatch", "CIMMethod%20header%20missing"},
    {"OtherNamespace", With(Post(kGood), "CIMObject: root/cimv2", "CIMObject: root%2Finterop"),
     "HTTP/1.1 400 ", "header-mismatch",
     "CIMObject%20is%20root%2Finterop%2C%20the%20namespace%20root%2Fcimv2"},
    {"OtherObject", With(PostAdd(""), "Id%3D%22one%22", "Id%3D%22two%22"), "HTTP/1.1 400 ",
     "header-mismatch",
     "CIMObject%20is%20root%2Fcimv2%3APEER_Thing.Id%3D%22two%22%2C%20the%20path%20"
     "root%2Fcimv2%3APEER_Thing.Id%3D%22one%22"},
    {"OtherCaseOfAMethod", With(PostAdd(""), "CIMMethod: Add", "CIMMethod: add"), "HTTP/1.1 400 ",
     "header-mismatch", "CIMMethod%20is%20add%2C%20NAME%20Add"},
    {"EmbeddedButNoString",
     PostAdd("<PARAMVALUE NAME=\"With\" PARAMTYPE=\"uint8\" EmbeddedObject=\"instance\"><VALUE>"
             "</VALUE></PARAMVALUE>"),
     "HTTP/1.1 400 ", "request-not-valid",
     "PARAMVALUE%20with%20an%20embedded%20object%20of%20type%20uint8"},
    {"OtherOperation", With(Post(kGood), "MethodCall", "MethodShout"), "HTTP/1.1 400 ",
     "unsupported-operation", "CIMOperation%20is%20MethodShout"},
    {"NoOperation", With(Post(kGood), "CIMOperation: MethodCall\r\n", ""), "HTTP/1.1 400 ", "",
     "CIMOperation%20header%20missing"},
    {"OtherContent", With(Post(kGood), "application/xml", "text/plain"), "HTTP/1.1 400 ", "",
     "HTTP%20Content-Type%20header%20error"},
    {"NoHost", With(Post(kGood), "Host: 127.0.0.1\r\n", ""), "HTTP/1.1 400 ", "",
     "Host%20header%20missing"},
    {"CimVersion", Post(With(kGood, "CIMVERSION=\"2.0\"", "CIMVERSION=\"3.0\"")),
     "HTTP/1.1 501 Not Implemented\r\n", "unsupported-cim-version", "CIMVERSION%20is%203.0"},
    {"DtdVersion", Post(With(kGood, "DTDVERSION=\"2.0\"", "DTDVERSION=\"1.0\"")), "HTTP/1.1 501 ",
     "unsupported-dtd-version", "DTDVERSION%20is%201.0"},
    {"ProtocolVersion", Post(With(kGood, "PROTOCOLVERSION=\"1.0\"", "PROTOCOLVERSION=\"2.0\"")),
     "HTTP/1.1 501 ", "unsupported-protocol-version", "PROTOCOLVERSION%20is%202.0"},
    {"UnannouncedProtocol", Post(With(kGood, "PROTOCOLVERSION=\"1.0\"", "PROTOCOLVERSION=\"1.4\"")),
     "HTTP/1.1 400 ", "header-mismatch",
     "CIMProtocolVersion%20is%201.0%2C%20PROTOCOLVERSION%201.4"},
    {"ManyRequests",
     Post(With(With(kGood, "<SIMPLEREQ>", "<MULTIREQ>"), "</SIMPLEREQ>", "</MULTIREQ>")),
     "HTTP/1.1 501 ", "multiple-requests-unsupported", "MULTIREQ"},
    {"Batch", With(Post(kGood), "CIMOperation:", "CIMBatch: x\r\nCIMOperation:"), "HTTP/1.1 501 ",
     "multiple-requests-unsupported", "CIMBatch%20header"},
    {"NoPost", With(Post(kGood), "POST ", "M-POST "), "HTTP/1.1 501 ", "",
     "M-POST%20is%20not%20implemented"},
};

class PeerRefusalTest : public testing::TestWithParam<TRefusalRow> {};

// No length is given for the body that there is not: only the header's end tells the reply's.
TEST_P(PeerRefusalTest, IsTerseFromOneMakerOnAConnectionThatStaysOpen) {
  const TRefusalRow& row = GetParam();
  const TPeerWorld world;
  const TCimServer server(world.GetOperations());
  TRawClient client(server.GetPort());
  const std::string reply = client.Exchange(row.request);
  EXPECT_THAT(reply, StartsWith(row.start));
  const std::string error = row.cimError.empty() ? "" : "CIMError: " + row.cimError + "\r\n";
  EXPECT_THAT(reply,
              testing::EndsWith("\r\n" + error + "PGErrorDetail: " + row.detail + "\r\n\r\n"));
  EXPECT_THAT(client.Exchange(Post(kGood)), StartsWith("HTTP/1.1 200 OK\r\n"));
  EXPECT_EQ(server.CountRequests(TPeerCounts::kRefused), 1U);
}

TEST_P(PeerRefusalTest, HasALengthFromTheOther) {
  const TRefusalRow& row = GetParam();
  const TPeerWorld world;
  TPeerOptions options;
  options.style = EStyle::kSfcb;
  const TCimServer server(world.GetOperations(), options);
  TRawClient client(server.GetPort());
  const std::string reply = client.Exchange(row.request);
  EXPECT_THAT(reply, StartsWith(row.start));
  EXPECT_THAT(reply, HasSubstr("\r\nContent-Length: 0\r\n"));
  EXPECT_THAT(reply, Not(HasSubstr("PGErrorDetail")));
  if (!row.cimError.empty()) {
    EXPECT_THAT(reply, HasSubstr("\r\nCIMError: " + row.cimError + "\r\n"));
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, PeerRefusalTest, testing::ValuesIn(kRefusals),
                         [](const auto& row) { return row.param.name; });

TEST(PeerLimitTest, WhatIsNoHttpEndsTheConnection) {
  const TPeerWorld world;
  const TCimServer server(world.GetOperations());
  TRawClient client(server.GetPort());
  EXPECT_THAT(client.Exchange("EHLO peer\r\n\r\n"), StartsWith("HTTP/1.1 400 Bad Request\r\n"));
  EXPECT_TRUE(client.IsClosed());
}

TEST(PeerLimitTest, TooLongHeadersAreRefusedByOneMaker) {
  const TPeerWorld world;
  const std::string request =
      With(Post(kGood), "Host:", "X-Long: " + std::string(6000, 'x') + "\r\nHost:");
  for (const auto& [style, start] :
       {std::pair(EStyle::kSfcb, "HTTP/1.1 400 "), std::pair(EStyle::kPegasus, "HTTP/1.1 200 ")}) {
    TPeerOptions options;
    options.style = style;
    const TCimServer server(world.GetOperations(), options);
    EXPECT_THAT(TRawClient(server.GetPort()).Exchange(request), StartsWith(start));
  }
}

TEST(PeerLimitTest, TooLargeABodyIsRefusedBeforeItIsRead) {
  const TPeerWorld world;
  const TCimServer server(world.GetOperations());
  TRawClient client(server.GetPort());
  client.Send("POST /cimom HTTP/1.1\r\nHost: h\r\nContent-Length: 10000001\r\n\r\n");
  EXPECT_THAT(client.Receive(), StartsWith("HTTP/1.1 413 Payload Too Large\r\n"));
  EXPECT_TRUE(client.IsClosed());
}

}  // namespace
}  // namespace cimserver
