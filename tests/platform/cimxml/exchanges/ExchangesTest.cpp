// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/cimxml/TCIMXMLOperations.h"
#include "tests/platform/cimxml/exchanges/Render.h"
#include "tests/platform/cimxml/exchanges/TExchangeFile.h"
#include "tests/platform/cimxml/http/SessionTest.h"

namespace diagstest {
namespace {

constexpr char kFolder[] = DIAGSRUNNER_TEST_EXCHANGES;

class ExchangesTest : public ::testing::TestWithParam<std::string> {};

TEST_P(ExchangesTest, AsksToTheByteAndUnderstandsTheReply) {
  const TExchangeFile exchange(std::string(kFolder) + "/" + GetParam() + ".exchange");
  TScriptedServer server;
  for (const TExchangeFile::TStep& step : exchange.GetSteps()) {
    server.Queue(TPlay().Send(step.reply));
  }
  NZEPQEL20::TCIMXMLOperations operations(MakeOptions("http", server.GetPort()), "root/cimv2");

  EXPECT_EQ(Perform(operations, operations.GetServerName(), exchange.GetOperation()),
            exchange.GetResult());

  const std::vector<TSeenRequest> seen = server.GetRequests();
  ASSERT_EQ(seen.size(), exchange.GetSteps().size());
  for (std::size_t i = 0; i < seen.size(); ++i) {
    for (const std::string& line : exchange.GetSteps()[i].headLines) {
      EXPECT_TRUE(seen[i].HasLine(line)) << line << " is missing in\n" << seen[i].head;
    }
    EXPECT_EQ(seen[i].body, exchange.GetSteps()[i].requestBody);
  }
}

std::string GetTestName(const ::testing::TestParamInfo<std::string>& row) {
  std::string name = row.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(All, ExchangesTest, ::testing::ValuesIn(ListExchanges(kFolder)),
                         GetTestName);

}  // namespace
}  // namespace diagstest
