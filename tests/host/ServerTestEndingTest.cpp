// SPDX-License-Identifier: Apache-2.0
//
// A provider whose tests end in every way, behind a CIM server of either manner.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <nlohmann/json.hpp>
#include <string>
#include <tuple>

#include "tests/host/TServerFixture.h"
#include "tests/host/TestEndings.h"

namespace host {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

class ServerTestEndingTest
    : public TServerFixture,
      public ::testing::WithParamInterface<std::tuple<std::string, TEndingRow>> {};

TEST_P(ServerTestEndingTest, HasTheWordTheOutcomeAndTheStatusOfALocalOne) {
  const auto& [style, row] = GetParam();
  StartServer({"--style", style}, DIAGSTEST_ROOT);
  const TFinished finished =
      RunOnServer({"run", "--json", std::string(row.service) + kEndingDevice});
  EXPECT_EQ(finished.status, row.status) << finished.err;
  const json document = json::parse(finished.out);
  EXPECT_EQ(document["status"], row.status);
  ASSERT_EQ(document["tests"].size(), 1U);
  EXPECT_EQ(document["tests"][0]["answer"], row.answer);
  EXPECT_EQ(document["tests"][0]["outcome"], row.outcome);
}
INSTANTIATE_TEST_SUITE_P(All, ServerTestEndingTest,
                         ::testing::Combine(::testing::Values<std::string>("pegasus", "sfcb"),
                                            EveryEnding()),
                         [](const auto& row) {
                           return std::get<0>(row.param) + std::get<1>(row.param).service;
                         });

class ServerTestProviderTest : public TServerFixture {};

TEST_F(ServerTestProviderTest, ListsEveryTestOfTheProviderOnce) {
  StartServer({}, DIAGSTEST_ROOT);
  const json document = json::parse(RunOnServer({"list", "--json"}).out);
  EXPECT_EQ(document["tests"].size(), 11U);
  EXPECT_EQ(document["problems"], json::array());
  EXPECT_EQ(document["unoffered"], json::array());
}

TEST_F(ServerTestProviderTest, AnInterruptEndsATestThatWouldNeverEnd) {
  StartServer({}, DIAGSTEST_ROOT);
  TSubprocess command(
      MakeServerCommand({"run", std::string("TestHang") + kEndingDevice,
                         std::string("TestPass") + kEndingDevice, "--progress", "always"}));
  ASSERT_TRUE(command.WaitForOutput("Percent Complete: "));
  command.Signal(SIGINT);
  EXPECT_EQ(command.Wait(), 2);
  EXPECT_THAT(command.GetOut(), HasSubstr("      Aborted ("));
  EXPECT_THAT(command.GetOut(), HasSubstr("1 not started (interrupted)"));
  EXPECT_THAT(command.GetOut(), Not(HasSubstr("[2/2]")));
}

}  // namespace
}  // namespace host
