// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

const char kNotFound[] = "DiagsRunner::HandleConcrete concreteJobID not found for Fusion-io diags.";

/// Where the job of one vendor's tests is not the one that carries the result.
class JobIdentifierTest : public TRunnerTest {
 protected:
  static TCIMReference Record(const std::string& identifier,
                              const std::string& className = "FIO_DiagnosticCompletionRecord") {
    return TCIMReference(kNamespaceText, className, {{"InstanceID", TCIMValue(identifier)}});
  }
  static TCIMReference Device(const std::string& deviceID) {
    return TCIMReference(kNamespaceText, "FIO_Drive", {{"DeviceID", TCIMValue(deviceID)}});
  }
  /// Ends a job of `testID` at once; the identifier that is kept.
  std::string Track(const std::string& testID) {
    DiagsRunner& runner = Start();
    TAccess::DiagNS(runner)[testID] = TCIMValue("cmpi");
    const TObjectPtr job = m_world.AddJob("j", {{100, 7}});
    std::string result;
    TAccess::HandleConcrete(runner, job->GetPath().Bind(m_world.GetRoot()), result, testID, m_host);
    EXPECT_EQ(result, "No Results.\n");
    return TAccess::Finished(runner).at(testID);
  }
};

TEST_F(JobIdentifierTest, ComesFromTheRecordOfTheDevice) {
  m_world.AddApplies(Record("other"), Device("dev1"));
  m_world.AddApplies(Record("mine"), Device("dev0"));
  EXPECT_EQ(Track("Fusion-io:card:diag service,dev0,e"), "mine");
  const TLines logs = Logs();
  ASSERT_GE(logs.size(), 7U);
  EXPECT_EQ(
      TLines(logs.begin() + 1, logs.begin() + 7),
      (TLines{"DiagsRunner::HandleConcrete Antecedent = "
              "root/cimv2:FIO_DiagnosticCompletionRecord.InstanceID=\"other\"",
              "DiagsRunner::HandleConcrete Dependent = root/cimv2:FIO_Drive.DeviceID=\"dev1\"",
              "matchDeviceID: \"dev0\"",
              "DiagsRunner::HandleConcrete Antecedent = "
              "root/cimv2:FIO_DiagnosticCompletionRecord.InstanceID=\"mine\"",
              "DiagsRunner::HandleConcrete Dependent = root/cimv2:FIO_Drive.DeviceID=\"dev0\"",
              "matchDeviceID: \"dev0\""}));
  EXPECT_EQ(Count("find root CIM_RecordAppliesToElement {nspID=cmpi}"), 1U);
  EXPECT_EQ(Count("enumerate CIM_RecordAppliesToElement deep=1"), 1U);
}

TEST_F(JobIdentifierTest, IsThatOfTheLastRecordOfTheDevice) {
  m_world.AddApplies(Record("first"), Device("dev0"));
  m_world.AddApplies(Record("last"), Device("dev0"));
  m_world.AddApplies(Record("other"), Device("dev00"));
  EXPECT_EQ(Track("FIO:card:diag service,dev0,e"), "last");
}

TEST_F(JobIdentifierTest, PassesOverWhatIsNoCompletionRecord) {
  m_world.AddApplies(Record("mine"), Device("dev0"));
  m_world.AddApplies(Record("service", "FIO_DiagnosticServiceRecord"), Device("dev0"));
  EXPECT_EQ(Track("ZEP:card:diag service,dev0,e"), "mine");
  EXPECT_EQ(Count("log3 matchDeviceID"), 1U);
}

TEST_F(JobIdentifierTest, IsEmptyAndKeptWhenThereIsNoRecord) {
  m_world.AddApplies(Record("other"), Device("dev1"));
  EXPECT_EQ(Track("Fusion-io:card:diag service,dev0,e"), "");
  EXPECT_THAT(Logs(), Contains(kNotFound));
}

TEST_F(JobIdentifierTest, IsEmptyWhenNoProviderHasTheAssociation) {
  EXPECT_EQ(Track("Fusion-io:card:diag service,dev0,e"), "");
  EXPECT_EQ(Count("enumerate CIM_RecordAppliesToElement"), 0U);
}

TEST_F(JobIdentifierTest, IsTheJobsOwnForEveryOtherTest) {
  m_world.AddApplies(Record("mine"), Device("dev0"));
  for (const char* const name : {"Fusion-io:card", "x:diag service", "fio:card:diag service",
                                 "Fusion-io diag service", "FIO:card:Diag service"}) {
    SCOPED_TRACE(name);
    End();
    EXPECT_EQ(Track(std::string(name) + ",dev0,e"), "j");
    EXPECT_THAT(Logs(), Not(Contains(HasSubstr("Antecedent"))));
  }
}

TEST_F(JobIdentifierTest, DependsOnTheNameAndNotOnTheRestOfTheIdentifier) {
  m_world.AddApplies(Record("mine"), Device("FIO:d"));
  EXPECT_EQ(Track("plain,FIO:d,x:diag service"), "j");
}

}  // namespace
}  // namespace scripted
