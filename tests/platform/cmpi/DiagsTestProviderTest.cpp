// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/cmpi/TCMPIOperations.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {
namespace {

/// The provider of tests with known ends, driven as the host drives any.
class DiagsTestProviderTest : public testing::Test {
 protected:
  void SetUp() override {
    auto classes = std::make_shared<TClassRepository>();
    for (const char* file : {"cim_core", "cim_jobs", "cim_devices", "cim_diagnostics"}) {
      const std::string path = std::string(DIAGSRUNNER_SCHEMA_DIR) + '/' + file + ".mof";
      ASSERT_TRUE(classes->Load(path).empty()) << path;
    }
    ASSERT_TRUE(classes->Load(std::string(DIAGSTEST_SOURCE_DIR) + "/diagstest.mof").empty());
    TRegistrations registrations;
    registrations.Load(std::string(DIAGSTEST_BINARY_DIR) + "/diagstest.registration");
    m_operations = std::make_unique<TCMPIOperations>(classes, registrations);
    m_operations->OpenLibraries();
    ASSERT_TRUE(m_operations->GetProblems().empty()) << m_operations->GetProblems().front();
  }

  std::vector<TCIMInstanceData> Enumerate(const std::string& className) {
    std::vector<TCIMInstanceData> found;
    m_operations->EnumerateInstances("root/cimv2", className, [&](TCIMInstanceData&& data) {
      found.push_back(std::move(data));
      return true;
    });
    return found;
  }

  TCIMReference FindTest(const std::string& name) {
    for (const auto& test : Enumerate("CIM_DiagnosticTest")) {
      if (test.path.FindKey("Name")->ToString(10) == name) return test.path;
    }
    return {};
  }

  /// Runs the test, and answers with its out-parameters.
  TKeyMap Run(const std::string& name, const std::string& method = "RunDiagnostic") {
    const TCIMReference device = Enumerate("CIM_DiskDrive").at(0).path;
    TKeyMap parameters = {{"ManagedElement", TCIMValue(device)}};
    m_operations->InvokeMethod(FindTest(name), method, parameters);
    return parameters;
  }

  std::unique_ptr<TCMPIOperations> m_operations;
};

TEST_F(DiagsTestProviderTest, EnumeratingASuperclassReachesTheProvidersOwnClass) {
  const auto offers = Enumerate("CIM_AvailableDiagnosticService");
  ASSERT_EQ(offers.size(), 11U);
  EXPECT_EQ(offers[0].path.GetClassName(), "TST_AvailableDiagnosticService");
  EXPECT_EQ(offers[0].path.GetNamespaceName(), "root/cimv2");
}

TEST_F(DiagsTestProviderTest, AnOfferLeadsToItsTest) {
  const auto offer = Enumerate("CIM_AvailableDiagnosticService").at(0);
  ASSERT_EQ(offer.path.GetKeys().size(), 2U);
  const auto test = static_cast<TCIMReference>(offer.Find("ServiceProvided")->value);
  EXPECT_EQ(test.GetClassName(), "TST_DiagnosticTest");
  EXPECT_EQ(m_operations->GetInstance(test).Find("Name")->value.ToString(10), "TestPass");
}

TEST_F(DiagsTestProviderTest, ARunLeavesExactlyTheJobInTheParameters) {
  const TKeyMap out = Run("TestPass");
  ASSERT_EQ(out.size(), 1U);
  const auto job = static_cast<TCIMReference>(out.at("Job"));
  const auto instance = m_operations->GetInstance(job);
  EXPECT_EQ(instance.Find("PercentComplete")->value.ToString(10), "100");
  EXPECT_EQ(instance.Find("JobState")->value.ToString(10), "7");
}

TEST_F(DiagsTestProviderTest, ASlowJobGrowsWithEveryRead) {
  const auto job = static_cast<TCIMReference>(Run("TestPolls").at("Job"));
  for (const char* percent : {"10", "40", "70", "100", "100"}) {
    EXPECT_EQ(m_operations->GetInstance(job).Find("PercentComplete")->value.ToString(10), percent);
  }
}

TEST_F(DiagsTestProviderTest, AKilledJobHasAnAbortedRecord) {
  const auto job = static_cast<TCIMReference>(Run("TestHang").at("Job"));
  TKeyMap parameters = {{"RequestedState", TCIMValue("5")}};
  EXPECT_EQ(m_operations->InvokeMethod(job, "RequestStateChange", parameters).ToUnsigned(), 0U);
  EXPECT_TRUE(parameters.empty());
  EXPECT_EQ(m_operations->GetInstance(job).Find("JobState")->value.ToString(10), "9");
  const auto records = Enumerate("CIM_DiagnosticCompletionRecord");
  ASSERT_FALSE(records.empty());
  EXPECT_EQ(records.back().Find("CompletionState")->value.ToString(10), "6");
}

struct TJobRow {
  const char* test;
  const char* method;
  std::size_t jobs;
};
void PrintTo(const TJobRow& row, std::ostream* out) {
  *out << row.test << ' ' << row.method;
}

TEST_F(DiagsTestProviderTest, JobsComeBackFromTheMethodsThatHaveThem) {
  for (const TJobRow& row :
       {TJobRow{"TestService", "RunDiagnostic", 0},
        TJobRow{"TestService", "RunDiagnosticService", 1}, TJobRow{"TestNone", "RunDiagnostic", 0},
        TJobRow{"TestNone", "RunDiagnosticService", 0},
        TJobRow{"TestFail", "RunDiagnosticService", 1}}) {
    EXPECT_EQ(Run(row.test, row.method).size(), row.jobs) << testing::PrintToString(row);
  }
}

TEST_F(DiagsTestProviderTest, AFailedCallNamesOperationProviderAndTheProvidersWords) {
  TKeyMap parameters = {{"Other", TCIMValue("kept")}};
  try {
    m_operations->InvokeMethod(FindTest("TestPass"), "NoSuchMethod", parameters);
    FAIL() << "no exception";
  } catch (const TQELException& failure) {
    const std::string what = failure.what();
    EXPECT_EQ(failure.GetCIMStatus(), 17U);
    EXPECT_TRUE(failure.GetStatusCode() == TQELStatusCode::kCIMError);
    for (const char* part : {"InvokeMethod NoSuchMethod of", "TST_DiagnosticTest", "DiagsTest (",
                             "libdiagstest.so): "}) {
      EXPECT_NE(what.find(part), std::string::npos) << what;
    }
  }
  EXPECT_EQ(parameters.size(), 1U);
}

TEST_F(DiagsTestProviderTest, AnInstanceThatIsNotThereThrowsNotFound) {
  const TCIMReference path("root/cimv2", "TST_ConcreteJob", {{"InstanceID", TCIMValue("none")}});
  try {
    m_operations->GetInstance(path);
    FAIL() << "no exception";
  } catch (const TQELException& failure) {
    EXPECT_EQ(failure.GetCIMStatus(), 6U);
  }
}

TEST_F(DiagsTestProviderTest, TwoThreadsWorkAtOnce) {
  std::vector<std::size_t> counts(2);
  const auto work = [&](std::size_t index) {
    for (int i = 0; i < 50; ++i) counts[index] += Enumerate("CIM_DiagnosticTest").size();
  };
  std::thread other(work, 1);
  work(0);
  other.join();
  EXPECT_EQ(counts[0], 550U);
  EXPECT_EQ(counts[1], 550U);
}

TEST_F(DiagsTestProviderTest, ProvidersAreListedWithTheirClasses) {
  const auto providers = m_operations->GetProviders();
  ASSERT_EQ(providers.size(), 1U);
  EXPECT_EQ(providers[0].name, "DiagsTest");
  EXPECT_EQ(providers[0].classNames.size(), 6U);
  EXPECT_EQ(m_operations->GetNamespaces(), std::vector<std::string>{"root/cimv2"});
}

}  // namespace
}  // namespace NZEPQEL20
