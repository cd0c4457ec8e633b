// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "platform/cimxml/TChallenge.h"
#include "platform/cimxml/TLocalAuthentication.h"
#include "platform/cimxml/TReplyHead.h"

namespace NZEPQEL20::cimxml {
namespace {

TReplyHead Read(const std::vector<std::string>& lines) {
  TReplyHead head;
  for (const std::string& line : lines) head.TakeLine(line + "\r\n");
  return head;
}

TEST(ReplyHeadTest, FindsFieldsWithoutCase) {
  const TReplyHead head = Read({"HTTP/1.1 200 OK", "content-LENGTH:  0000001181 ", "X:", ""});
  EXPECT_TRUE(head.IsComplete());
  EXPECT_EQ(head.GetStatus(), 200);
  EXPECT_EQ(head.GetPhrase(), "OK");
  ASSERT_NE(head.GetFields().Find("Content-Length"), nullptr);
  EXPECT_EQ(*head.GetFields().Find("Content-Length"), "0000001181");
  EXPECT_EQ(*head.GetFields().Find("x"), "");
  EXPECT_EQ(head.GetFields().Find("Content"), nullptr);
}

TEST(ReplyHeadTest, ForgetsInterimReplies) {
  const TReplyHead interim = Read({"HTTP/1.1 100 Continue", "A: b", ""});
  EXPECT_FALSE(interim.IsComplete());
  const TReplyHead head =
      Read({"HTTP/1.1 100 Continue", "A: b", "", "HTTP/1.1 401 No", "C: d", ""});
  EXPECT_TRUE(head.IsComplete());
  EXPECT_EQ(head.GetStatus(), 401);
  EXPECT_EQ(head.GetFields().Find("A"), nullptr);
  EXPECT_TRUE(Read({"HTTP/1.1 101 Switching", ""}).IsComplete());
}

TEST(ReplyHeadTest, KeepsTrailersApart) {
  const TReplyHead head =
      Read({"HTTP/1.1 200 OK", "Transfer-Encoding: chunked", "", "CIMStatusCode: 1", ""});
  EXPECT_EQ(head.GetFields().Find("CIMStatusCode"), nullptr);
  EXPECT_EQ(*head.GetTrailers().Find("cimstatuscode"), "1");
}

TEST(ReplyHeadTest, JoinsFoldedFields) {
  const TReplyHead head = Read({"HTTP/1.1 400 Bad", "PGErrorDetail: one", "\t two", "B: c", ""});
  EXPECT_EQ(*head.GetFields().Find("PGErrorDetail"), "one two");
  EXPECT_EQ(*head.GetFields().Find("B"), "c");
}

TEST(ReplyHeadTest, ReadsStatusLinesWithoutWords) {
  EXPECT_EQ(Read({"HTTP/1.1 401"}).GetStatus(), 401);
  EXPECT_EQ(Read({"HTTP/1.1 401"}).GetPhrase(), "");
  EXPECT_EQ(Read({"HTTP/1.1"}).GetStatus(), 0);
  EXPECT_EQ(Read({"HTTP/1.1 4x1 Odd"}).GetStatus(), 0);
}

TEST(ReplyHeadTest, TellsWhetherTheBodyHasAnEndOfItsOwn) {
  EXPECT_TRUE(Read({"HTTP/1.1 401 No", "Content-Length: 0", ""}).IsBodyDelimited());
  EXPECT_TRUE(Read({"HTTP/1.1 401 No", "Transfer-Encoding: chunked", ""}).IsBodyDelimited());
  EXPECT_FALSE(Read({"HTTP/1.1 401 No", ""}).IsBodyDelimited());
}

TEST(ReplyHeadTest, CountsEveryByteOfEveryLine) {
  EXPECT_EQ(Read({"HTTP/1.1 100 Go", "", "HTTP/1.1 200 OK", "", "T: u"}).GetSize(), 44U);
}

TEST(ChallengeTest, TakesSeveralSchemesApart) {
  EXPECT_EQ(ListSchemes({"Basic realm=\"a, b\", Digest realm=\"c\", nonce=\"d\", Negotiate"}),
            "Basic, Digest, Negotiate");
  EXPECT_EQ(ListSchemes({"Basic \"node:5988\""}), "Basic");
  EXPECT_EQ(ListSchemes({"Negotiate", "Basic realm = \"x\\\", Digest y\""}), "Negotiate, Basic");
  EXPECT_EQ(ListSchemes({}), "");
  EXPECT_EQ(ListSchemes({" , ,"}), "");
  EXPECT_EQ(ListSchemes({"\x1b[m"}), "?[m");
  EXPECT_EQ(ListSchemes({"realm=\"x\""}), "realm=\"x\"");
}

TEST(ChallengeTest, FindsTheFileOfALocalChallenge) {
  EXPECT_EQ(FindLocalChallenge({"Local \"/tmp/a b\""}), "/tmp/a b");
  EXPECT_EQ(FindLocalChallenge({"Basic \"x\", local \"/tmp/f\""}), "/tmp/f");
  EXPECT_EQ(FindLocalChallenge({"Local /tmp/f"}), "");
  EXPECT_EQ(FindLocalChallenge({"Local \"\""}), "");
  EXPECT_EQ(FindLocalChallenge({"Local \""}), "");
  EXPECT_EQ(FindLocalChallenge({"Local"}), "");
  EXPECT_EQ(FindLocalChallenge({}), "");
}

}  // namespace
}  // namespace NZEPQEL20::cimxml
