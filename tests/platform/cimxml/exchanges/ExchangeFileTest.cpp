// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/platform/cimxml/exchanges/TExchangeFile.h"
#include "tests/platform/cimxml/http/SessionTest.h"

namespace diagstest {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class ExchangeFileTest : public ::testing::Test {
 protected:
  TExchangeFile Read(const std::string& text) {
    return TExchangeFile(m_folder.Write("a.exchange", text));
  }
  std::string GetFailure(const std::string& text) {
    try {
      Read(text);
    } catch (const std::runtime_error& e) {
      return e.what();
    }
    return "";
  }
  TTemporaryFolder m_folder;
};

TEST_F(ExchangeFileTest, GivesRequestsAndRepliesAsTheyGoOverTheWire) {
  const TExchangeFile file = Read(
      "# told\n=== operation\nGetIt x\nmore\n=== request\nPOST / HTTP/1.1\nA: b\n\nfirst\n+second\n"
      "third\n=== reply\nHTTP/1.1 200 OK\nContent-Length: @0\n\nbody\n=== result\nwhat came\n");
  EXPECT_THAT(file.GetOperation(), ElementsAre("GetIt x", "more"));
  ASSERT_EQ(file.GetSteps().size(), 1U);
  EXPECT_THAT(file.GetSteps()[0].headLines, ElementsAre("POST / HTTP/1.1", "A: b"));
  EXPECT_EQ(file.GetSteps()[0].requestBody, "firstsecond\nthird\n");
  EXPECT_EQ(file.GetSteps()[0].reply,
            "HTTP/1.1 200 OK\r\nContent-Length: 0000000005\r\n\r\nbody\n");
  EXPECT_EQ(file.GetResult(), "what came\n");
}

TEST_F(ExchangeFileTest, PutsChunksAndTrailersTogether) {
  const TExchangeFile file = Read(
      "=== operation\nx\n=== request\nPOST\n\nq\n=== reply\nHTTP/1.1 200 OK\n\n=== "
      "chunk\n0123456789"
      "\n=== chunk\nab\n+c\n=== trailers\nCIMStatusCode: 6\n=== result\nr\n");
  EXPECT_EQ(file.GetSteps()[0].reply,
            "HTTP/1.1 200 OK\r\n\r\nb\r\n0123456789\n\r\n4\r\nabc\n\r\n0\r\nCIMStatusCode: 6\r\n"
            "\r\n");
}

TEST_F(ExchangeFileTest, NamesAFileThatIsNoneAndWhy) {
  EXPECT_THAT(GetFailure("hello\n"), HasSubstr("a.exchange: text before sections"));
  EXPECT_THAT(GetFailure("=== operation\nx\n"), HasSubstr("needs an operation, requests"));
  EXPECT_THAT(GetFailure("=== reply\nx\n"), HasSubstr("section reply without a request"));
  EXPECT_THAT(GetFailure("=== request\nx\n"), HasSubstr("no empty line after the head"));
  EXPECT_THAT(GetFailure("=== request\nx\n\n=== answer\n"), HasSubstr("unknown section answer"));
}

}  // namespace
}  // namespace diagstest
