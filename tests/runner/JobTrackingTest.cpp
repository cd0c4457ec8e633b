// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "platform/contract/TQELException.h"
#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;
using ::testing::ElementsAre;

/// Tracks jobs directly. There is no class of completion records, so the result is always
/// "No Results.\n" and every pause is the tracking's own.
class JobTrackingTest : public TRunnerTest {
 protected:
  using TSteps = std::vector<TDiagsWorld::TStep>;

  DiagsRunner& Prepare(const std::string& testID) {
    m_testID = testID;
    DiagsRunner& runner = Start();
    TAccess::DiagNS(runner)[testID] = TCIMValue("cmpi");
    return runner;
  }
  std::string Track(DiagsRunner& runner, const TObjectPtr& job) {
    std::string result = "unchanged";
    TAccess::HandleConcrete(runner, job->GetPath().Bind(m_world.GetRoot()), result, m_testID,
                            m_host);
    return result;
  }
  /// Tracks a job of the given class through `steps`; its output and pauses.
  TLines TrackSteps(const std::string& testID, const TSteps& steps,
                    const std::string& className = "Test_Job") {
    m_job = m_world.AddJob("j", steps, className);
    EXPECT_EQ(Track(Prepare(testID), m_job), "No Results.\n");
    return Only({"out", "sleep"});
  }
  std::string GetIdentifier() { return TAccess::Finished(*fgDiagInstance).at(m_testID); }

  std::string m_testID;
  TObjectPtr m_job;
};

TEST_F(JobTrackingTest, PrintsEachGrowingPercentageAndPausesBetweenPolls) {
  EXPECT_THAT(
      TrackSteps("A,d,e", {{10, 4}, {60, 4}, {100, 7}}),
      ElementsAre("out \\nPercent Complete: 10%\\n", "sleep 5", "out \\nPercent Complete : 60%\\n",
                  "sleep 5", "out \\nPercent Complete : 100%\\n"));
  EXPECT_EQ(m_job->GetFetchCount(), 3U);
  EXPECT_EQ(GetIdentifier(), "j");
}

TEST_F(JobTrackingTest, TracesEachPoll) {
  TrackSteps("A,d,e", {{10, 4}, {60, 5}, {100, 7}});
  const TLines logs = Logs();
  ASSERT_GE(logs.size(), 3U);
  EXPECT_EQ(TLines(logs.begin(), logs.begin() + 4),
            (TLines{"DiagsRunner::HandleConcrete",
                    "JobState = 5\\x09percentComplete = 60\\x09ClassName = Test_Job\\n",
                    "JobState = 7\\x09percentComplete = 100\\x09ClassName = Test_Job\\n",
                    "Entering DiagsRunner::ImmediateResults, testID is: A,d,e"}));
  EXPECT_EQ(Count("log3"), logs.size());
}

TEST_F(JobTrackingTest, AJobThatIsDoneAtOncePrintsOneLineAndDoesNotPause) {
  EXPECT_THAT(TrackSteps("A,d,e", {{100, 4}}), ElementsAre("out \\nPercent Complete: 100%\\n"));
  EXPECT_EQ(m_job->GetFetchCount(), 1U);
}

TEST_F(JobTrackingTest, AJobWithoutAPercentageGoesStraightToItsResult) {
  EXPECT_THAT(TrackSteps("A,d,e", {{std::nullopt, 10}}), ElementsAre());
  EXPECT_EQ(m_job->GetFetchCount(), 1U);
  EXPECT_EQ(GetIdentifier(), "j");
}

TEST_F(JobTrackingTest, AJobThatIsCompletedIsNotPolledAgain) {
  EXPECT_THAT(TrackSteps("A,d,e", {{50, 7}}), ElementsAre("out \\nPercent Complete: 50%\\n"));
  EXPECT_EQ(m_job->GetFetchCount(), 1U);
}

TEST_F(JobTrackingTest, AJobThatCompletesBelowAHundredEndsOneCycleLater) {
  EXPECT_THAT(TrackSteps("A,d,e", {{50, 4}, {60, 7}, {70, 7}}),
              ElementsAre("out \\nPercent Complete: 50%\\n", "sleep 5",
                          "out \\nPercent Complete : 60%\\n"));
  EXPECT_EQ(m_job->GetFetchCount(), 2U);
}

TEST_F(JobTrackingTest, AnExceptionAtTheFirstLookPausesOnce) {
  EXPECT_THAT(TrackSteps("A,d,e", {{30, 10}}),
              ElementsAre("out \\nPercent Complete: 30%\\n", "sleep 5"));
  EXPECT_EQ(m_job->GetFetchCount(), 1U);
}

TEST_F(JobTrackingTest, AnExceptionOutranksAHundredAtTheFirstLook) {
  EXPECT_THAT(TrackSteps("A,d,e", {{100, 10}}),
              ElementsAre("out \\nPercent Complete: 100%\\n", "sleep 5"));
}

TEST_F(JobTrackingTest, AnExceptionWhilePollingEndsWithoutPauseOrLine) {
  EXPECT_THAT(TrackSteps("A,d,e", {{30, 4}, {90, 10}}),
              ElementsAre("out \\nPercent Complete: 30%\\n"));
  EXPECT_EQ(m_job->GetFetchCount(), 2U);
}

TEST_F(JobTrackingTest, PercentagesThatStayOrFallAreNotPrintedAgain) {
  EXPECT_THAT(TrackSteps("A,d,e", {{50, 4}, {50, 4}, {40, 4}, {45, 4}, {51, 4}, {100, 7}}),
              ElementsAre("out \\nPercent Complete: 50%\\n", "sleep 5", "sleep 5", "sleep 5",
                          "sleep 5", "out \\nPercent Complete : 51%\\n", "sleep 5",
                          "out \\nPercent Complete : 100%\\n"));
}

TEST_F(JobTrackingTest, AJobWithoutAStateIsPolledToAHundred) {
  EXPECT_THAT(TrackSteps("A,d,e", {{0, std::nullopt}, {100, std::nullopt}}),
              ElementsAre("out \\nPercent Complete: 0%\\n", "sleep 5",
                          "out \\nPercent Complete : 100%\\n"));
}

TEST_F(JobTrackingTest, TheVendorStateEndsOnlyJobsOfThatVendor) {
  EXPECT_THAT(TrackSteps("A,d,e", {{10, 4}, {20, 32768}}, "ELXUCNA_Job"),
              ElementsAre("out \\nPercent Complete: 10%\\n"));
  EXPECT_EQ(m_job->GetFetchCount(), 2U);
}

TEST_F(JobTrackingTest, TheVendorStateOfAnotherJobIsPolledOn) {
  EXPECT_THAT(
      TrackSteps("ELX,d,e", {{10, 4}, {20, 32768}, {100, 7}}, "elx_Job"),
      ElementsAre("out \\nPercent Complete: 10%\\n", "sleep 5", "out \\nPercent Complete : 20%\\n",
                  "sleep 5", "out \\nPercent Complete : 100%\\n"));
}

TEST_F(JobTrackingTest, ATestOfTheWaitingVendorThatIsStuckEndsAfterTenWaits) {
  const TLines lines = TrackSteps("BRCM Test,d,e", {{10, 4}});
  EXPECT_EQ(lines.front(), "out \\nPercent Complete: 10%\\n");
  EXPECT_EQ(lines.size(), 12U);
  EXPECT_EQ(Count("sleep 5"), 11U);
  EXPECT_EQ(Count("log3 JobState"), 2U);
  EXPECT_EQ(m_job->GetFetchCount(), 13U);
}

TEST_F(JobTrackingTest, TheTenWaitsAreSharedByAllCycles) {
  TrackSteps("x,d,BRCM", {{10, 2}, {10, 4}, {10, 3}, {10, 2}, {10, 2}, {10, 4}});
  EXPECT_EQ(Count("sleep 5"), 13U);
  EXPECT_EQ(Count("log3 JobState"), 4U);
  EXPECT_EQ(m_job->GetFetchCount(), 15U);
}

TEST_F(JobTrackingTest, WhatTheWaitsSawIsPrintedAfterThem) {
  EXPECT_THAT(TrackSteps("BRCM,d,e", {{10, 4}, {20, 4}, {30, 3}, {100, 7}}),
              ElementsAre("out \\nPercent Complete: 10%\\n", "sleep 5", "sleep 5", "sleep 5",
                          "out \\nPercent Complete : 100%\\n"));
}

TEST_F(JobTrackingTest, OtherTestsMakeNoExtraWaits) {
  EXPECT_THAT(TrackSteps("brcm,d,e", {{10, 4}, {10, 3}, {100, 7}}),
              ElementsAre("out \\nPercent Complete: 10%\\n", "sleep 5", "sleep 5",
                          "out \\nPercent Complete : 100%\\n"));
}

TEST_F(JobTrackingTest, AJobThatNeverEndsIsPolledForEver) {
  m_system.m_sleepBudget = 150;
  m_job = m_world.AddJob("j", {{10, 4}});
  DiagsRunner& runner = Prepare("A,d,e");
  EXPECT_THROW(Track(runner, m_job), TSleepBudgetSpent);
  EXPECT_EQ(Count("sleep 5"), 150U);
}

TEST_F(JobTrackingTest, AnUnknownTestIsNotTracked) {
  m_job = m_world.AddJob("j", {{10, 4}});
  DiagsRunner& runner = Start();
  m_testID = "unknown,d,e";
  EXPECT_EQ(Track(runner, m_job), "unchanged");
  EXPECT_THAT(TTranscript::Get().All(),
              ElementsAre("log3 DiagsRunner::HandleConcrete",
                          "log3 DiagsRunner::HandleConcrete testID is not found in m_diagNS"));
  EXPECT_TRUE(TAccess::Finished(runner).empty());
}

TEST_F(JobTrackingTest, AFailingFirstStateIsLoggedAndTheJobTracked) {
  const std::pair<EFault, const char*> rows[] = {
      {EFault::kQELException, "DiagsRunner::HandleConcrete, catch qel exception, get JobState"},
      {EFault::kStdException, "DiagsRunner::HandleConcrete, catch exception, get JobState"},
      {EFault::kInt, "DiagsRunner::HandleConcrete, catch exception, get JobState"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.second);
    End();
    m_faults.Clear();
    m_faults.When("property root/cimv2:Test_Job.InstanceID=\"j\" JobState", row.first, 1);
    EXPECT_THAT(TrackSteps("A,d,e", {{10, 10}, {100, 7}}),
                ElementsAre("out \\nPercent Complete: 10%\\n", "sleep 5",
                            "out \\nPercent Complete : 100%\\n"));
    EXPECT_EQ(Logs().at(1), row.second);
  }
}

TEST_F(JobTrackingTest, OtherFailuresReachTheCaller) {
  m_job = m_world.AddJob("j", {{10, 4}});
  DiagsRunner& runner = Prepare("A,d,e");
  m_faults.When("fetch root", EFault::kQELException, 1);
  EXPECT_THROW(Track(runner, m_job), NZEPQEL20::TQELException);
  m_faults.When("property root/cimv2:Test_Job.InstanceID=\"j\" PercentComplete",
                EFault::kStdException, 1);
  EXPECT_THROW(Track(runner, m_job), std::runtime_error);
  EXPECT_TRUE(TAccess::Finished(runner).empty());
}

TEST_F(JobTrackingTest, APegasusTestIsFetchedInItsOwnNamespace) {
  m_job = m_world.AddJob("j", {{50, 4}, {100, 7}});
  DiagsRunner& runner = Prepare("A,d,e");
  TAccess::DiagNS(runner)["A,d,e"] = TCIMValue("pegasus");
  TAccess::PegasusNS(runner)["A,d,e"] = TCIMValue("root/other");
  Track(runner, m_job);
  EXPECT_EQ(Count("fetch root root/cimv2:Test_Job.InstanceID=\"j\" {nsp=root/other,nspID=pegasus}"),
            2U);
}

TEST_F(JobTrackingTest, AMissingPegasusNamespaceIsEmptyAndIsRemembered) {
  m_job = m_world.AddJob("j", {{100, 7}});
  DiagsRunner& runner = Prepare("A,d,e");
  TAccess::DiagNS(runner)["A,d,e"] = TCIMValue("pegasus");
  Track(runner, m_job);
  EXPECT_EQ(Count("fetch root root/cimv2:Test_Job.InstanceID=\"j\" {nsp=,nspID=pegasus}"), 1U);
  ASSERT_EQ(TAccess::PegasusNS(runner).count("A,d,e"), 1U);
  EXPECT_TRUE(TAccess::PegasusNS(runner)["A,d,e"].IsNull());
}

TEST_F(JobTrackingTest, AnyOtherTestIsFetchedByItsContextAlone) {
  m_job = m_world.AddJob("j", {{100, 7}});
  DiagsRunner& runner = Prepare("A,d,e");
  Track(runner, m_job);
  EXPECT_EQ(Count("fetch root root/cimv2:Test_Job.InstanceID=\"j\" {nspID=cmpi}"), 1U);
  EXPECT_TRUE(TAccess::PegasusNS(runner).empty());
}

TEST_F(JobTrackingTest, TheIdentifierReplacesAnOlderOne) {
  m_job = m_world.AddJob("new", {{100, 7}});
  DiagsRunner& runner = Prepare("A,d,e");
  TAccess::Finished(runner)["A,d,e"] = "old";
  Track(runner, m_job);
  EXPECT_EQ(GetIdentifier(), "new");
}

}  // namespace
}  // namespace scripted
