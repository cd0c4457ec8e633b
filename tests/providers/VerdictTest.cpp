// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "providers/hardware/TMemoryErrors.h"
#include "providers/hardware/TMemoryPattern.h"
#include "providers/hardware/TNetworkDriverTest.h"
#include "providers/hardware/TNetworkLinkCheck.h"
#include "providers/hardware/TProcessorStress.h"
#include "tests/providers/TFakeMachine.h"

namespace hardware {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::HasSubstr;

/// A program's end and what the test makes of it.
struct TRow {
  const char* name;
  int status;
  std::string output;
  std::string errors;
  ECompletion state;
  const char* summary;
};
void PrintTo(const TRow& row, std::ostream* out) {
  *out << row.name;
}

TProcessOutcome MakeOutcome(const TRow& row, milliseconds duration) {
  TProcessOutcome outcome;
  outcome.end = EProcessEnd::kExited;
  outcome.exitStatus = row.status;
  outcome.output = row.output;
  outcome.errors = row.errors;
  outcome.duration = duration;
  outcome.arguments = {"/usr/bin/tool", "--option"};
  return outcome;
}

std::string GetName(const ::testing::TestParamInfo<TRow>& row) {
  return row.param.name;
}

// What the end of a program says whatever it printed.

struct TEndRow {
  EProcessEnd end;
  ECompletion state;
  bool isBroken;
};
class EndingTest : public ::testing::TestWithParam<TEndRow> {};

TEST_P(EndingTest, OutranksTheProgramsWords) {
  TProcessOutcome outcome = MakeOutcome({"", 0, "",
                                         "stress-ng: metrc: [1] cpu 2601 2.00 2.00 0.00 1.0 1.0\n"
                                         "stress-ng: info: [1] successful run completed in 2.00s\n",
                                         ECompletion::kOk, ""},
                                        seconds(2));
  outcome.end = GetParam().end;
  outcome.signal = 15;
  const TVerdict verdict = TProcessorStress::Judge(outcome, seconds(2));
  EXPECT_EQ(verdict.state, GetParam().state);
  EXPECT_EQ(verdict.isBroken, GetParam().isBroken);
}
INSTANTIATE_TEST_SUITE_P(
    All, EndingTest,
    ::testing::Values(TEndRow{EProcessEnd::kExited, ECompletion::kOk, false},
                      TEndRow{EProcessEnd::kSignalled, ECompletion::kIncomplete, true},
                      TEndRow{EProcessEnd::kNotStarted, ECompletion::kIncomplete, true},
                      TEndRow{EProcessEnd::kLost, ECompletion::kIncomplete, true},
                      TEndRow{EProcessEnd::kDeadline, ECompletion::kAborted, false},
                      TEndRow{EProcessEnd::kKilled, ECompletion::kAborted, false},
                      TEndRow{EProcessEnd::kTerminated, ECompletion::kStopped, false}));

TEST(LostEndingTest, NamesTheReasonForWhichTheStatusIsLost) {
  TProcessOutcome outcome;
  outcome.end = EProcessEnd::kLost;
  EXPECT_THAT(JudgeEnding(outcome)->summary, HasSubstr("lost to another part of this process"));
  outcome.isIgnored = true;
  EXPECT_THAT(JudgeEnding(outcome)->summary, HasSubstr("this process ignores SIGCHLD"));
  TVerdict verdict;
  DescribeRun(outcome, verdict);
  EXPECT_EQ(verdict.exit, "unknown: this process ignores SIGCHLD");
}

// stress-ng

const char* const kStressEnd =
    "stress-ng: metrc: [1] stressor bogo ops real time usr time sys time\n"
    "stress-ng: metrc: [1] cpu 2601 2.00 2.00 0.00 1297.38 1297.51\n"
    "stress-ng: info:  [1] successful run completed in 2.01s\n";

class StressVerdictTest : public ::testing::TestWithParam<TRow> {};

TEST_P(StressVerdictTest, WeighsStatusAndWords) {
  const TVerdict verdict =
      TProcessorStress::Judge(MakeOutcome(GetParam(), milliseconds(2010)), seconds(2));
  EXPECT_EQ(verdict.state, GetParam().state) << verdict.summary;
  EXPECT_THAT(verdict.summary, HasSubstr(GetParam().summary));
}
INSTANTIATE_TEST_SUITE_P(
    All, StressVerdictTest,
    ::testing::Values(
        TRow{"Pass", 0, "", kStressEnd, ECompletion::kOk, "right results"},
        TRow{"PassOnStandardOutput", 0, kStressEnd, "", ECompletion::kOk, "right results"},
        TRow{"CutShort", 0, "",
             "stress-ng: metrc: [1] cpu 101 1.20 1.20 0.00 1.0 1.0\n"
             "stress-ng: info: [1] successful run completed in 1.20s\n",
             ECompletion::kIncomplete, "cut short"},
        TRow{"Skipped", 0, "",
             "stress-ng: warn: [1] smi stressor will be skipped, need to be running with "
             "CAP_SYS_ADMIN rights\nstress-ng: info: [1] successful run completed in 2.00s\n",
             ECompletion::kIncomplete, "skipped"},
        TRow{"NoWorkers", 0, "",
             std::string(kStressEnd) +
                 "stress-ng: error: [1] No stress workers invoked (one or more were unsupported)\n",
             ECompletion::kIncomplete, "skipped"},
        TRow{"NothingPrinted", 0, "", "", ECompletion::kIncomplete, "does not say"},
        TRow{"NoCounters", 0, "", "stress-ng: info: [1] successful run completed in 2.00s\n",
             ECompletion::kIncomplete, "no counters"},
        TRow{"NoOperations", 0, "",
             "stress-ng: metrc: [1] cpu 0 2.00 2.00 0.00 0.0 0.0\n"
             "stress-ng: info: [1] successful run completed in 2.00s\n",
             ECompletion::kIncomplete, "nothing was computed"},
        TRow{"WrongResultWithStatus0", 0, "stress-ng: fail:  [1] cpu: float64 calculation error\n",
             kStressEnd, ECompletion::kFailed, "float64 calculation error"},
        TRow{"WrongResultWithStatus2", 2, "",
             "stress-ng: fail:  [1] cpu: prime error detected\n"
             "stress-ng: info: [1] unsuccessful run completed in 2.00s\n",
             ECompletion::kFailed, "prime error detected"},
        TRow{"WorkerKilled", 2, "",
             "stress-ng: fail:  [1] cpu instance 0 corrupted bogo-ops counter, 1241 vs 0\n"
             "stress-ng: fail:  [1] cpu instance 0 hash error in bogo-ops counter and run flag, "
             "2717503151 vs 0\n"
             "stress-ng: fail:  [1] metrics-check: stressor metrics corrupted, data is "
             "compromised\nstress-ng: info:  [1] unsuccessful run completed in 0.99s\n",
             ECompletion::kIncomplete, "corrupted bogo-ops counter"},
        TRow{"UnsuccessfulWithStatus0", 0, "",
             "stress-ng: metrc: [1] cpu 2601 2.00 2.00 0.00 1.0 1.0\n"
             "stress-ng: info: [1] unsuccessful run completed in 2.00s\n",
             ECompletion::kIncomplete, "does not say"},
        TRow{"Usage", 1, "", "stress-ng: unrecognized option\n", ECompletion::kIncomplete,
             "called wrongly"},
        TRow{"FailedWithoutWords", 2, "", "", ECompletion::kIncomplete, "no wrong result"},
        TRow{"NoResources", 3, "", kStressEnd, ECompletion::kIncomplete, "lacked resources"},
        TRow{"NotImplemented", 4, "", "", ECompletion::kIncomplete, "does not support"},
        TRow{"Signalled", 5, "", "", ECompletion::kIncomplete, "ended by a signal"},
        TRow{"Unexpected", 6, "", "", ECompletion::kIncomplete, "ended unexpectedly"},
        TRow{"Untrustworthy", 7, "", kStressEnd, ECompletion::kIncomplete, "cannot be trusted"},
        TRow{"UnknownStatus", 99, "", kStressEnd, ECompletion::kIncomplete, "no known meaning"}),
    GetName);

TEST(StressVerdictTimeTest, ARunThatClaimsMoreTimeThanPassedIsNone) {
  const TRow row{"", 0, "", kStressEnd, ECompletion::kIncomplete, ""};
  const TVerdict verdict = TProcessorStress::Judge(MakeOutcome(row, milliseconds(300)), seconds(2));
  EXPECT_EQ(verdict.state, ECompletion::kIncomplete);
  EXPECT_THAT(verdict.summary, HasSubstr("cut short"));
}

TEST(StressVerdictTimeTest, TheRecordTellsCommandAndCoverage) {
  const TRow row{"", 0, "", kStressEnd, ECompletion::kOk, ""};
  const TVerdict verdict = TProcessorStress::Judge(MakeOutcome(row, seconds(2)), seconds(2));
  EXPECT_EQ(verdict.command, "/usr/bin/tool --option");
  EXPECT_EQ(verdict.exit, "exit status 0");
  EXPECT_EQ(verdict.covered, "2601 rounds of verified operations in 2 of 2 seconds");
  EXPECT_THAT(verdict.excerpt, HasSubstr("successful run"));
}

// memtester

std::string MemoryOutput(const char* got, const char* end) {
  return std::string("memtester version 4.6.0 (64-bit)\nwant 16MB (16777216 bytes)\ngot  ") + got +
         "Loop 1/1:\n  Stuck Address       : ok\n" + end;
}
const char* const kGot = "16MB (16777216 bytes), trying mlock ...locked.\n";
const char* const kDone = "  16-bit Writes       : ok\n\nDone.\n";

class MemoryVerdictTest : public ::testing::TestWithParam<TRow> {};

TEST_P(MemoryVerdictTest, WeighsStatusAndWords) {
  const TVerdict verdict = TMemoryPattern::Judge(MakeOutcome(GetParam(), seconds(6)), 1);
  EXPECT_EQ(verdict.state, GetParam().state) << verdict.summary;
  EXPECT_THAT(verdict.summary, HasSubstr(GetParam().summary));
}
INSTANTIATE_TEST_SUITE_P(
    All, MemoryVerdictTest,
    ::testing::Values(
        TRow{"Pass", 0, MemoryOutput(kGot, kDone), "", ECompletion::kOk, "read back"},
        TRow{"ReducedSize", 0,
             MemoryOutput("16MB (16777216 bytes), trying mlock ...over system/pre-process limit, "
                          "reducing...\ngot  8MB (8388608 bytes), trying mlock ...locked.\n",
                          kDone),
             "", ECompletion::kWarning, "less memory"},
        TRow{"Unlocked", 0,
             MemoryOutput("16MB (16777216 bytes), trying mlock ...insufficient permission.\n"
                          "Trying again, unlocked:\ngot  16MB (16777216 bytes), "
                          "Continuing with unlocked memory; testing will be slower and less "
                          "reliable.\n",
                          kDone),
             "", ECompletion::kWarning, "could not be locked"},
        TRow{"NotDone", 0, MemoryOutput(kGot, ""), "", ECompletion::kIncomplete, "before"},
        TRow{"NothingPrinted", 0, "", "", ECompletion::kIncomplete, "before"},
        TRow{"FailureWithStatus4", 4, MemoryOutput(kGot, kDone),
             "FAILURE: 0x01 != 0x00 at offset 0x10.\nFAILURE: 0x02 != 0x00 at offset 0x18.\n",
             ECompletion::kFailed, "at least 2 places; FAILURE: 0x01 != 0x00 at offset 0x10."},
        TRow{"FailureWithStatus0", 0, MemoryOutput(kGot, kDone),
             "FAILURE: 0x01 != 0x00 at offset 0x10.\n", ECompletion::kFailed, "at least 1"},
        TRow{"StuckAddress", 2, MemoryOutput(kGot, ""),
             "FAILURE: possible bad address line at offset 0x40.\n", ECompletion::kFailed,
             "bad address line"},
        TRow{"FailureAndUsage", 5, MemoryOutput(kGot, ""),
             "FAILURE: 0x01 != 0x00 at offset 0x10.\n", ECompletion::kFailed, "at least 1"},
        TRow{"StatusWithoutWords", 4, MemoryOutput(kGot, kDone), "", ECompletion::kIncomplete,
             "without naming"},
        TRow{"NoMemory", 1, "want 16MB (16777216 bytes)\n", "malloc failed\n",
             ECompletion::kIncomplete, "could not get or lock"}),
    GetName);

TEST(MemoryVerdictSizeTest, TheTestedSizeIsTheLastOneGot) {
  const TRow row{"",
                 0,
                 MemoryOutput("16MB (16777216 bytes), x\ngot  8MB (8388608 bytes), "
                              "trying mlock ...locked.\n",
                              kDone),
                 "",
                 ECompletion::kWarning,
                 ""};
  const TVerdict verdict = TMemoryPattern::Judge(MakeOutcome(row, seconds(6)), 1);
  EXPECT_EQ(verdict.covered, "8192 KiB in 1 pass");
  EXPECT_EQ(verdict.tool, "memtester version 4.6.0 (64-bit)");
}

TEST(MemoryVerdictSizeTest, OfARunThatWasEndedTheShareIsTold) {
  TProcessOutcome outcome;
  outcome.end = EProcessEnd::kKilled;
  outcome.output = MemoryOutput(kGot, "\n  Stuck Address       : ok\n  Random Value        : ");
  const TVerdict verdict = TMemoryPattern::Judge(outcome, 1);
  EXPECT_EQ(verdict.state, ECompletion::kAborted);
  EXPECT_EQ(verdict.covered, "16 MiB in 3 % of 1 pass");
}

TEST(MemoryVerdictSizeTest, TheLastOfSeveralPassesHasToBeDone) {
  const TRow row{"", 0, MemoryOutput(kGot, kDone), "", ECompletion::kIncomplete, ""};
  EXPECT_EQ(TMemoryPattern::Judge(MakeOutcome(row, seconds(6)), 2).state, ECompletion::kIncomplete);
}

TEST(MemoryProgressTest, FollowsPassesStagesAndCounters) {
  const std::string head = "want 16MB (16777216 bytes)\n";
  const std::string early = head + "Loop 1/1:\n  Stuck Address       : ok\n  Random Value : ok\n";
  EXPECT_EQ(TMemoryPattern::EstimatePercent(head, 1), 0U);
  EXPECT_EQ(TMemoryPattern::EstimatePercent(early, 1), 5U);
  std::string middle = early;
  for (const char* const stage : {"Compare XOR", "Compare SUB", "Compare MUL", "Compare DIV",
                                  "Compare OR", "Compare AND", "Sequential Increment"}) {
    middle += std::string("  ") + stage + ": ok\n";
  }
  middle += "  Solid Bits          : ok\n  Block Sequential    :      \b\b\b\btesting 128";
  EXPECT_EQ(TMemoryPattern::EstimatePercent(middle, 1), 20U);
  EXPECT_EQ(TMemoryPattern::EstimatePercent(head + "Loop 2/2:\n", 2), 50U);
  EXPECT_LE(TMemoryPattern::EstimatePercent(head + "Loop 99/2:\n", 2), 100U);
  EXPECT_EQ(TMemoryPattern::EstimatePercent("Loop x", 1), 0U);
}

// ethtool

const char* const kPassed =
    "The test result is PASS\nThe test extra info:\nRegister test  (offline)\t 0\n"
    "Link test   (on/offline)\t 0\n";
const char* const kLinkFailed =
    "The test result is FAIL\nThe test extra info:\nRegister test  (offline)\t 0\n"
    "Link test   (on/offline)\t 1\n";

class DriverVerdictTest : public ::testing::TestWithParam<TRow> {};

TEST_P(DriverVerdictTest, WeighsStatusAndWords) {
  const TVerdict verdict = TNetworkDriverTest::Judge(MakeOutcome(GetParam(), seconds(3)), true);
  EXPECT_EQ(verdict.state, GetParam().state) << verdict.summary;
  EXPECT_THAT(verdict.summary, HasSubstr(GetParam().summary));
}
INSTANTIATE_TEST_SUITE_P(
    All, DriverVerdictTest,
    ::testing::Values(
        TRow{"Pass", 0, kPassed, "", ECompletion::kOk, "passed"},
        TRow{"Fail", 2, kLinkFailed, "", ECompletion::kFailed, "Link test"},
        TRow{"FailWithStatus0", 0, kLinkFailed, "", ECompletion::kFailed, "Link test"},
        TRow{"PassWithStatus2", 2, kPassed, "", ECompletion::kIncomplete, "say otherwise"},
        TRow{"PassWithFailedPart", 0,
             "The test result is PASS\nThe test extra info:\nLink test\t 1\n", "",
             ECompletion::kIncomplete, "say otherwise"},
        TRow{"NotSupported", 74, "", "Cannot test: Operation not supported\n",
             ECompletion::kIncomplete, "skipped"},
        TRow{"NoDevice", 74, "", "Cannot get strings: No such device\n", ECompletion::kIncomplete,
             "no test result"},
        TRow{"NoDriverInformation", 71, "", "Cannot get driver information: No such device\n",
             ECompletion::kIncomplete, "no test result"},
        TRow{"NothingPrinted", 0, "", "", ECompletion::kIncomplete, "no test result"}),
    GetName);

TEST(DriverVerdictLinkTest, AFailureForWantOfALinkIsAWarning) {
  const TRow row{"", 2, kLinkFailed, "", ECompletion::kWarning, ""};
  EXPECT_EQ(TNetworkDriverTest::Judge(MakeOutcome(row, seconds(3)), false).state,
            ECompletion::kWarning);
  const TRow other{
      "",
      2,
      "The test result is FAIL\nThe test extra info:\nEeprom test\t 1\nLink test\t 1\n",
      "",
      ECompletion::kFailed,
      ""};
  EXPECT_EQ(TNetworkDriverTest::Judge(MakeOutcome(other, seconds(3)), false).state,
            ECompletion::kFailed);
}

// Link check

TNetworkLinkCheck::TPortState MakeGoodPort() {
  TNetworkLinkCheck::TPortState state;
  state.hasCounters = state.isUp = state.hasCarrier = true;
  state.operState = "up";
  state.carrierChanges = 2;
  state.errors = {{"rx_errors", 7}, {"tx_errors", 0}};
  return state;
}

TEST(LinkVerdictTest, OldErrorsDoNotCount) {
  EXPECT_EQ(TNetworkLinkCheck::Judge(MakeGoodPort(), MakeGoodPort()).state, ECompletion::kOk);
}

TEST(LinkVerdictTest, NewErrorsAreAWarningThatNamesThem) {
  TNetworkLinkCheck::TPortState after = MakeGoodPort();
  after.errors["rx_errors"] = 9;
  const TVerdict verdict = TNetworkLinkCheck::Judge(MakeGoodPort(), after);
  EXPECT_EQ(verdict.state, ECompletion::kWarning);
  EXPECT_THAT(verdict.summary, HasSubstr("rx_errors +2"));
}

TEST(LinkVerdictTest, ALinkThatIsMissingOrUnsteadyIsAFailure) {
  TNetworkLinkCheck::TPortState after = MakeGoodPort();
  after.hasCarrier = false;
  EXPECT_EQ(TNetworkLinkCheck::Judge(after, after).state, ECompletion::kFailed);
  EXPECT_EQ(TNetworkLinkCheck::Judge(after, MakeGoodPort()).state, ECompletion::kFailed);
  after = MakeGoodPort();
  after.carrierChanges = 4;
  EXPECT_EQ(TNetworkLinkCheck::Judge(MakeGoodPort(), after).state, ECompletion::kFailed);
}

TEST(LinkVerdictTest, APortThatIsOffOrGoneSaysNothingOfTheHardware) {
  TNetworkLinkCheck::TPortState off = MakeGoodPort();
  off.isUp = off.hasCarrier = false;
  EXPECT_EQ(TNetworkLinkCheck::Judge(off, off).state, ECompletion::kIncomplete);
  EXPECT_EQ(TNetworkLinkCheck::Judge(MakeGoodPort(), {}).state, ECompletion::kIncomplete);
}

TEST(LinkVerdictTest, ReadsThePortsFiles) {
  const TFakeMachine machine;
  machine.AddPort("eth0", "igb");
  const THostFiles files(machine.GetRoot());
  const auto state = TNetworkLinkCheck::ReadState(files, "eth0");
  EXPECT_TRUE(state.isUp && state.hasCarrier && state.hasCounters);
  EXPECT_EQ(state.errors.at("rx_crc_errors"), 7U);
  machine.Write("/sys/class/net/eth0/flags", "0x1002\n");
  EXPECT_FALSE(TNetworkLinkCheck::ReadState(files, "eth0").isUp);
  EXPECT_FALSE(TNetworkLinkCheck::ReadState(files, "eth1").hasCounters);
}

// Error counters of the memory controllers

TEST(MemoryErrorsTest, WeighInOnPassesOnly) {
  const auto judge = [](ECompletion state, TMemoryErrors before, TMemoryErrors after) {
    TVerdict verdict = MakeVerdict(state, "x");
    ApplyMemoryErrors(before, after, verdict);
    return verdict.state;
  };
  EXPECT_EQ(judge(ECompletion::kOk, {3, 1}, {3, 1}), ECompletion::kOk);
  EXPECT_EQ(judge(ECompletion::kOk, {3, 1}, {4, 1}), ECompletion::kWarning);
  EXPECT_EQ(judge(ECompletion::kWarning, {3, 1}, {4, 2}), ECompletion::kFailed);
  EXPECT_EQ(judge(ECompletion::kOk, {3, 1}, {0, 0}), ECompletion::kOk);
  EXPECT_EQ(judge(ECompletion::kIncomplete, {0, 0}, {4, 2}), ECompletion::kIncomplete);
}

TEST(MemoryErrorsTest, SumUpAllControllers) {
  const TFakeMachine machine;
  for (const char* const name : {"mc0", "mc1"}) {
    machine.Write(std::string("/sys/devices/system/edac/mc/") + name + "/ce_count", "2\n");
    machine.Write(std::string("/sys/devices/system/edac/mc/") + name + "/ue_count", "1\n");
  }
  const TMemoryErrors errors = TMemoryErrors::Read(THostFiles(machine.GetRoot()));
  EXPECT_EQ(errors.corrected, 4U);
  EXPECT_EQ(errors.uncorrected, 2U);
}

}  // namespace
}  // namespace hardware
