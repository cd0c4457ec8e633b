// SPDX-License-Identifier: Apache-2.0
//
// The real command, run as a user does: arguments, outputs, statuses.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <ostream>

#include "tests/host/THostFixture.h"

namespace host {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr char kShort[] = "Processor Short Stress,cpu0,";

class EndToEndTest : public THostFixture {
 protected:
  EndToEndTest() { AddStress(kGoodStress, 0); }

  // The identifier of the short test of the first processor.
  std::string GetId() const {
    const std::vector<std::string> ids = FindTests(kShort);
    if (ids.size() != 1) throw std::runtime_error("no short test of cpu0");
    return ids.front();
  }
};

TEST_F(EndToEndTest, ListShowsTheProcessorsTests) {
  const TFinished finished = Run({"list"});
  EXPECT_EQ(finished.status, 0);
  EXPECT_THAT(finished.out, StartsWith("NO.  SERVICE"));
  EXPECT_THAT(finished.out, HasSubstr(kShort));
}

TEST_F(EndToEndTest, ListTellsWhatAMissingProgramWouldBring) {
  TProgram program = MakeCommand({"list"});
  program.environment["PATH"] = GetFolder() + "/empty";
  const TFinished finished = RunToEnd(program);
  EXPECT_THAT(finished.out, Not(HasSubstr("Processor Short Stress")));
  EXPECT_THAT(finished.err, HasSubstr("diagsrun: not offered: Processor Short Stress"));
  EXPECT_THAT(finished.err, HasSubstr("stress-ng"));
}

TEST_F(EndToEndTest, RunShowsTheVerdictAndTheRecord) {
  const TFinished finished = Run({"run", GetId()});
  EXPECT_EQ(finished.status, 0) << finished.err;
  EXPECT_THAT(finished.out, StartsWith(std::string("[1/1] ") + kShort));
  EXPECT_THAT(finished.out, HasSubstr("      Pass ("));
  EXPECT_THAT(finished.out, HasSubstr("      | Verdict: passed"));
  EXPECT_THAT(finished.out, HasSubstr("\n1 test: 1 passed, 0 failed"));
  EXPECT_EQ(finished.err, "");
}

TEST_F(EndToEndTest, RunTakesTheNumberOfTheList) {
  const json list = json::parse(Run({"list", "--json", "--match", kShort}).out);
  const int number = list["tests"][0]["number"];
  const TFinished finished = Run({"run", "#" + std::to_string(number)});
  EXPECT_EQ(finished.status, 0);
  EXPECT_THAT(finished.out, StartsWith(std::string("[1/1] ") + kShort));
}

TEST_F(EndToEndTest, AWrongComputationIsAFailedTest) {
  AddStress("stress-ng: fail:  [1] cpu: float64 calculation error\n", 2);
  const TFinished finished = Run({"run", GetId()});
  EXPECT_EQ(finished.status, 1);
  EXPECT_THAT(finished.out, HasSubstr("      Fail ("));
  EXPECT_THAT(finished.out, HasSubstr("float64 calculation error"));
}

TEST_F(EndToEndTest, AToolThatCouldNotTestIsNeitherAPassNorAFailure) {
  AddStress("", 3);
  const TFinished finished = Run({"run", GetId()});
  EXPECT_EQ(finished.status, 2);
  EXPECT_THAT(finished.out, HasSubstr("      Incomplete ("));
  EXPECT_THAT(finished.err, HasSubstr("could not run or did not finish: Incomplete"));
}

TEST_F(EndToEndTest, JsonIsAloneOnStandardOutput) {
  const TFinished finished = Run({"run", GetId(), "--json", "--progress", "always"});
  EXPECT_EQ(finished.status, 0);
  const json document = json::parse(finished.out);
  EXPECT_EQ(document["status"], 0);
  EXPECT_EQ(document["tests"][0]["answer"], "Pass");
  EXPECT_EQ(document["tests"][0]["outcome"], "passed");
  EXPECT_EQ(document["tests"][0]["record"]["completionState"], "OK");
  EXPECT_THAT(document["tests"][0]["record"]["data"], HasSubstr("Verdict: passed"));
  EXPECT_THAT(finished.err, HasSubstr("Percent Complete"));
}

TEST_F(EndToEndTest, ProgressShowsOnATerminalOnly) {
  const std::string id = GetId();
  TProgram program = MakeCommand({"run", id});
  EXPECT_THAT(RunToEnd(program).out, Not(HasSubstr("Percent Complete")));
  program.hasTerminal = true;
  EXPECT_THAT(RunToEnd(program).out, HasSubstr("Percent Complete: "));
  program = MakeCommand({"run", id, "--progress", "never"});
  program.hasTerminal = true;
  EXPECT_THAT(RunToEnd(program).out, Not(HasSubstr("Percent Complete")));
}

TEST_F(EndToEndTest, ProgressNeverGetsIntoADocumentOnATerminal) {
  TProgram program = MakeCommand({"run", GetId(), "--json"});
  program.hasTerminal = true;
  const TFinished finished = RunToEnd(program);
  EXPECT_EQ(json::parse(finished.out)["summary"]["passed"], 1);
  EXPECT_EQ(finished.err, "");
}

TEST_F(EndToEndTest, AListingWhoseReaderHasGoneEndsQuietly) {
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {"list"}, {"list", "--json"}, {"--help"}, {"inspect", "CIM_Processor"}}) {
    TProgram program = MakeCommand(arguments);
    program.isOutputClosed = true;
    const TFinished finished = RunToEnd(program);
    EXPECT_EQ(finished.status, 0) << arguments[0];
    EXPECT_THAT(finished.err, Not(HasSubstr("standard output"))) << arguments[0];
  }
}

TEST_F(EndToEndTest, ARunWhoseReaderHasGoneIsAnErrorNotADeath) {
  TProgram program = MakeCommand({"run", GetId(), GetId()});
  program.isOutputClosed = true;
  const TFinished finished = RunToEnd(program);
  EXPECT_EQ(finished.status, 2);
  EXPECT_THAT(finished.err, HasSubstr("standard output: cannot be written to"));
}

TEST_F(EndToEndTest, ALogFileHasTheRunnersTrace) {
  const std::string log = GetFolder() + "/log";
  EXPECT_EQ(Run({"--log", log, "--log-level", "trace", "list"}).status, 0);
  std::ifstream file(log);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  EXPECT_THAT(text, HasSubstr("Entreing DiagsRunner::DiagsRunner"));
}

TEST_F(EndToEndTest, InspectShowsTheDevices) {
  const TFinished text = Run({"inspect", "CIM_Processor"});
  EXPECT_EQ(text.status, 0);
  EXPECT_THAT(text.out, HasSubstr("DRH_Processor."));
  EXPECT_THAT(text.out, HasSubstr("DeviceID : cpu0\n"));
  const json document = json::parse(Run({"inspect", "CIM_Processor", "--json"}).out);
  EXPECT_EQ(document["known"], true);
  EXPECT_EQ(document["instances"][0]["properties"]["DeviceID"], "cpu0");
}

TEST_F(EndToEndTest, InspectNamesAnUnknownClass) {
  const TFinished text = Run({"inspect", "No_Such"});
  EXPECT_EQ(text.status, 2);
  EXPECT_EQ(text.out, "");
  EXPECT_EQ(text.err, "diagsrun: No_Such: no such class\n");
  const TFinished document = Run({"inspect", "No_Such", "--json"});
  EXPECT_EQ(document.status, 2);
  EXPECT_EQ(json::parse(document.out)["known"], false);
}

struct TBadCall {
  const char* name;
  std::vector<std::string> arguments;
  int status;
  const char* message;
};
void PrintTo(const TBadCall& row, std::ostream* out) {
  *out << row.name;
}

class BadCallTest : public THostFixture, public ::testing::WithParamInterface<TBadCall> {};

TEST_P(BadCallTest, IsOneLineOnStandardErrorAndNothingElse) {
  const TFinished finished = Run(GetParam().arguments);
  EXPECT_EQ(finished.status, GetParam().status);
  EXPECT_EQ(finished.out, "");
  EXPECT_THAT(finished.err, StartsWith("diagsrun: "));
  EXPECT_THAT(finished.err, HasSubstr(GetParam().message));
  EXPECT_EQ(finished.err.find('\n'), finished.err.size() - 1) << finished.err;
}
INSTANTIATE_TEST_SUITE_P(
    All, BadCallTest,
    ::testing::Values(
        TBadCall{"Nothing", {}, 3, "list, run, inspect or provider"},
        TBadCall{"UnknownId", {"run", "no,such,test"}, 3, "no,such,test: no such test"},
        TBadCall{"EmptyId", {"run", ""}, 3, "is empty"},
        TBadCall{"NoCommas", {"run", "stress"}, 3, "stress"},
        TBadCall{"QuotedLabel", {"run", "1", "--label", "it's"}, 3, "single quote"},
        TBadCall{"MissingRoot", {"--root", "/no/such/root", "list"}, 2, "/no/such/root"},
        TBadCall{"RootIsAFile", {"--root", "/etc/passwd", "list"}, 2, "not a directory"},
        TBadCall{"LogIsAFolder", {"--log", "/", "list"}, 2, "/"}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace host
