// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TCMPIInstance.h"
#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;
using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

const char kNoMatch[] = "No matching diagnostic test or device found.\n";
const char kNoMatchWithBlank[] = " No matching diagnostic test or device found.\n";
const char kCardLine[] =
    "Please ignore the error message if you do not have one of the following cards installed: "
    "ZEP Dual-port 10Gb SFP+ or ZEP Dual-port 10Gb-T\\n";

class LaunchTest : public TRunnerTest {
 protected:
  static TScriptedMethod Answer(const NZEPQEL20::TKeyMap& outParameters) {
    TScriptedMethod method;
    method.outParameters = outParameters;
    return method;
  }
};

TEST_F(LaunchTest, RunsATestToItsWord) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  EXPECT_EQ(Run(runner, test.identifier), "Pass");
  EXPECT_EQ(Logs().front(), "Entering DiagsRunner::Execute with testID = " + test.identifier);
  EXPECT_THAT(Only({"invoke"}), ElementsAre("invoke root/cimv2:Test_Service.Id=\"1\" RunDiagnostic "
                                            "{ManagedElement=root/cimv2:Test_Device.Id=\"1\"}"));
  EXPECT_THAT(
      Only({"out", "sleep", "clear"}),
      ElementsAre("out \\nPercent Complete: 10%\\n", "sleep 5", "out \\nPercent Complete : 60%\\n",
                  "sleep 5", "out \\nPercent Complete : 100%\\n", "clear"));
  EXPECT_EQ(TTranscript::Get().All().back(), "clear");
  EXPECT_THAT(TAccess::Finished(runner),
              ElementsAre(std::make_pair(test.identifier, "job of " + test.identifier)));
}

TEST_F(LaunchTest, KeepsTheStateOfTheCall) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  TAccess::SetThreadDone(runner, true);
  Run(runner, test.identifier);
  EXPECT_FALSE(TAccess::IsThreadDone(runner));
  EXPECT_TRUE(boost::dynamic_pointer_cast<NZEPQEL20::TCMPIInstance>(TAccess::RunInstance(runner)));
  EXPECT_EQ(TAccess::RunArgs(runner).count("Job"), 1U);
  EXPECT_THAT(TAccess::Launched(runner), ElementsAre(std::make_pair(test.identifier, 0)));
}

TEST_F(LaunchTest, AnUnknownTestIsAnsweredAtOnceAndTheRegistryStays) {
  DiagsRunner& runner = StartAndEnumerate();
  EXPECT_EQ(Run(runner, "a,b,c"), kNoMatch);
  EXPECT_THAT(TTranscript::Get().All(),
              ElementsAre("log3 Entering DiagsRunner::Execute with testID = a,b,c",
                          "log3 DiagsRunner::Execute testID is not found in m_diagNS"));
}

TEST_F(LaunchTest, AnIdentifierThatCannotBeSplitMatchesNothing) {
  DiagsRunner& runner = StartAndEnumerate();
  TAccess::DiagNS(runner)["a,b"] = TCIMValue("cmpi");
  EXPECT_EQ(Run(runner, "a,b"), kNoMatchWithBlank);
  EXPECT_THAT(Only({"log0", "log3", "clear"}),
              ElementsAre("log3 Entering DiagsRunner::Execute with testID = a,b",
                          "log3 DiagsRunner::Execute looking for:a,b", "log3 returning no matching",
                          "clear"));
}

TEST_F(LaunchTest, ATestWithoutAnAssociationMatchesNothingAndIsForgottenAsFinished) {
  m_world.AddTest("A", "d", "e");
  DiagsRunner& runner = StartAndEnumerate();
  TAccess::DiagNS(runner)["B,d,e"] = TCIMValue("cmpi");
  TAccess::Finished(runner) = {{"B,d,e", "old"}, {"C,d,e", "other"}};
  EXPECT_EQ(Run(runner, "B,d,e"), kNoMatchWithBlank);
  EXPECT_THAT(Only({"log0", "log3", "clear"}),
              ElementsAre("log3 Entering DiagsRunner::Execute with testID = B,d,e",
                          "log3 DiagsRunner::Execute looking for:B,d,e",
                          "log3 erased test from map", "log3 returning no matching", "clear"));
  EXPECT_THAT(TAccess::Finished(runner), ElementsAre(std::make_pair("C,d,e", "other")));
  EXPECT_THAT(TAccess::Launched(runner), IsEmpty());
}

TEST_F(LaunchTest, ComparesNameAndDeviceWholeAndTakesTheFirstThatMatches) {
  m_world.AddTest("Quick", "cpu00", "e");
  m_world.AddTest("Quick2", "cpu0", "e");
  m_world.AddTest("quick", "cpu0", "e");
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  TTest twin = m_world.AddTest("Quick", "dev0", "another element");
  DiagsRunner& runner = StartAndEnumerate();
  EXPECT_EQ(Run(runner, test.identifier), "Pass");
  EXPECT_THAT(TAccess::Launched(runner), ElementsAre(std::make_pair(test.identifier, 3)));
  EXPECT_EQ(twin.service->GetFetchCount(), 1U);
}

TEST_F(LaunchTest, ASecondRunTrustsTheIndexAndComparesNoNames) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  Run(runner, test.identifier);
  test.service->Set("Name", "renamed");
  test.device->Set("DeviceID", "renamed");
  ClearTranscript();
  EXPECT_EQ(Run(runner, test.identifier), "Pass");
  EXPECT_EQ(Count("property root/cimv2:Test_Service.Id=\"1\" Name"), 0U);
  EXPECT_EQ(Count("property root/cimv2:Test_Device.Id=\"1\" DeviceID"), 0U);
}

TEST_F(LaunchTest, TheCachedIndexIsTheOneOfTheTest) {
  m_world.AddTest("Other", "d", "e");
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  Run(runner, test.identifier);
  ClearTranscript();
  EXPECT_EQ(Run(runner, test.identifier), "Pass");
  EXPECT_EQ(Count("invoke root/cimv2:Test_Service.Id=\"2\" RunDiagnostic "
                  "{ManagedElement=root/cimv2:Test_Device.Id=\"2\"}"),
            1U);
  EXPECT_EQ(Count("fetch root root/cimv2:Test_Service.Id=\"1\""), 0U);
}

TEST_F(LaunchTest, ATestThatIsNotCachedIsSearchedEvenWhenOthersAre) {
  const TTest first = m_world.AddRunningTest("Quick", "OK");
  const TTest second = m_world.AddRunningTest("Slow", "Failed");
  DiagsRunner& runner = StartAndEnumerate();
  EXPECT_EQ(Run(runner, first.identifier), "Pass");
  EXPECT_EQ(Run(runner, second.identifier), "Fail");
  EXPECT_THAT(TAccess::Launched(runner), ElementsAre(std::make_pair(first.identifier, 0),
                                                     std::make_pair(second.identifier, 1)));
}

TEST_F(LaunchTest, FetchesWithTheContextOfTheCatalogue) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  TAccess::DiagNS(runner)[test.identifier] = TCIMValue("other");
  Run(runner, test.identifier);
  EXPECT_THAT(TTranscript::Get().All(),
              Contains("fetch root root/cimv2:Test_Service.Id=\"1\" {nspID=other}"));
  EXPECT_THAT(TTranscript::Get().All(),
              Contains("fetch root root/cimv2:Test_Device.Id=\"1\" {nspID=other}"));
}

class FetchFaultTest : public LaunchTest, public ::testing::WithParamInterface<EFault> {};

TEST_P(FetchFaultTest, IsMadeGoodThroughTheUpcallsAndThePluginContextStays) {
  m_world.AddTest("First", "d", "e");
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  m_faults.When("fetch root root/cimv2:Test_Service.Id=\"1\"", GetParam());
  EXPECT_EQ(Run(runner, test.identifier), "Pass");
  EXPECT_GE(Count("upcall plugin"), 1U);
  EXPECT_EQ(Count("fetch upcall root/cimv2:Test_Service.Id=\"1\""), 1U);
  EXPECT_EQ(Count("fetch upcall root/cimv2:Test_Device.Id=\"1\""), 1U);
  EXPECT_THAT(TTranscript::Get().All(),
              Contains("fetch root root/cimv2:Test_Service.Id=\"2\" {nspID=plugin}"));
  EXPECT_THAT(TTranscript::Get().All(),
              Not(Contains("fetch root root/cimv2:Test_Service.Id=\"2\" {nspID=cmpi}")));
}

TEST_P(FetchFaultTest, IsMadeGoodOnTheCachedRoadToo) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  Run(runner, test.identifier);
  ClearTranscript();
  m_faults.When("fetch root root/cimv2:Test_Device.Id=\"1\"", GetParam());
  EXPECT_EQ(Run(runner, test.identifier), "Pass");
  EXPECT_EQ(Count("fetch upcall root/cimv2:Test_Service.Id=\"1\""), 1U);
}

TEST_P(FetchFaultTest, EndsTheRunWhenTheUpcallsFailToo) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  TAccess::Finished(runner)[test.identifier] = "old";
  m_faults.When("fetch root root/cimv2:Test_Service", EFault::kQELException);
  m_faults.When("fetch upcall", GetParam());
  EXPECT_EQ(Run(runner, test.identifier), kNoMatch);
  const bool isQEL = GetParam() == EFault::kQELException;
  EXPECT_THAT(Only({"log0", "log3", "clear"}),
              ElementsAre("log3 Entering DiagsRunner::Execute with testID = " + test.identifier,
                          "log3 DiagsRunner::Execute looking for:" + test.identifier,
                          std::string("log3 DiagsRunner::Execute erased test from ") +
                              (isQEL ? "map" : "finished map"),
                          "log3 DiagsRunner::Execute returning no matching"));
  EXPECT_THAT(TAccess::Finished(runner), IsEmpty());
}

TEST_P(FetchFaultTest, OfTheMethodCallItselfEndsTheRun) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  TAccess::Finished(runner)[test.identifier] = "old";
  m_faults.When("invoke", GetParam());
  EXPECT_EQ(Run(runner, test.identifier), kNoMatch);
  EXPECT_THAT(Logs(), Contains(GetParam() == EFault::kQELException
                                   ? "DiagsRunner::Execute erased test from map"
                                   : "DiagsRunner::Execute erased test from finished map"));
  EXPECT_EQ(Count("clear"), 0U);
  EXPECT_EQ(Count("invoke"), 1U);
}

INSTANTIATE_TEST_SUITE_P(Exceptions, FetchFaultTest,
                         ::testing::Values(EFault::kQELException, EFault::kStdException,
                                           EFault::kInt));

TEST_F(LaunchTest, FallsBackToRunDiagnosticServiceWhenNoJobComesBack) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  const TScriptedMethod run = *test.service->FindMethod("RunDiagnostic");
  test.service->SetMethod("RunDiagnostic", {}).SetMethod("RunDiagnosticService", run);
  DiagsRunner& runner = StartAndEnumerate();
  EXPECT_EQ(Run(runner, test.identifier), "Pass");
  EXPECT_THAT(Only({"invoke"}),
              ElementsAre("invoke root/cimv2:Test_Service.Id=\"1\" RunDiagnostic "
                          "{ManagedElement=root/cimv2:Test_Device.Id=\"1\"}",
                          "invoke root/cimv2:Test_Service.Id=\"1\" RunDiagnosticService "
                          "{ManagedElement=root/cimv2:Test_Device.Id=\"1\"}"));
  EXPECT_THAT(Logs(), Contains("DiagsRunner::Execute - No Concrete Job Found for RunDiagnostic, "
                               "attempting RunDiagnosticService"));
  EXPECT_EQ(Count("clear"), 1U);
}

TEST_F(LaunchTest, AnswersNoStatusWhenNeitherMethodGivesAJob) {
  const TTest test = m_world.AddTest("Quick", "cpu0", "P");
  test.service->SetMethod("RunDiagnostic", {}).SetMethod("RunDiagnosticService", {});
  DiagsRunner& runner = StartAndEnumerate();
  EXPECT_EQ(Run(runner, test.identifier), "No Status\n");
  EXPECT_EQ(Count("clear"), 1U);
  EXPECT_THAT(TAccess::Finished(runner), IsEmpty());
  EXPECT_THAT(TAccess::RunArgs(runner), IsEmpty());
}

TEST_F(LaunchTest, AnswersNothingWhenTheFallbackThrowsAStandardException) {
  for (const EFault fault : {EFault::kQELException, EFault::kStdException}) {
    SCOPED_TRACE(fault);
    m_faults.Clear();
    End();
    const TTest test = m_world.AddTest("Quick", "cpu0", "P");
    test.service->SetMethod("RunDiagnostic", {}).SetMethod("RunDiagnosticService", {});
    DiagsRunner& runner = StartAndEnumerate();
    m_faults.When("invoke root/cimv2:Test_Service.Id=\"1\" RunDiagnosticService", fault);
    EXPECT_EQ(Run(runner, test.identifier), "");
    EXPECT_EQ(Logs().back(), "DiagsRunner::Execute - exception from RunDiagnosticService detected");
    EXPECT_EQ(Count("clear"), 1U);
  }
}

TEST_F(LaunchTest, LeavesAnUnknownExceptionOfTheFallbackToTheOuterHandler) {
  const TTest test = m_world.AddTest("Quick", "cpu0", "P");
  test.service->SetMethod("RunDiagnostic", {}).SetMethod("RunDiagnosticService", {});
  DiagsRunner& runner = StartAndEnumerate();
  TAccess::Finished(runner)[test.identifier] = "old";
  m_faults.When("invoke root/cimv2:Test_Service.Id=\"1\" RunDiagnosticService", EFault::kInt);
  EXPECT_EQ(Run(runner, test.identifier), kNoMatch);
  EXPECT_THAT(Logs(), Contains("DiagsRunner::Execute erased test from finished map"));
  EXPECT_THAT(Logs(), Not(Contains("DiagsRunner::Execute - exception from RunDiagnosticService "
                                   "detected")));
  EXPECT_EQ(Count("clear"), 0U);
}

TEST_F(LaunchTest, TakesTheOutParameterWithTheSmallestNameForTheJob) {
  const TTest test = m_world.AddTest("Quick", "cpu0", "P");
  const TObjectPtr job = m_world.AddJob("j", {{100, 7}});
  const TObjectPtr other = m_world.AddJob("other", {{100, 7}});
  test.service->SetMethod("RunDiagnostic", Answer({{"Job", TCIMValue(other->GetPath())},
                                                   {"A", TCIMValue(job->GetPath())},
                                                   {"a", TCIMValue(other->GetPath())}}));
  DiagsRunner& runner = StartAndEnumerate();
  EXPECT_EQ(Run(runner, test.identifier), "No Results.\n");
  EXPECT_EQ(job->GetFetchCount(), 1U);
  EXPECT_EQ(other->GetFetchCount(), 0U);
}

TEST_F(LaunchTest, AFirstOutParameterThatIsNoReferenceEndsTheRun) {
  const TTest test = m_world.AddTest("Quick", "cpu0", "P");
  test.service->SetMethod("RunDiagnostic", Answer({{"Job", TCIMValue::UInt32(7)}}));
  DiagsRunner& runner = StartAndEnumerate();
  TAccess::Finished(runner)[test.identifier] = "old";
  EXPECT_EQ(Run(runner, test.identifier), kNoMatch);
  EXPECT_THAT(TAccess::Finished(runner), IsEmpty());
  EXPECT_EQ(Count("clear"), 0U);
}

TEST_F(LaunchTest, AnExceptionFromTheResultForgetsTheFinishedTest) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  m_faults.When("copy", EFault::kStdException);
  EXPECT_EQ(Run(runner, test.identifier), kNoMatch);
  EXPECT_THAT(Logs(), Contains("DiagsRunner::Execute erased test from finished map"));
  EXPECT_THAT(TAccess::Finished(runner), IsEmpty());
  EXPECT_EQ(Count("clear"), 0U);
}

TEST_F(LaunchTest, APlatformExceptionFromTheResultMeansNoResults) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  m_faults.When("copy", EFault::kQELException);
  EXPECT_EQ(Run(runner, test.identifier), "No Results.\n");
  EXPECT_EQ(TAccess::Finished(runner).count(test.identifier), 1U);
  EXPECT_EQ(Count("clear"), 1U);
}

TEST_F(LaunchTest, AServiceThatIsNoCMPIInstanceIsNotRun) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  test.service->MakePlain();
  DiagsRunner& runner = StartAndEnumerate();
  EXPECT_THAT(Run(runner, test.identifier), AnyOf("No Status\n", kNoMatch));
  EXPECT_FALSE(TAccess::RunInstance(runner));
  EXPECT_EQ(Count("invoke"), 0U);
}

TEST_F(LaunchTest, ATapeTestLeavesItsLabelInTheScratchFile) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  EXPECT_EQ(Run(runner, test.identifier, "My Tape RW Test 1"), "Pass");
  EXPECT_THAT(Only({"system", "invoke"}),
              ElementsAre("system rm -fr tapeRWTest.tmp",
                          "system echo 'My Tape RW Test 1'>tapeRWTest.tmp", ::testing::_));
}

TEST_F(LaunchTest, ALabelWithAQuoteIsWrittenAsItIsAndTheTestRuns) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  EXPECT_EQ(Run(runner, test.identifier, "Tape RW Test 'x"), "Pass");
  EXPECT_EQ(Count("system echo 'Tape RW Test 'x'>tapeRWTest.tmp"), 1U);
}

TEST_F(LaunchTest, AnyOtherLabelReachesNoShell) {
  const TTest test = m_world.AddRunningTest("Quick Tape RW Test", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  EXPECT_EQ(Run(runner, test.identifier, "tape rw test"), "Pass");
  EXPECT_EQ(Count("system"), 0U);
}

TEST_F(LaunchTest, WarnsOfMissingCardsOnTheOneMachineOnly) {
  const char* const identifier = "ELXUCNA: NIC PHY LoopBackTest,eth0,Port";
  for (const char* const biosID : {"KO", "ko", "ko2", "xko", ""}) {
    SCOPED_TRACE(biosID);
    End();
    m_system.m_biosID = biosID;
    DiagsRunner& runner = Start();
    EXPECT_EQ(Run(runner, identifier), kNoMatch);
    const bool isWarned = std::string(biosID) == "KO" || std::string(biosID) == "ko";
    EXPECT_EQ(Output(), isWarned ? kCardLine : "");
  }
}

TEST_F(LaunchTest, WarnsOfMissingCardsForThatTestOnly) {
  m_system.m_biosID = "ko";
  DiagsRunner& runner = Start();
  Run(runner, "NIC PHY LoopBackTest,eth0,Port");
  EXPECT_EQ(Output(), "");
}

}  // namespace
}  // namespace scripted
