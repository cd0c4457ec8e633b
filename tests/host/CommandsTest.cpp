// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "host/Commands.h"
#include "host/TUsageError.h"
#include "tests/host/TFakeDiagnostics.h"

namespace host {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr char kList[] = "Stress,cpu0,CPU|Pattern,memory0,Memory|Read,sda,Disk|";

class CommandsTest : public ::testing::Test {
 protected:
  CommandsTest() {
    m_fake.list = kList;
    m_fake.results["Stress,cpu0,CPU"] = {"Pass", TRecordText{"p", "OK", "all well\nreally"}};
    m_fake.results["Pattern,memory0,Memory"] = {"Fail", std::nullopt};
    m_fake.results["Read,sda,Disk"] = {"Aborted", std::nullopt};
    m_options.command = ECommand::kRun;
  }

  // Every look at the clock takes a quarter of a second.
  int Do() {
    const TSurroundings surroundings{
        m_out,
        m_err,
        [this] { return m_isInterrupted; },
        [this] { return m_out.good(); },
        [] { return std::chrono::system_clock::from_time_t(0); },
        [this] { return std::chrono::steady_clock::time_point(m_time += m_step); },
        [this] { m_runsBeforeBegin.push_back(m_fake.runs.size()); },
        [this] { return m_isReaderGone; }};
    return static_cast<int>(RunCommand(m_options, m_fake, surroundings));
  }

  int Run(const std::vector<std::string>& ids) {
    m_options.selection.ids = ids;
    return Do();
  }

  TFakeDiagnostics m_fake;
  TOptions m_options;
  std::ostringstream m_out;
  std::ostringstream m_err;
  bool m_isInterrupted = false;
  bool m_isReaderGone = false;
  std::vector<std::size_t> m_runsBeforeBegin;  // Tests that had run at each "tests begin".
  std::chrono::milliseconds m_step{250};
  std::chrono::milliseconds m_time{0};
};

struct TPlacesRow {
  const char* name;
  NZEPQEL20::TTestPlaces places;
  bool isExplained;
  const char* line;
};
void PrintTo(const TPlacesRow& row, std::ostream* out) {
  *out << row.name;
}

class EmptyListTest : public CommandsTest, public ::testing::WithParamInterface<TPlacesRow> {};

TEST_P(EmptyListTest, SaysWhatWasAskedAndWhereElseTestsAre) {
  m_options.command = ECommand::kList;
  m_options.isJson = true;
  m_fake.list = "";
  m_fake.places = GetParam().places;
  if (GetParam().isExplained) m_fake.unoffered = {{"S", "E", "reason", "remedy"}};
  EXPECT_EQ(Do(), 2);
  EXPECT_EQ(m_err.str(), GetParam().line);
}
INSTANTIATE_TEST_SUITE_P(
    All, EmptyListTest,
    ::testing::Values(
        TPlacesRow{"Nobody", {}, false, ""},
        TPlacesRow{"Elsewhere",
                   {{}, {"root/nax"}},
                   true,
                   "diagsrun: nobody is registered for CIM_AvailableDiagnosticService in "
                   "root/cimv2; tests are registered in root/nax; --namespace looks there\n"},
        TPlacesRow{"NoAnswer",
                   {{"A_Uses", "B_Uses"}, {}},
                   false,
                   "diagsrun: no provider of A_Uses, B_Uses answered with a test for a device in "
                   "root/cimv2\n"},
        TPlacesRow{"Explained", {{"A_Uses"}, {}}, true, ""},
        TPlacesRow{"Both",
                   {{"A_Uses"}, {"a", "b", "c", "d", "e", "f", "g"}},
                   false,
                   "diagsrun: no provider of A_Uses answered with a test for a device in "
                   "root/cimv2; tests are registered in a, b, c, d, e and 2 more; --namespace "
                   "looks there\n"}),
    [](const auto& row) { return row.param.name; });

TEST_F(CommandsTest, NothingIsSaidOfPlacesWhereTestsWereFound) {
  m_options.command = ECommand::kList;
  m_options.selection.match = "no such test";
  m_fake.places = {{"A_Uses"}, {"root/nax"}};
  EXPECT_EQ(Do(), 2);
  EXPECT_EQ(m_err.str(), "");
}

TEST_F(CommandsTest, ListShowsATable) {
  m_options.command = ECommand::kList;
  m_fake.list = "Stress,cpu0,CPU|Pattern,memory0,Memory|";
  EXPECT_EQ(Do(), 0);
  EXPECT_EQ(m_out.str(),
            "NO.  SERVICE  DEVICE   ELEMENT  TEST ID\n"
            "#1   Stress   cpu0     CPU      Stress,cpu0,CPU\n"
            "#2   Pattern  memory0  Memory   Pattern,memory0,Memory\n");
  EXPECT_EQ(m_err.str(), "");
}

TEST_F(CommandsTest, ListKeepsTheNumbersWhenItFilters) {
  m_options.command = ECommand::kList;
  m_options.selection.device = "sda";
  EXPECT_EQ(Do(), 0);
  EXPECT_THAT(m_out.str(), HasSubstr("#3 "));
  EXPECT_THAT(m_out.str(), Not(HasSubstr("cpu0")));
}

TEST_F(CommandsTest, ListSaysWhenTheFilterLeavesNothing) {
  m_options.command = ECommand::kList;
  m_options.selection.match = "tape";
  EXPECT_EQ(Do(), 2);
  EXPECT_EQ(m_out.str(), "No test matches, out of 3.\n");
}

TEST_F(CommandsTest, ListSaysWhenThereIsNothing) {
  m_options.command = ECommand::kList;
  m_fake.list = "No matching diagnostic test or device found.\n";
  EXPECT_EQ(Do(), 2);
  EXPECT_EQ(m_out.str(), "No tests found.\n");
}

TEST_F(CommandsTest, ListTellsOnStandardErrorWhatIsMissingAndWhy) {
  m_options.command = ECommand::kList;
  m_fake.unoffered = {{"Pattern", "Memory", "memtester is not installed", "install memtester"},
                      {"Bare", "", "no right", ""}};
  m_fake.problems = {"/r/x.mof: line 3: not a class\nfaked"};
  EXPECT_EQ(Do(), 0);
  EXPECT_EQ(m_err.str(),
            "diagsrun: /r/x.mof: line 3: not a class\\x0afaked\n"
            "diagsrun: not offered: Pattern (Memory): memtester is not installed; install "
            "memtester\n"
            "diagsrun: not offered: Bare: no right\n");
}

TEST_F(CommandsTest, ListHidesWhatWouldSteerTheTerminal) {
  m_options.command = ECommand::kList;
  m_fake.list = "\x1b[2JStress,cpu0,C\nPU|";
  EXPECT_EQ(Do(), 0);
  EXPECT_THAT(m_out.str(), HasSubstr("\\x1b[2JStress"));
  EXPECT_THAT(m_out.str(), HasSubstr("C\\x0aPU"));
  EXPECT_THAT(m_out.str(), Not(HasSubstr("\x1b")));
}

TEST_F(CommandsTest, RunShowsWordTimeAndRecordOfEachTest) {
  EXPECT_EQ(Run({"#1", "#2"}), 1);
  EXPECT_EQ(m_out.str(),
            "[1/2] Stress,cpu0,CPU\n"
            "      Pass (0.2 s)\n"
            "      | all well\n"
            "      | really\n"
            "[2/2] Pattern,memory0,Memory\n"
            "      Fail (0.2 s)\n"
            "2 tests: 1 passed, 1 failed, 0 could not run or finish, 0 not started\n");
  EXPECT_EQ(m_err.str(), "");
}

TEST_F(CommandsTest, RunPassesOnlyWhenEveryTestPasses) {
  EXPECT_EQ(Run({"Stress,cpu0,CPU"}), 0);
  EXPECT_EQ(Run({"#1", "#3"}), 2);
  EXPECT_EQ(Run({"#2", "#3"}), 2);
}

TEST_F(CommandsTest, RunExplainsATestThatDidNotFinish) {
  EXPECT_EQ(Run({"#3"}), 2);
  EXPECT_THAT(m_err.str(),
              HasSubstr("diagsrun: Read,sda,Disk: could not run or did not finish: Aborted"));
}

TEST_F(CommandsTest, RunGoesOnAfterATestThatThrew) {
  bool isFirst = true;
  m_fake.duringRun = [&] {
    if (isFirst) {
      isFirst = false;
      throw std::runtime_error("the provider is gone");
    }
  };
  EXPECT_EQ(Run({"#1", "#1"}), 2);
  EXPECT_THAT(m_fake.runs, ::testing::SizeIs(2));
  EXPECT_THAT(m_err.str(), HasSubstr("the provider is gone"));
  EXPECT_THAT(m_out.str(), HasSubstr("2 tests: 1 passed, 0 failed, 1 could not run"));
}

TEST_F(CommandsTest, RunTellsOnceWhatHasFailedAndWhen) {
  m_fake.problems = {"before"};
  m_fake.duringRun = [this] {
    if (m_fake.runs.size() == 2) m_fake.problems.emplace_back("the server is gone");
  };
  EXPECT_EQ(Run({"#1", "#1", "#3"}), 2);
  EXPECT_EQ(
      m_err.str(),
      "diagsrun: before\n"
      "diagsrun: the server is gone\n"
      "diagsrun: Read,sda,Disk: could not run or did not finish: Aborted; --log - --log-level "
      "trace shows the steps\n");
}

TEST_F(CommandsTest, RunKeepsEveryProblemForItsDocument) {
  m_options.isJson = true;
  m_fake.problems = {"before"};
  m_fake.duringRun = [this] { m_fake.problems = {"before", "after"}; };
  Run({"#1"});
  EXPECT_THAT(m_out.str(), HasSubstr("\"problems\": [\n    \"before\",\n    \"after\"\n  ]"));
}

TEST_F(CommandsTest, RunSaysOnceThatItsTestsBeginBeforeTheFirst) {
  EXPECT_EQ(Run({"#1", "#1"}), 0);
  EXPECT_THAT(m_runsBeforeBegin, ElementsAre(0U));
}

TEST_F(CommandsTest, ListBeginsNoTests) {
  m_options.command = ECommand::kList;
  EXPECT_EQ(Do(), 0);
  EXPECT_THAT(m_runsBeforeBegin, IsEmpty());
}

TEST_F(CommandsTest, RunStartsNothingWhenOneIdIsUnknown) {
  EXPECT_THROW(Run({"#1", "no,such,test"}), TUsageError);
  EXPECT_THAT(m_fake.runs, IsEmpty());
  EXPECT_EQ(m_out.str(), "");
}

TEST_F(CommandsTest, RunOfNothingIsAnError) {
  m_options.selection.match = "floppy";
  EXPECT_EQ(Do(), 2);
  EXPECT_THAT(m_err.str(), HasSubstr("no test matches"));
  m_fake.list = "No matching diagnostic test or device found.\n";
  m_fake.unoffered = {{"Pattern", "Memory", "memtester is not installed", "install memtester"}};
  EXPECT_EQ(Do(), 2);
  EXPECT_THAT(m_err.str(), HasSubstr("no tests found on this machine"));
  EXPECT_THAT(m_err.str(), HasSubstr("install memtester"));
}

TEST_F(CommandsTest, RunPassesTheLabelOrTheServiceName) {
  Run({"#1"});
  m_options.label = "mine";
  Run({"#2"});
  m_options.label.reset();
  m_fake.list = "it's,a,b|";
  Run({"#1"});
  EXPECT_THAT(m_fake.runs,
              ElementsAre("Stress,cpu0,CPU|Stress", "Pattern,memory0,Memory|mine", "it's,a,b|"));
}

TEST_F(CommandsTest, AnInterruptedRunStartsNoFurtherTestAndIsAnError) {
  m_fake.duringRun = [this] { m_isInterrupted = true; };
  EXPECT_EQ(Run({"#1", "#2", "#3"}), 2);
  EXPECT_THAT(m_fake.runs, ElementsAre("Stress,cpu0,CPU|Stress"));
  EXPECT_THAT(m_out.str(), HasSubstr("3 tests: 1 passed, 0 failed, 0 could not run or finish, 2 "
                                     "not started (interrupted)"));
}

TEST_F(CommandsTest, AnInterruptedRunIsAnErrorEvenWhenItsLastTestPassed) {
  m_fake.duringRun = [this] { m_isInterrupted = true; };
  EXPECT_EQ(Run({"#1"}), 2);
}

TEST_F(CommandsTest, AnOutputThatCannotBeWrittenIsAnErrorAndStopsTheRun) {
  m_fake.duringRun = [this] { m_out.setstate(std::ios::badbit); };
  EXPECT_EQ(Run({"#1", "#2"}), 2);
  EXPECT_THAT(m_fake.runs, ElementsAre("Stress,cpu0,CPU|Stress"));
  EXPECT_THAT(m_err.str(), HasSubstr("standard output: cannot be written to"));
}

TEST_F(CommandsTest, InspectPrintsTheRunnersText) {
  m_options.command = ECommand::kInspect;
  m_options.className = "A";
  m_fake.texts["A"] = "A.K=\"1\"\nK : 1\x07\n";
  EXPECT_EQ(Do(), 0);
  EXPECT_EQ(m_out.str(), "A.K=\"1\"\nK : 1\\x07\n");
}

TEST_F(CommandsTest, InspectNamesAnUnknownClassAndKeepsWhatWasSaidBefore) {
  m_options.command = ECommand::kInspect;
  m_options.className = "B";
  m_fake.texts["B"] = "a provider failed\nClass Not Found\n";
  EXPECT_EQ(Do(), 2);
  EXPECT_EQ(m_out.str(), "a provider failed\n");
  EXPECT_EQ(m_err.str(), "diagsrun: B: no such class\n");
}

TEST_F(CommandsTest, InspectOfAClassWhoseProvidersHaveAllFailedIsAnError) {
  m_options.command = ECommand::kInspect;
  m_options.className = "A";
  m_fake.texts["A"] = "a provider failed\n";
  m_fake.duringInspect = [this] { m_fake.problems = {"a provider failed"}; };
  m_fake.instancesFailure = "a provider failed";
  EXPECT_EQ(Do(), 2);
  EXPECT_EQ(m_out.str(), "a provider failed\n");
  EXPECT_EQ(m_err.str(), "diagsrun: a provider failed\n");
}

TEST_F(CommandsTest, InspectThatLostAServersAnswerIsAnError) {
  m_options.command = ECommand::kInspect;
  m_options.className = "A";
  m_fake.texts["A"] = "the server is gone\n";
  m_fake.duringInspect = [this] { m_fake.serverFailure = "gone"; };
  m_fake.instancesFailure = "gone";
  EXPECT_EQ(Do(), 2);
}

TEST_F(CommandsTest, InspectOfAClassThatOneProviderStillAnswersForIsNone) {
  m_options.command = ECommand::kInspect;
  m_options.className = "A";
  m_fake.texts["A"] = "A.K=\"1\"\n";
  m_fake.instances["A"] = {};
  m_fake.duringInspect = [this] { m_fake.problems = {"a provider failed"}; };
  EXPECT_EQ(Do(), 0);
  // What is wrong from before has nothing to do with the class.
  m_fake.duringInspect = [] {};
  m_fake.instancesFailure = "must not be asked";
  EXPECT_EQ(Do(), 0);
}

TEST_F(CommandsTest, AReaderThatHasGoneEndsAListingQuietly) {
  m_isReaderGone = true;
  m_out.setstate(std::ios::badbit);
  m_options.className = "A";
  m_fake.texts["A"] = "A.K=\"1\"\n";
  m_fake.instances["A"] = {};
  for (const bool isJson : {false, true}) {
    m_options.isJson = isJson;
    for (const ECommand command : {ECommand::kList, ECommand::kInspect}) {
      m_options.command = command;
      EXPECT_EQ(Do(), 0);
    }
  }
  EXPECT_EQ(m_err.str(), "");
}

// The same commands, with the tests behind a CIM server.
class ServerCommandsTest : public CommandsTest {
 protected:
  ServerCommandsTest() {
    m_options.server.emplace();
    m_options.server->options.url = "https://node7";
  }
};

TEST_F(ServerCommandsTest, ListIsTheSameTable) {
  m_options.command = ECommand::kList;
  EXPECT_EQ(Do(), 0);
  const std::string remote = m_out.str();
  m_out.str("");
  m_options.server.reset();
  EXPECT_EQ(Do(), 0);
  EXPECT_EQ(m_out.str(), remote);
}

TEST_F(ServerCommandsTest, ListSaysWhereThereIsNothing) {
  m_options.command = ECommand::kList;
  m_fake.list = "";
  m_fake.unoffered = {{"Pattern", "Memory", "no memtester", ""}};
  EXPECT_EQ(Do(), 2);
  EXPECT_EQ(m_out.str(), "No tests found on https://node7.\n");
  EXPECT_EQ(m_err.str(),
            "diagsrun: not offered on https://node7: Pattern (Memory): no memtester\n");
}

TEST_F(ServerCommandsTest, RunSaysWhereThereIsNothing) {
  m_fake.list = "";
  m_options.selection.isAll = true;
  EXPECT_EQ(Do(), 2);
  EXPECT_EQ(m_err.str(), "diagsrun: run: no tests found on https://node7\n");
}

TEST_F(ServerCommandsTest, RunSaysWhereTheTestsRan) {
  EXPECT_EQ(Run({"#1"}), 0);
  EXPECT_THAT(m_out.str(), HasSubstr("\n1 test on https://node7: 1 passed, 0 failed"));
}

TEST_F(ServerCommandsTest, ALostServerIsTheReasonOfEachTestThatItKeptFromAVerdict) {
  m_fake.results["Read,sda,Disk"] = {"No matching diagnostic test or device found.\n",
                                     std::nullopt};
  m_fake.duringRun = [this] {
    m_fake.serverFailure = "https://node7: lost " + std::to_string(m_fake.runs.size());
  };
  EXPECT_EQ(Run({"#3", "#3"}), 2);
  EXPECT_THAT(m_out.str(),
              HasSubstr("      could not run or did not finish: https://node7: lost 1; "
                        "the test may still be going on at the server (0.2 s)\n"));
  EXPECT_THAT(m_out.str() + m_err.str(), Not(HasSubstr("No matching")));
  for (const char* reason : {"lost 1", "lost 2"}) {
    EXPECT_THAT(m_err.str(), HasSubstr("diagsrun: Read,sda,Disk: could not run or did not finish: "
                                       "https://node7: " +
                                       std::string(reason) +
                                       "; the test may still be going on at the server\n"));
  }
}

TEST_F(ServerCommandsTest, TheDocumentHasTheReasonBesideTheRunnersAnswer) {
  m_options.isJson = true;
  m_fake.results["Read,sda,Disk"] = {"No matching test.\n", std::nullopt};
  m_fake.duringRun = [this] { m_fake.serverFailure = "lost"; };
  EXPECT_EQ(Run({"#3"}), 2);
  EXPECT_THAT(m_out.str(), HasSubstr("\"answer\": \"No matching test.\",\n      "
                                     "\"reason\": \"lost\""));
}

TEST_F(ServerCommandsTest, AFailureFromBeforeATestIsNotItsReason) {
  m_fake.serverFailure = "long ago";
  EXPECT_EQ(Run({"#3"}), 2);
  EXPECT_THAT(m_err.str(), HasSubstr("could not run or did not finish: Aborted; --log"));
}

TEST_F(ServerCommandsTest, AVerdictOrARecordCountsMoreThanAFailureOfTheServer) {
  m_fake.results["Read,sda,Disk"] = {"Aborted", TRecordText{"p", "Aborted", "ended"}};
  m_fake.duringRun = [this] { m_fake.serverFailure = "lost and found"; };
  EXPECT_EQ(Run({"#1", "#2", "#3"}), 2);
  EXPECT_THAT(m_out.str() + m_err.str(), Not(HasSubstr("lost and found")));
}

TEST_F(ServerCommandsTest, ProblemsNameTheOptionsThatHelp) {
  m_fake.problems = {"https://node7: no time was left for the request"};
  EXPECT_EQ(Run({"#1"}), 0);
  EXPECT_EQ(
      m_err.str(),
      "diagsrun: https://node7: no time was left for the request (--total-timeout SECONDS)\n");
}

TEST_F(ServerCommandsTest, InspectSaysWhereTheClassIsMissing) {
  m_options.command = ECommand::kInspect;
  m_options.className = "B";
  EXPECT_EQ(Do(), 2);
  EXPECT_EQ(m_err.str(), "diagsrun: B: no such class on https://node7\n");
}

TEST_F(ServerCommandsTest, EveryDocumentNamesTheServer) {
  m_options.isJson = true;
  m_options.className = "B";
  m_options.selection.isAll = true;
  for (const ECommand command : {ECommand::kList, ECommand::kRun, ECommand::kInspect}) {
    m_out.str("");
    m_options.command = command;
    Do();
    EXPECT_THAT(m_out.str(), HasSubstr("\n  \"server\": \"https://node7\",\n"));
  }
}

TEST_F(CommandsTest, ADocumentAboutThisMachineNamesNoServer) {
  m_options.isJson = true;
  m_options.command = ECommand::kList;
  EXPECT_EQ(Do(), 0);
  EXPECT_THAT(m_out.str(), Not(HasSubstr("server")));
}

}  // namespace
}  // namespace host
