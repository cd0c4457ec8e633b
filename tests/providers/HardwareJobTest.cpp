// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "tests/providers/THardwareFixture.h"

namespace hardware {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

class HardwareJobTest : public THardwareFixture {
 protected:
  HardwareJobTest() {
    m_machine.AddProcessors(2, "AMD EPYC");
    m_machine.AddMemory(1024);
    m_machine.AddDisk("sda", 1024);
    m_machine.AddDisk("nvme0n1", 1024);
    m_machine.AddPort("eth0", "igb");
    for (const char* const tool : {"stress-ng", "memtester", "fio", "smartctl", "nvme"}) {
      m_machine.AddTool(tool, "exit 1");
    }
    m_machine.AddTool("ethtool", "case $1 in -i) echo 'supports-test: yes';; esac");
  }

  void AddStress(const std::string& body) {
    m_machine.AddTool("stress-ng",
                      "[ \"$1\" = --version ] && echo 'stress-ng, version 9' && exit\n" + body);
  }

  std::string Quote(const char* text) const { return "printf '%s' '" + std::string(text) + "'"; }
};

TEST_F(HardwareJobTest, AGoodRunPassesAndItsRecordTellsHow) {
  AddStress(Quote(kGoodStress) + " >&2; sleep 1");
  Open();
  const TRecord record = RunToEnd("Processor Short Stress", "cpu1");
  EXPECT_EQ(record.state, ECompletion::kOk) << record.data;
  EXPECT_THAT(record.id, StartsWith(record.jobId));
  EXPECT_EQ(record.serviceName, "Processor Short Stress");
  EXPECT_EQ(record.device.name, "AMD EPYC CPU 1");
  EXPECT_THAT(record.data, StartsWith("Verdict: passed: "));
  EXPECT_THAT(record.data, HasSubstr("\nTool: stress-ng, version 9\n"));
  EXPECT_THAT(record.data, HasSubstr("--taskset 1 --verify"));
  EXPECT_THAT(record.data, HasSubstr("\nEnded with: exit status 0\n"));
  EXPECT_THAT(record.data, HasSubstr("\nDuration: 1."));
  EXPECT_THAT(record.data, HasSubstr("\nOutput:\nstress-ng: metrc"));
  const TJobView job = *m_hardware->GetJobs().FindJob(record.jobId);
  EXPECT_EQ(job.state, EJobState::kCompleted);
  EXPECT_EQ(job.percent, 100U);
}

TEST_F(HardwareJobTest, AClaimOfSuccessTooSoonIsNoPass) {
  AddStress(Quote(kGoodStress) + " >&2");
  Open();
  const TRecord record = RunToEnd("Processor Short Stress", "cpu0");
  EXPECT_EQ(record.state, ECompletion::kIncomplete);
  EXPECT_THAT(record.data, HasSubstr("cut short"));
}

TEST_F(HardwareJobTest, PercentGrowsWhileTheTestRuns) {
  AddStress("sleep 1; " + Quote(kGoodStress) + " >&2");
  Open();
  const std::string id = Start("Processor Short Stress", "cpu0");
  WaitForPercent(id, 20);
  const TJobView job = *m_hardware->GetJobs().FindJob(id);
  EXPECT_LT(job.percent, 100U);
  EXPECT_EQ(job.state, EJobState::kRunning);
  EXPECT_THAT(m_hardware->GetJobs().GetRecords(), IsEmpty());
  m_hardware->GetJobs().WaitFor(id);
  EXPECT_EQ(m_hardware->GetJobs().FindJob(id)->percent, 100U);
}

struct TStopRow {
  EStop stop;
  EJobState state;
  ECompletion completion;
};
class HardwareStopTest : public HardwareJobTest, public ::testing::WithParamInterface<TStopRow> {};

TEST_P(HardwareStopTest, EndsTheTestAndItsPrograms) {
  AddStress("echo $$ >" + m_machine.GetRoot() + "/pid; sleep 30");
  Open();
  const std::string id = Start("Processor Short Stress", "cpu0");
  WaitForPercent(id, 20);
  TJobTable& jobs = m_hardware->GetJobs();
  EXPECT_EQ(jobs.RequestStop(id, GetParam().stop), TJobTable::EStopResult::kAsked);
  jobs.WaitFor(id);
  EXPECT_EQ(jobs.FindJob(id)->state, GetParam().state);
  EXPECT_EQ(jobs.FindJob(id)->percent, 100U);
  EXPECT_EQ(jobs.FindRecord(id + ":record")->state, GetParam().completion);
  std::string pid = m_machine.Read("/pid");
  pid.pop_back();
  EXPECT_FALSE(THostFiles("").Exists("/proc/" + pid));
  EXPECT_EQ(jobs.RequestStop(id, GetParam().stop), TJobTable::EStopResult::kIsOver);
  EXPECT_EQ(jobs.RequestStop("DRH:none", GetParam().stop), TJobTable::EStopResult::kNoSuchJob);
}
INSTANTIATE_TEST_SUITE_P(
    All, HardwareStopTest,
    ::testing::Values(TStopRow{EStop::kKill, EJobState::kKilled, ECompletion::kAborted},
                      TStopRow{EStop::kTerminate, EJobState::kTerminated, ECompletion::kStopped}));

TEST_F(HardwareJobTest, AProgramThatCannotRunBreaksTheJobNotTheDevice) {
  m_machine.Write("/tools/stress-ng",
                  "\x7F"
                  "ELF broken");
  Open();
  const TRecord record = RunToEnd("Processor Short Stress", "cpu0");
  EXPECT_EQ(record.state, ECompletion::kIncomplete);
  EXPECT_THAT(record.data, HasSubstr("could not be started"));
  EXPECT_EQ(m_hardware->GetJobs().FindJob(record.jobId)->state, EJobState::kException);
}

TEST_F(HardwareJobTest, MemoryRunsOverTheConfiguredSize) {
  m_machine.AddTool("memtester",
                    "echo \"$@\" >" + m_machine.GetRoot() + "/arguments; " + Quote(kGoodMemory));
  Open();
  const TRecord record = RunToEnd("Memory Short Pattern", "memory0");
  EXPECT_EQ(record.state, ECompletion::kOk) << record.data;
  EXPECT_EQ(m_machine.Read("/arguments"), "16M 1\n");
  EXPECT_THAT(record.data, HasSubstr("Covered: 16 MiB in 1 pass of 1024 MiB"));
}

TEST_F(HardwareJobTest, MemoryNeverTakesMoreThanHalfOfWhatIsAvailable) {
  m_machine.AddTool("memtester", "echo \"$@\" >" + m_machine.GetRoot() + "/arguments");
  m_machine.AddMemory(20);
  Open();
  RunToEnd("Memory Short Pattern", "memory0");
  EXPECT_EQ(m_machine.Read("/arguments"), "10M 1\n");
  m_machine.AddMemory(1);
  EXPECT_THAT(RunToEnd("Memory Short Pattern", "memory0").data, HasSubstr("too little memory"));
}

TEST_F(HardwareJobTest, ADiskIsOnlyEverRead) {
  m_machine.AddTool("fio", "echo \"$@\" >" + m_machine.GetRoot() +
                               "/arguments; printf '{\\n\"jobs\":[{\"error\":0,\"read\":"
                               "{\"io_bytes\":1073741824,\"runtime\":900}}]\\n}\\n'");
  Open();
  const TRecord record = RunToEnd("DiskDefault Read Verify", "sda");
  EXPECT_EQ(record.state, ECompletion::kOk) << record.data;
  const std::string arguments = m_machine.Read("/arguments");
  EXPECT_THAT(arguments, HasSubstr("--readonly --rw=read --allow_file_create=0"));
  EXPECT_THAT(arguments, HasSubstr("--size=1073741824 "));
  EXPECT_THAT(arguments, HasSubstr("--filename=" + m_machine.GetRoot() + "/dev/sda"));
}

TEST_F(HardwareJobTest, APortsDriverIsTestedInUse) {
  m_machine.AddTool("ethtool",
                    "case $1 in -i) echo 'supports-test: yes';; -t) echo \"$@\" >" +
                        m_machine.GetRoot() +
                        "/arguments; echo 'The test result is PASS';; --version) echo ethtool 6;; "
                        "esac");
  Open();
  const TRecord record = RunToEnd("Network Driver Self-Test", "eth0");
  EXPECT_EQ(record.state, ECompletion::kOk) << record.data;
  EXPECT_EQ(m_machine.Read("/arguments"), "-t eth0 online\n");
}

TEST_F(HardwareJobTest, APortsLinkIsWatched) {
  m_machine.AddTool("ethtool", "exit 1");
  Open();
  const TRecord record = RunToEnd("Network Link Check", "eth0");
  EXPECT_EQ(record.state, ECompletion::kOk) << record.data;
  EXPECT_THAT(record.data, HasSubstr("3 error counters for 1 seconds"));
}

TEST_F(HardwareJobTest, ShutdownEndsAllRunsAndRefusesNewOnes) {
  AddStress("sleep 30");
  Open();
  const std::string first = Start("Processor Short Stress", "cpu0");
  const std::string second = Start("Processor Extended Stress", "cpu1");
  m_hardware->GetJobs().Shutdown();
  for (const std::string& id : {first, second}) {
    EXPECT_EQ(m_hardware->GetJobs().FindJob(id)->state, EJobState::kKilled);
    EXPECT_EQ(m_hardware->GetJobs().FindRecord(id + ":record")->state, ECompletion::kAborted);
  }
  const auto offer = m_hardware->FindOffer("Processor Short Stress", "cpu0");
  EXPECT_EQ(m_hardware->GetJobs().Start(*offer->test, offer->device).result,
            TJobTable::EStart::kBusy);
}

/// A test whose course the test decides.
class TScriptedTest : public IDiagnosticTest {
 public:
  using TScript = std::function<TVerdict(const TRunControl&)>;
  explicit TScriptedTest(TScript script) : m_script(std::move(script)) {
    m_service.name = "Scripted";
  }
  const TService& GetService() const override { return m_service; }
  TAvailability Check(const TDevice&) const override { return {EAvailability::kOffered, "", ""}; }
  TVerdict Run(const TDevice&, const TRunControl& control) const override {
    return m_script(control);
  }

 private:
  TScript m_script;
  TService m_service;
};

TDevice MakeDevice(const std::string& id) {
  TDevice device;
  device.id = id;
  return device;
}

class JobTableTest : public ::testing::Test {
 protected:
  std::string RunToEnd(const IDiagnosticTest& test, const std::string& deviceId = "a") {
    const TJobTable::TStarted started = m_jobs.Start(test, MakeDevice(deviceId));
    EXPECT_EQ(started.result, TJobTable::EStart::kStarted) << started.reason;
    m_jobs.WaitFor(started.jobId);
    return started.jobId;
  }

  std::atomic<std::chrono::steady_clock::time_point> m_now{std::chrono::steady_clock::now()};
  const TScriptedTest m_pass{
      [](const TRunControl&) { return MakeVerdict(ECompletion::kOk, "good"); }};
  const TScriptedTest m_untilStopped{[](const TRunControl& control) {
    control.stop.WaitFor(minutes(1));
    return MakeVerdict(ECompletion::kAborted, "ended");
  }};
  TJobTable m_jobs{[this] { return m_now.load(); }};
};

TEST_F(JobTableTest, ADeviceTakesOneTestAtATime) {
  const TJobTable::TStarted first = m_jobs.Start(m_untilStopped, MakeDevice("a"));
  const TJobTable::TStarted second = m_jobs.Start(m_pass, MakeDevice("a"));
  EXPECT_EQ(second.result, TJobTable::EStart::kBusy);
  EXPECT_EQ(second.jobId, "");
  EXPECT_THAT(second.reason, HasSubstr("a is under test"));
  RunToEnd(m_pass, "b");
  m_jobs.RequestStop(first.jobId, EStop::kKill);
  m_jobs.WaitFor(first.jobId);
  RunToEnd(m_pass, "a");
  EXPECT_THAT(m_jobs.GetRecords(), SizeIs(3));
}

TEST_F(JobTableTest, ATestThatThrowsIsBroken) {
  const TScriptedTest throws([](const TRunControl&) -> TVerdict { throw std::bad_alloc(); });
  const TScriptedTest throwsOther([](const TRunControl&) -> TVerdict { throw 1; });
  for (const TScriptedTest* const test : {&throws, &throwsOther}) {
    const std::string id = RunToEnd(*test);
    EXPECT_EQ(m_jobs.FindJob(id)->state, EJobState::kException);
    EXPECT_EQ(m_jobs.FindJob(id)->percent, 100U);
    EXPECT_EQ(m_jobs.FindRecord(id + ":record")->state, ECompletion::kIncomplete);
  }
}

TEST_F(JobTableTest, PercentNeverFallsNorReachesAHundredBeforeTheEnd) {
  const TScriptedTest jumpy([](const TRunControl& control) {
    for (const unsigned int percent : {50U, 20U, 4000000000U}) control.setPercent(percent);
    control.stop.WaitFor(minutes(1));
    return MakeVerdict(ECompletion::kStopped, "stopped");
  });
  const TJobTable::TStarted started = m_jobs.Start(jumpy, MakeDevice("a"));
  while (m_jobs.FindJob(started.jobId)->percent < 99) std::this_thread::yield();
  EXPECT_EQ(m_jobs.FindJob(started.jobId)->state, EJobState::kRunning);
  m_jobs.RequestStop(started.jobId, EStop::kTerminate);
  m_jobs.WaitFor(started.jobId);
  EXPECT_EQ(m_jobs.FindJob(started.jobId)->percent, 100U);
  EXPECT_EQ(m_jobs.FindJob(started.jobId)->state, EJobState::kTerminated);
}

TEST_F(JobTableTest, NoIdIsPartOfAnother) {
  std::vector<std::string> ids;
  for (int i = 0; i < 12; ++i) ids.push_back(RunToEnd(m_pass));
  for (const std::string& id : ids) {
    EXPECT_EQ(std::count_if(
                  ids.begin(), ids.end(),
                  [&id](const std::string& other) { return other.find(id) != std::string::npos; }),
              1);
  }
}

TEST_F(JobTableTest, JobsAreKeptForFiveMinutesAndThenMakeRoom) {
  const std::string oldest = RunToEnd(m_pass);
  for (std::size_t i = 1; i < TJobTable::kKeptJobs + 10; ++i) RunToEnd(m_pass);
  EXPECT_TRUE(m_jobs.FindJob(oldest).has_value());
  m_now = m_now.load() + minutes(6);
  const std::string newest = RunToEnd(m_pass);
  EXPECT_FALSE(m_jobs.FindJob(oldest).has_value());
  EXPECT_FALSE(m_jobs.FindRecord(oldest + ":record").has_value());
  EXPECT_TRUE(m_jobs.FindJob(newest).has_value());
  EXPECT_LE(m_jobs.GetJobs().size(), TJobTable::kKeptJobs + 1);
}

TEST_F(JobTableTest, ARecordIsThereAsSoonAsAJobIsOver) {
  const TJobTable::TStarted started = m_jobs.Start(m_pass, MakeDevice("a"));
  while (!IsFinal(m_jobs.FindJob(started.jobId)->state)) std::this_thread::yield();
  EXPECT_TRUE(m_jobs.FindRecord(started.jobId + ":record").has_value());
}

TEST(RecordDataTest, IsCleanTextWithoutEmptyLines) {
  TVerdict verdict = MakeVerdict(ECompletion::kFailed,
                                 "bad \xFF"
                                 "byte");
  verdict.covered = "all";
  verdict.excerpt = "out\x1b[1m";
  EXPECT_EQ(ComposeRecordData(verdict, milliseconds(1500)),
            "Verdict: failed: bad ?byte\nCovered: all\nDuration: 1.5 s\nOutput:\nout[1m\n");
}

}  // namespace
}  // namespace hardware
