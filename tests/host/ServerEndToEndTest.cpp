// SPDX-License-Identifier: Apache-2.0
//
// The real command and the tests of a CIM server, over every way to reach one, with both makers'
// manners.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>

#include "tests/host/TServerFixture.h"

namespace host {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr char kShort[] = "Processor Short Stress,cpu0,";

enum class EWay { kHttp, kHttps, kUnix };

struct TReach {
  const char* name;
  const char* style;
  EWay way;
};
void PrintTo(const TReach& row, std::ostream* out) {
  *out << row.name;
}

class ServerEndToEndTest : public TServerFixture, public ::testing::WithParamInterface<TReach> {
 protected:
  ServerEndToEndTest() {
    AddStress(kGoodStress, 0);
    std::vector<std::string> arguments = {"--style", GetParam().style};
    if (GetParam().way == EWay::kHttps) {
      for (std::string& more : WithCertificate(m_ca.GetServer())) arguments.push_back(more);
      m_options = {"--ca", m_ca.GetCaFile()};
    }
    if (GetParam().way == EWay::kUnix) {
      arguments.insert(arguments.end(), {"--unix", GetFolder() + "/socket"});
    }
    StartServer(arguments);
  }

  TFinished Call(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), m_options.begin(), m_options.end());
    return RunOnServer(arguments);
  }

 private:
  cimserver::TThrowAwayCa m_ca;
  std::vector<std::string> m_options;
};

std::vector<std::string> SortLines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  std::sort(lines.begin(), lines.end());
  return lines;
}

TEST_P(ServerEndToEndTest, ListIsToTheByteTheListOfThatMachine) {
  const TFinished local = Run({"list"});
  const TFinished remote = Call({"list"});
  EXPECT_EQ(remote.status, 0) << remote.err;
  EXPECT_THAT(remote.out, HasSubstr(kShort));
  EXPECT_EQ(remote.out, local.out);
}

TEST_P(ServerEndToEndTest, RunFollowsTheJobsOfTheServer) {
  const TFinished finished = Call({"run", FindTests(kShort).at(0), "--json"});
  EXPECT_EQ(finished.status, 0) << finished.err;
  const json document = json::parse(finished.out);
  EXPECT_EQ(document["server"], GetUrl());
  ASSERT_EQ(document["tests"].size(), 1U);
  const json& test = document["tests"][0];
  EXPECT_EQ(test["answer"], "Pass");
  EXPECT_EQ(test["record"]["completionState"], "OK");
  EXPECT_THAT(test["record"]["data"], HasSubstr("Verdict: passed"));
  EXPECT_EQ(finished.err, "");
}

TEST_P(ServerEndToEndTest, InspectShowsWhatThatMachineShows) {
  const TFinished local = Run({"inspect", "CIM_Processor"});
  const TFinished remote = Call({"inspect", "CIM_Processor"});
  EXPECT_EQ(remote.status, 0) << remote.err;
  EXPECT_THAT(remote.out, HasSubstr("DeviceID : cpu0\n"));
  // Servers have orders of their own.
  EXPECT_EQ(SortLines(remote.out), SortLines(local.out));
}

TEST_P(ServerEndToEndTest, InspectNamesAnUnknownClass) {
  const TFinished text = Call({"inspect", "No_Such"});
  EXPECT_EQ(text.status, 2);
  EXPECT_EQ(text.out, "");
  EXPECT_EQ(text.err, "diagsrun: No_Such: no such class on " + GetUrl() + "\n");
  const TFinished document = Call({"inspect", "No_Such", "--json"});
  EXPECT_EQ(document.status, 2);
  EXPECT_EQ(json::parse(document.out)["known"], false);
}

INSTANTIATE_TEST_SUITE_P(All, ServerEndToEndTest,
                         ::testing::Values(TReach{"PegasusHttp", "pegasus", EWay::kHttp},
                                           TReach{"PegasusHttps", "pegasus", EWay::kHttps},
                                           TReach{"PegasusUnix", "pegasus", EWay::kUnix},
                                           TReach{"SfcbHttp", "sfcb", EWay::kHttp},
                                           TReach{"SfcbHttps", "sfcb", EWay::kHttps},
                                           TReach{"SfcbUnix", "sfcb", EWay::kUnix}),
                         [](const auto& row) { return row.param.name; });

class ServerTextTest : public TServerFixture {};

TEST_F(ServerTextTest, AFailedTestOfTheServerIsAFailure) {
  AddStress("stress-ng: fail:  [1] cpu: float64 calculation error\n", 2);
  StartServer({});
  const TFinished finished = RunOnServer({"run", FindTests(kShort).at(0)});
  EXPECT_EQ(finished.status, 1);
  EXPECT_THAT(finished.out, HasSubstr("      Fail ("));
  EXPECT_THAT(finished.out, HasSubstr("float64 calculation error"));
  EXPECT_THAT(finished.out, HasSubstr("\n1 test on " + GetUrl() + ": 0 passed, 1 failed"));
}

TEST_F(ServerTextTest, ListTellsWhatIsNotOfferedThere) {
  StartServer({});
  const TFinished finished = RunOnServer({"list", "--json"});
  const json local = json::parse(Run({"list", "--json"}).out);
  EXPECT_EQ(json::parse(finished.out)["unoffered"], local["unoffered"]);
}

TEST_F(ServerTextTest, ANamespaceWithoutTestsSaysSo) {
  StartServer({});
  const TFinished finished = RunOnServer({"--namespace", "root/other", "list"});
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.out, "No tests found on " + GetUrl() + ".\n");
  EXPECT_THAT(finished.err, HasSubstr("CIM_ERR_INVALID_NAMESPACE (3)"));
  const TFinished run = RunOnServer({"--namespace", "root/other", "run", "--all"});
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.err, HasSubstr("diagsrun: run: no tests found on " + GetUrl() + "\n"));
}

}  // namespace
}  // namespace host
