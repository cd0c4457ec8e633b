// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/setup/RunningJobs.h"
#include "tests/platform/setup/TScriptedOperations.h"

namespace NZEPQEL20::setup {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TCIMInstanceData MakeJob(const std::string& nameSpace, const char* id, const TCIMValue& state) {
  TCIMInstanceData job;
  job.path = TCIMReference(nameSpace, "X_Job", {{"InstanceID", id}});
  job.Set("JobState", state);
  return job;
}

const TIsOurs kAll = [](const TCIMReference&) { return true; };

TEST(RunningJobsTest, LeavesTheJobsOfOthersAlone) {
  TScriptedOperations operations;
  operations.jobs["root/cimv2"] = {MakeJob("root/cimv2", "mine", TCIMValue::UInt16(4)),
                                   MakeJob("root/cimv2", "another's", TCIMValue::UInt16(4))};
  const TCIMReference mine = operations.jobs["root/cimv2"][0].path;
  EXPECT_EQ(KillJobs(operations, [&](const TCIMReference& job) { return job == mine; }), 1U);
  EXPECT_THAT(operations.invoked,
              ElementsAre("root/cimv2:X_Job.InstanceID=\"mine\" RequestStateChange 5"));
}

TEST(RunningJobsTest, KillsEveryJobThatHasNotEnded) {
  TScriptedOperations operations;
  for (std::uint16_t state = 2; state <= 11; ++state) {
    operations.jobs["root/cimv2"].push_back(
        MakeJob("root/cimv2", std::to_string(state).c_str(), TCIMValue::UInt16(state)));
  }
  EXPECT_EQ(KillJobs(operations, kAll), 6U);
  EXPECT_THAT(operations.invoked,
              ElementsAre("root/cimv2:X_Job.InstanceID=\"2\" RequestStateChange 5",
                          "root/cimv2:X_Job.InstanceID=\"3\" RequestStateChange 5",
                          "root/cimv2:X_Job.InstanceID=\"4\" RequestStateChange 5",
                          "root/cimv2:X_Job.InstanceID=\"5\" RequestStateChange 5",
                          "root/cimv2:X_Job.InstanceID=\"6\" RequestStateChange 5",
                          "root/cimv2:X_Job.InstanceID=\"11\" RequestStateChange 5"));
}

TEST(RunningJobsTest, TakesAJobWhoseStateCannotBeReadForRunning) {
  TScriptedOperations operations;
  operations.jobs["root/cimv2"] = {MakeJob("root/cimv2", "null", TCIMValue()),
                                   MakeJob("root/cimv2", "text", TCIMValue("busy"))};
  operations.jobs["root/cimv2"].push_back({TCIMReference("root/cimv2", "X_Job", {}), {}});
  EXPECT_EQ(KillJobs(operations, kAll), 3U);
}

TEST(RunningJobsTest, GoesOnPastWhateverFails) {
  TScriptedOperations operations;
  operations.namespaces = {"root/a", "root/b"};
  operations.jobs["root/b"] = {MakeJob("root/b", "1", TCIMValue::UInt16(4)),
                               MakeJob("root/b", "2", TCIMValue::UInt16(4))};
  operations.refusing = {"root/a", "root/b:X_Job.InstanceID=\"1\""};
  EXPECT_EQ(KillJobs(operations, kAll), 1U);
  EXPECT_THAT(operations.invoked, ElementsAre("root/b:X_Job.InstanceID=\"2\" RequestStateChange "
                                              "5"));
}

TEST(RunningJobsTest, CountsTheJobsThatTookTheRequest) {
  TScriptedOperations operations;
  operations.jobs["root/cimv2"] = {MakeJob("root/cimv2", "1", TCIMValue::UInt16(4))};
  const auto count = [&operations](const TCIMValue& answer) {
    return KillJobs(
        operations, {operations.jobs["root/cimv2"][0].path},
        [&answer](const TCIMReference&, const std::string&, TKeyMap&) { return answer; });
  };
  EXPECT_EQ(count(TCIMValue::UInt32(0)), 1U);
  EXPECT_EQ(count(TCIMValue::UInt32(4096)), 1U);
  EXPECT_EQ(count(TCIMValue::UInt32(1)), 0U);
  EXPECT_EQ(count(TCIMValue()), 0U);
}

TEST(RunningJobsTest, HasNothingToDoWithoutJobs) {
  TScriptedOperations operations;
  EXPECT_EQ(KillJobs(operations, kAll), 0U);
  EXPECT_THAT(operations.invoked, IsEmpty());
}

TEST(ScriptedOperationsTest, RefuseWhatTheyWereNotSetUpFor) {
  TScriptedOperations operations;
  EXPECT_THROW(operations.GetProviders(), TQELException);
  EXPECT_THROW(operations.GetClass("root/cimv2", "A"), TQELException);
  EXPECT_THROW(operations.EnumerateInstances("root/cimv2", "A", {}), TQELException);
}

TEST(RunningJobsTest, KillsOfTheGivenJobsThoseThatRun) {
  TScriptedOperations operations;
  operations.jobs["root/cimv2"] = {MakeJob("root/cimv2", "mine", TCIMValue::UInt16(4)),
                                   MakeJob("root/cimv2", "ended", TCIMValue::UInt16(7)),
                                   MakeJob("root/cimv2", "another's", TCIMValue::UInt16(4))};
  const TCIMReference gone("root/cimv2", "X_Job", {{"InstanceID", "gone"}});
  const std::vector<TCIMInstanceData> jobs = operations.jobs["root/cimv2"];
  const TInvoke invoke = [&operations](const TCIMReference& job, const std::string& method,
                                       TKeyMap& parameters) {
    return operations.InvokeMethod(job, method, parameters);
  };
  EXPECT_EQ(KillJobs(operations, {gone, jobs[1].path, jobs[0].path}, invoke), 1U);
  EXPECT_THAT(operations.invoked,
              ElementsAre("root/cimv2:X_Job.InstanceID=\"mine\" RequestStateChange 5"));
}

}  // namespace
}  // namespace NZEPQEL20::setup
