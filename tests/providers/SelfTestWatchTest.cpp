// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "providers/hardware/TSelfTestWatch.h"
#include "tests/providers/THardwareFixture.h"

namespace hardware {
namespace {

using std::chrono::seconds;
using ::testing::HasSubstr;

/// A drive whose answers are given in advance; the last one is repeated.
class SelfTestWatchTest : public ::testing::Test {
 protected:
  SelfTestWatchTest() {
    m_steps.query = [this](const TStopSignal&) {
      const std::size_t index = std::min(m_queries++, m_answers.size() - 1);
      return m_answers[index];
    };
    m_steps.start = [this](const TStopSignal&) {
      ++m_starts;
      return m_startAnswer;
    };
    m_steps.abort = [this] { ++m_aborts; };
    m_steps.findRefusal = [](const TProcessOutcome& answer) {
      return answer.exitStatus == 0 ? std::string() : "refused";
    };
    m_steps.isRunning = [](const nlohmann::json& state) { return state["run"] == 1; };
    m_steps.getPercent = [](const nlohmann::json&) { return 40U; };
    m_steps.judge = [](const nlohmann::json& before, const nlohmann::json& after, bool wasSeen) {
      return wasSeen || before != after ? MakeVerdict(ECompletion::kOk, "passed")
                                        : MakeVerdict(ECompletion::kIncomplete, "no trace");
    };
    m_startAnswer = Answer("");
  }

  static TProcessOutcome Answer(const std::string& output, int status = 0) {
    TProcessOutcome outcome;
    outcome.end = EProcessEnd::kExited;
    outcome.exitStatus = status;
    outcome.output = output;
    return outcome;
  }

  TVerdict Watch(seconds deadline = seconds(60)) {
    const TRunControl control{m_stop, [this](unsigned int percent) { m_percent = percent; }};
    return TSelfTestWatch(m_steps, seconds(0), deadline).Run(control);
  }

  const TProcessOutcome m_idle = Answer(R"({"run":0})");
  const TProcessOutcome m_running = Answer(R"({"run":1})");
  std::vector<TProcessOutcome> m_answers;
  TProcessOutcome m_startAnswer;
  std::size_t m_queries = 0;
  int m_starts = 0;
  int m_aborts = 0;
  unsigned int m_percent = 0;
  TStopSignal m_stop;
  TSelfTestWatch::TSteps m_steps;
};

TEST_F(SelfTestWatchTest, FollowsTheSelfTestToItsEnd) {
  m_answers = {m_idle, m_running, m_running, m_idle};
  EXPECT_EQ(Watch().state, ECompletion::kOk);
  EXPECT_EQ(m_percent, 40U);
  EXPECT_EQ(m_starts, 1);
  EXPECT_EQ(m_aborts, 0);
}

TEST_F(SelfTestWatchTest, WaitsForADriveThatIsSlowToBegin) {
  m_answers = {m_idle, m_idle, m_idle, m_running, m_idle};
  EXPECT_EQ(Watch().state, ECompletion::kOk);
}

TEST_F(SelfTestWatchTest, GivesUpOnADriveThatNeverBegins) {
  m_answers = {m_idle};
  EXPECT_EQ(Watch().state, ECompletion::kIncomplete);
  EXPECT_EQ(m_queries, 4U);
}

TEST_F(SelfTestWatchTest, LeavesAForeignSelfTestAlone) {
  m_answers = {m_running};
  const TVerdict verdict = Watch();
  EXPECT_EQ(verdict.state, ECompletion::kIncomplete);
  EXPECT_THAT(verdict.summary, HasSubstr("somebody else"));
  EXPECT_EQ(m_starts, 0);
  EXPECT_EQ(m_aborts, 0);
}

TEST_F(SelfTestWatchTest, TellsWhyADriveRefuses) {
  m_answers = {Answer("", 2)};
  EXPECT_EQ(Watch().summary, "refused");
  EXPECT_EQ(m_starts, 0);
  m_answers = {m_idle};
  m_startAnswer = Answer("", 2);
  EXPECT_EQ(Watch().summary, "refused");
  EXPECT_EQ(m_aborts, 1);
}

TEST_F(SelfTestWatchTest, ForgivesAFewMissedLooks) {
  m_answers = {m_idle, m_running, Answer("", 4), Answer("", 4), m_running, Answer("", 4), m_idle};
  EXPECT_EQ(Watch().state, ECompletion::kOk);
}

TEST_F(SelfTestWatchTest, GivesUpWhenEveryLookFails) {
  m_answers = {m_idle, Answer("", 4)};
  EXPECT_EQ(Watch().state, ECompletion::kIncomplete);
  EXPECT_EQ(m_aborts, 1);
}

TEST_F(SelfTestWatchTest, AbortsInTheDriveWhenItIsStopped) {
  m_answers = {m_idle};
  m_stop.Request(EStop::kTerminate);
  EXPECT_EQ(Watch().state, ECompletion::kStopped);
  m_stop.Request(EStop::kKill);
  EXPECT_EQ(Watch().state, ECompletion::kAborted);
  EXPECT_EQ(m_aborts, 2);
}

TEST_F(SelfTestWatchTest, AbortsInTheDriveAtTheDeadline) {
  m_answers = {m_idle, m_running};
  const TVerdict verdict = Watch(seconds(0));
  EXPECT_EQ(verdict.state, ECompletion::kAborted);
  EXPECT_THAT(verdict.summary, HasSubstr("deadline"));
  EXPECT_EQ(m_aborts, 1);
}

class DriveSelfTestTest : public THardwareFixture {};

// These drives are done as soon as they are looked at; their logs show that they began.

TEST_F(DriveSelfTestTest, SmartStartsLooksAndJudges) {
  m_machine.AddDisk("sda", 1024);
  const std::string root = m_machine.GetRoot();
  m_machine.AddTool("smartctl",
                    "echo \"$@\" >>" + root + "/calls; case \"$*\" in *'-t short'*) touch " + root +
                        "/begun;; esac; L=; [ -e " + root +
                        "/begun ] && L='{\"lifetime_hours\":7}'\n" +
                        R"(echo "{\"smartctl\":{\"version\":[7,3],\"exit_status\":0},)"
                        R"(\"smart_status\":{\"passed\":true},)"
                        R"(\"ata_smart_self_test_log\":{\"standard\":{\"table\":[$L]}},)"
                        R"(\"ata_smart_data\":{\"self_test\":{\"status\":{\"value\":0}},)"
                        R"(\"capabilities\":{\"self_tests_supported\":true}}}")");
  Open();
  const TRecord record = RunToEnd("DiskDefault SMART Self-Test", "sda");
  EXPECT_EQ(record.state, ECompletion::kOk) << record.data;
  EXPECT_THAT(m_machine.Read("/calls"), HasSubstr("-j -t short " + root + "/dev/sda\n"));
  EXPECT_THAT(record.data, HasSubstr("Tool: smartctl 7.3"));
}

TEST_F(DriveSelfTestTest, NvmeStartsLooksAndJudges) {
  m_machine.AddDisk("nvme0n1", 1024);
  const std::string root = m_machine.GetRoot();
  m_machine.AddTool(
      "nvme",
      "echo \"$@\" >>" + root + "/calls; case \"$1\" in id-ctrl) echo '{\"oacs\":16}';; " +
          "version) echo nvme version 2.3;; device-self-test) touch " + root +
          "/begun;; self-test-log) L=; [ -e " + root + "/begun ] && L='{\"Self test result\":7," +
          "\"Self test code\":1,\"Segment number\":3}'\n" +
          R"(echo "{\"Current Device Self-Test Operation\":0,\"List of Valid Reports\":[$L]}";; esac)");
  Open();
  const TRecord record = RunToEnd("DiskDefault NVMe Self-Test", "nvme0n1");
  EXPECT_EQ(record.state, ECompletion::kFailed) << record.data;
  EXPECT_THAT(m_machine.Read("/calls"),
              HasSubstr("device-self-test " + root + "/dev/nvme0 -n 0xffffffff -s 1\n"));
  EXPECT_THAT(record.data, HasSubstr("Segment number 3"));
}

}  // namespace
}  // namespace hardware
