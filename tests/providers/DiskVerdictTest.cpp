// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "providers/hardware/TDiskReadVerify.h"
#include "providers/hardware/TNvmeSelfTest.h"
#include "providers/hardware/TSmartSelfTest.h"
#include "providers/hardware/Units.h"

namespace hardware {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::HasSubstr;

// fio

struct TReadRow {
  const char* name;
  int status;
  std::string output;
  ECompletion state;
  const char* summary;
};
void PrintTo(const TReadRow& row, std::ostream* out) {
  *out << row.name;
}

std::string MakeReport(int error, std::uint64_t bytes, int runtimeMs) {
  return "{\n\"fio version\" : \"fio-3.33\",\n\"jobs\" : [ {\"error\" : " + std::to_string(error) +
         ", \"read\" : {\"io_bytes\" : " + std::to_string(bytes) +
         ", \"runtime\" : " + std::to_string(runtimeMs) +
         "}, \"write\" : {\"io_bytes\" : 0}} ]\n}\n";
}

class ReadVerdictTest : public ::testing::TestWithParam<TReadRow> {
 protected:
  static TProcessOutcome MakeOutcome(const TReadRow& row) {
    TProcessOutcome outcome;
    outcome.end = EProcessEnd::kExited;
    outcome.exitStatus = row.status;
    outcome.output = row.output;
    return outcome;
  }
};

TEST_P(ReadVerdictTest, WeighsStatusErrorsAndBytes) {
  const TDiskReadVerify::TPlan plan{1024 * kMib, seconds(10), 4096 * kMib};
  const TVerdict verdict = TDiskReadVerify::Judge(MakeOutcome(GetParam()), plan);
  EXPECT_EQ(verdict.state, GetParam().state) << verdict.summary;
  EXPECT_THAT(verdict.summary, HasSubstr(GetParam().summary));
}
INSTANTIATE_TEST_SUITE_P(
    All, ReadVerdictTest,
    ::testing::Values(
        TReadRow{"AllRead", 0, MakeReport(0, 1024 * kMib, 900), ECompletion::kOk, "without"},
        TReadRow{"TimeIsUp", 0, MakeReport(0, 300 * kMib, 10001), ECompletion::kOk, "without"},
        TReadRow{"LastReportCounts", 0,
                 MakeReport(5, 3 * kMib, 1000) + MakeReport(0, 1024 * kMib, 2000), ECompletion::kOk,
                 "without"},
        TReadRow{"TextBeforeTheReport", 0, "fio: a note\n" + MakeReport(0, 1024 * kMib, 900),
                 ECompletion::kOk, "without"},
        TReadRow{"CutShort", 0, MakeReport(0, 300 * kMib, 4000), ECompletion::kIncomplete,
                 "cut short"},
        TReadRow{"NothingRead", 0, MakeReport(0, 0, 10001), ECompletion::kIncomplete, "cut short"},
        TReadRow{"Interrupted", 128,
                 "fio: terminating on signal 2\n" + MakeReport(0, 300 * kMib, 4000),
                 ECompletion::kIncomplete, "before its work"},
        TReadRow{"InterruptedWithStatus0", 0,
                 "fio: terminating on signal 15\n" + MakeReport(0, 1024 * kMib, 900),
                 ECompletion::kIncomplete, "before its work"},
        TReadRow{"InputOutputError", 1, MakeReport(5, 17 * kMib, 900), ECompletion::kFailed,
                 "after 17 MiB: Input/output error"},
        TReadRow{"WrongData", 1, MakeReport(84, 4 * kMib, 900), ECompletion::kFailed, "failed"},
        TReadRow{"MediumError", 1, MakeReport(61, 4 * kMib, 900), ECompletion::kFailed, "failed"},
        TReadRow{"DeviceErrorWithStatus0", 0, MakeReport(5, 1024 * kMib, 900), ECompletion::kFailed,
                 "Input/output error"},
        TReadRow{"NotPermitted", 1, MakeReport(1, 0, 0), ECompletion::kIncomplete,
                 "Operation not permitted"},
        TReadRow{"NoSuchFile", 1, MakeReport(2, 0, 0), ECompletion::kIncomplete, "No such file"},
        TReadRow{"BadOption", 1, "fio: unrecognized option\n", ECompletion::kIncomplete,
                 "no readable report"},
        TReadRow{"NoReport", 0, "", ECompletion::kIncomplete, "no readable report"},
        TReadRow{"CutReport", 0, "{\n\"jobs\" : [ {\"error\" : 0,", ECompletion::kIncomplete,
                 "no readable report"},
        TReadRow{"NoJobs", 0, "{\n\"jobs\" : []\n}\n", ECompletion::kIncomplete,
                 "no readable report"},
        TReadRow{"JobWithoutError", 0, "{\n\"jobs\" : [{\"read\":{\"io_bytes\":1}}]\n}\n",
                 ECompletion::kIncomplete, "no readable report"}),
    [](const auto& row) { return row.param.name; });

TEST(ReadCoverageTest, TellsHowMuchOfTheDiskWasRead) {
  TProcessOutcome outcome;
  outcome.end = EProcessEnd::kExited;
  outcome.output = MakeReport(0, 300 * kMib, 10001);
  const TVerdict verdict =
      TDiskReadVerify::Judge(outcome, {1024 * kMib, seconds(10), 4096ULL * kMib});
  EXPECT_EQ(verdict.covered,
            "300 MiB read of 1024 MiB planned, from the start of a disk of 4096 MiB, in 10001 ms");
  EXPECT_EQ(verdict.tool, "fio-3.33");
}

TEST(ReadProgressTest, FollowsBytesOrTimeWhicheverIsFurther) {
  const TDiskReadVerify::TPlan plan{1000 * kMib, seconds(10), 4096 * kMib};
  EXPECT_EQ(TDiskReadVerify::EstimatePercent("", plan, milliseconds(2000)), 20U);
  EXPECT_EQ(
      TDiskReadVerify::EstimatePercent(MakeReport(0, 700 * kMib, 2000), plan, milliseconds(2000)),
      70U);
  EXPECT_EQ(TDiskReadVerify::EstimatePercent("", plan, seconds(60)), 100U);
}

// smartctl

nlohmann::json MakeSmart(unsigned int status, unsigned int exitStatus, int tests,
                         bool isHealthy = true) {
  nlohmann::json report;
  report["smartctl"]["version"] = {7, 3};
  report["smartctl"]["exit_status"] = exitStatus;
  report["smart_status"]["passed"] = isHealthy;
  report["ata_smart_data"]["self_test"]["status"] = {{"value", status}, {"string", "as read"}};
  if (status / 16 == 15) {
    report["ata_smart_data"]["self_test"]["status"]["remaining_percent"] = status % 16 * 10;
  }
  for (int i = 0; i < tests; ++i) {
    report["ata_smart_self_test_log"]["standard"]["table"].push_back(
        {{"lifetime_hours", 100U + static_cast<unsigned int>(i)}, {"lba", 4711U}});
  }
  return report;
}

struct TSmartRow {
  const char* name;
  unsigned int status;
  unsigned int exitStatus;
  bool isHealthy;
  ECompletion state;
  const char* summary;
};
void PrintTo(const TSmartRow& row, std::ostream* out) {
  *out << row.name;
}

class SmartVerdictTest : public ::testing::TestWithParam<TSmartRow> {};

TEST_P(SmartVerdictTest, WeighsSelfTestAndHealth) {
  const TSmartRow& row = GetParam();
  const TVerdict verdict = TSmartSelfTest::Judge(
      MakeSmart(0, 0, 1), MakeSmart(row.status, row.exitStatus, 2, row.isHealthy), true);
  EXPECT_EQ(verdict.state, row.state) << verdict.summary;
  EXPECT_THAT(verdict.summary, HasSubstr(row.summary));
  EXPECT_EQ(verdict.tool, "smartctl 7.3");
}
INSTANTIATE_TEST_SUITE_P(
    All, SmartVerdictTest,
    ::testing::Values(
        TSmartRow{"Pass", 0, 0, true, ECompletion::kOk, "passed"},
        TSmartRow{"PassWithCommandFailure", 0, 4, true, ECompletion::kOk, "passed"},
        TSmartRow{"DiskFailing", 0, 8, true, ECompletion::kFailed, "predicts"},
        TSmartRow{"StatusFailed", 0, 0, false, ECompletion::kFailed, "predicts"},
        TSmartRow{"PrefailNow", 0, 16, true, ECompletion::kFailed, "below its threshold"},
        TSmartRow{"PrefailBefore", 0, 32, true, ECompletion::kWarning, "threshold before"},
        TSmartRow{"ErrorLog", 0, 64, true, ECompletion::kWarning, "error log"},
        TSmartRow{"SelfTestLog", 0, 128, true, ECompletion::kWarning, "self-test log"},
        TSmartRow{"AbortedByHost", 0x19, 0, true, ECompletion::kIncomplete, "aborted"},
        TSmartRow{"Interrupted", 0x29, 0, true, ECompletion::kIncomplete, "reset"},
        TSmartRow{"Fatal", 0x39, 0, true, ECompletion::kIncomplete, "could not complete"},
        TSmartRow{"UnknownElement", 0x49, 0, true, ECompletion::kFailed, "unknown element"},
        TSmartRow{"Electrical", 0x59, 0, true, ECompletion::kFailed, "electrical"},
        TSmartRow{"Servo", 0x69, 0, true, ECompletion::kFailed, "servo"},
        TSmartRow{"Read", 0x79, 128, true, ECompletion::kFailed, "to read"},
        TSmartRow{"Handling", 0x89, 0, true, ECompletion::kFailed, "handling damage"},
        TSmartRow{"Reserved", 0xA0, 0, true, ECompletion::kIncomplete, "unknown state 10"}),
    [](const auto& row) { return row.param.name; });

TEST(SmartStateTest, OnlyTheHighHalfOf15MeansRunning) {
  EXPECT_TRUE(TSmartSelfTest::IsRunning(MakeSmart(249, 0, 0)));
  EXPECT_TRUE(TSmartSelfTest::IsRunning(MakeSmart(240, 0, 0)));
  EXPECT_FALSE(TSmartSelfTest::IsRunning(MakeSmart(25, 0, 0)));
  EXPECT_FALSE(TSmartSelfTest::IsRunning(nlohmann::json()));
  EXPECT_EQ(TSmartSelfTest::GetPercent(MakeSmart(0xF3, 0, 0)), 70U);
  EXPECT_EQ(TSmartSelfTest::GetPercent(nlohmann::json()), 0U);
}

TEST(SmartStateTest, AnOldResultIsNotTakenForThisTests) {
  const nlohmann::json old = MakeSmart(0, 0, 1);
  EXPECT_EQ(TSmartSelfTest::Judge(old, old, false).state, ECompletion::kIncomplete);
  EXPECT_EQ(TSmartSelfTest::Judge(old, old, true).state, ECompletion::kOk);
  EXPECT_EQ(TSmartSelfTest::Judge(old, MakeSmart(0, 0, 2), false).state, ECompletion::kOk);
}

TEST(SmartStateTest, AReportWithoutStateIsNoPass) {
  EXPECT_EQ(TSmartSelfTest::Judge({}, {}, true).state, ECompletion::kIncomplete);
}

TEST(SmartStateTest, TheFirstFailedBlockIsNamed) {
  EXPECT_THAT(TSmartSelfTest::Judge({}, MakeSmart(0x79, 0, 1), true).excerpt, HasSubstr("4711"));
}

// nvme

nlohmann::json MakeNvme(unsigned int operation, std::vector<unsigned int> results,
                        unsigned int code = 1) {
  nlohmann::json log;
  log["Current Device Self-Test Operation"] = operation;
  log["Current Device Self-Test Completion"] = 40U;
  for (const unsigned int result : results) {
    log["List of Valid Reports"].push_back(
        {{"Self test result", result}, {"Self test code", code}, {"Segment number", 3U}});
  }
  return log;
}

struct TNvmeRow {
  unsigned int result;
  ECompletion state;
};
void PrintTo(const TNvmeRow& row, std::ostream* out) {
  *out << "result " << row.result;
}

class NvmeVerdictTest : public ::testing::TestWithParam<TNvmeRow> {};

TEST_P(NvmeVerdictTest, BlamesTheDriveForItsOwnFailuresOnly) {
  const TVerdict verdict =
      TNvmeSelfTest::Judge(MakeNvme(0, {0}), MakeNvme(0, {GetParam().result, 0}), true);
  EXPECT_EQ(verdict.state, GetParam().state) << verdict.summary;
}
INSTANTIATE_TEST_SUITE_P(
    All, NvmeVerdictTest,
    ::testing::Values(TNvmeRow{0, ECompletion::kOk}, TNvmeRow{1, ECompletion::kIncomplete},
                      TNvmeRow{2, ECompletion::kIncomplete}, TNvmeRow{3, ECompletion::kIncomplete},
                      TNvmeRow{4, ECompletion::kIncomplete}, TNvmeRow{5, ECompletion::kFailed},
                      TNvmeRow{6, ECompletion::kFailed}, TNvmeRow{7, ECompletion::kFailed},
                      TNvmeRow{8, ECompletion::kIncomplete}, TNvmeRow{9, ECompletion::kIncomplete},
                      TNvmeRow{10, ECompletion::kIncomplete},
                      TNvmeRow{15, ECompletion::kIncomplete}));

TEST(NvmeStateTest, CompletionCountsOnlyWhileATestRuns) {
  EXPECT_TRUE(TNvmeSelfTest::IsRunning(MakeNvme(1, {})));
  EXPECT_EQ(TNvmeSelfTest::GetPercent(MakeNvme(1, {})), 40U);
  EXPECT_EQ(TNvmeSelfTest::GetPercent(MakeNvme(0, {})), 0U);
  EXPECT_FALSE(TNvmeSelfTest::IsRunning(nlohmann::json()));
}

TEST(NvmeStateTest, AnOldOrForeignResultIsNotTakenForThisTests) {
  const nlohmann::json old = MakeNvme(0, {0});
  EXPECT_EQ(TNvmeSelfTest::Judge(old, old, false).state, ECompletion::kIncomplete);
  EXPECT_EQ(TNvmeSelfTest::Judge(old, MakeNvme(0, {0, 0}, 2), true).state,
            ECompletion::kIncomplete);
  EXPECT_EQ(TNvmeSelfTest::Judge(old, MakeNvme(0, {}), true).state, ECompletion::kIncomplete);
}

}  // namespace
}  // namespace hardware
