// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>

#include "host/TJsonReport.h"

namespace host {
namespace {

using nlohmann::json;

const TTest& GetTest() {
  static const TTest test{2, "Stress,cpu0,CPU", "Stress", "cpu0", "CPU"};
  return test;
}

json Show(const std::function<void(TJsonReport&)>& show) {
  std::ostringstream out;
  TJsonReport report(out);
  show(report);
  return json::parse(out.str());
}

TEST(JsonReportTest, WritesAListWithStableKeys) {
  const TListReport list{{GetTest()}, {{"Pattern", "Memory", "no tool", "install it"}}, {"bad"}};
  EXPECT_EQ(Show([&](TJsonReport& report) { report.ShowList(list); }), json::parse(R"({
    "format": 1, "command": "list",
    "tests": [{"number": 2, "id": "Stress,cpu0,CPU", "service": "Stress", "device": "cpu0",
               "element": "CPU"}],
    "unoffered": [{"service": "Pattern", "element": "Memory", "reason": "no tool",
                   "remedy": "install it"}],
    "problems": ["bad"]})"));
}

TEST(JsonReportTest, WritesARunWithStableKeys) {
  TRunReport run;
  run.tests.push_back({GetTest(),
                       EOutcome::kFailed,
                       "Fail",
                       TRecordText{"p", "Failed", "d"},
                       std::chrono::system_clock::from_time_t(0),
                       1.23456,
                       {}});
  run.tests.push_back({GetTest(), EOutcome::kError, "No answer\nof use", std::nullopt,
                       std::chrono::system_clock::from_time_t(0), 1, "http://h: lost"});
  run.tests.push_back({GetTest(), EOutcome::kNotRun, {}, std::nullopt, {}, 0, {}});
  run.isInterrupted = true;
  EXPECT_EQ(Show([&](TJsonReport& report) { report.ShowRunEnd(run); }), json::parse(R"({
    "format": 1, "command": "run", "status": 2, "interrupted": true,
    "tests": [{"number": 2, "id": "Stress,cpu0,CPU", "service": "Stress", "device": "cpu0",
               "element": "CPU", "outcome": "failed", "answer": "Fail", "reason": null,
               "started": "1970-01-01T00:00:00Z", "seconds": 1.235,
               "record": {"path": "p", "completionState": "Failed", "data": "d"}},
              {"number": 2, "id": "Stress,cpu0,CPU", "service": "Stress", "device": "cpu0",
               "element": "CPU", "outcome": "error", "answer": "No answer\nof use",
               "reason": "http://h: lost", "started": "1970-01-01T00:00:00Z", "seconds": 1,
               "record": null},
              {"number": 2, "id": "Stress,cpu0,CPU", "service": "Stress", "device": "cpu0",
               "element": "CPU", "outcome": "not run", "answer": null, "reason": null,
               "started": null, "seconds": null, "record": null}],
    "summary": {"selected": 3, "passed": 0, "failed": 1, "errors": 1, "notRun": 1},
    "problems": []})"));
}

TEST(JsonReportTest, WritesInstancesWithArraysAsArrays) {
  const TInspectReport inspected{
      "A", true, {{"A.K=\"1\"", {{"K", false, {"1"}}, {"L", true, {"x", "y"}}}}}, {}};
  EXPECT_EQ(Show([&](TJsonReport& report) { report.ShowInstances(inspected); }), json::parse(R"({
    "format": 1, "command": "inspect", "class": "A", "known": true,
    "instances": [{"path": "A.K=\"1\"", "properties": {"K": "1", "L": ["x", "y"]}}],
    "problems": []})"));
}

TEST(JsonReportTest, NamesTheServerBehindTheCommand) {
  std::ostringstream out;
  TJsonReport(out, "https://node7").ShowList({});
  EXPECT_EQ(json::parse(out.str()), json::parse(R"({
    "format": 1, "command": "list", "server": "https://node7", "tests": [], "unoffered": [],
    "problems": []})"));
}

TEST(JsonReportTest, WritesOneDocumentAtTheEndOfARunOnly) {
  std::ostringstream out;
  TJsonReport report(out);
  report.ShowTestStart(GetTest(), 1, 1);
  report.ShowTestEnd({});
  EXPECT_EQ(out.str(), "");
}

TEST(JsonReportTest, KeepsControlCharactersAndRepairsWhatIsNotUtf8) {
  TListReport list;
  list.problems = {"\x1b[2J\n", "a\xff"};
  const json document = Show([&](TJsonReport& report) { report.ShowList(list); });
  EXPECT_EQ(document["problems"][0], "\x1b[2J\n");
  EXPECT_EQ(document["problems"][1], "a\xef\xbf\xbd");
}

}  // namespace
}  // namespace host
