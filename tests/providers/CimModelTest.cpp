// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "providers/hardware/TCimModel.h"
#include "tests/providers/THardwareFixture.h"

namespace hardware {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

class CimModelTest : public THardwareFixture {
 protected:
  CimModelTest() {
    m_machine.AddProcessors(2, "AMD EPYC");
    m_machine.AddMemory(1024);
    m_machine.AddDisk("vda", 1024);
    m_machine.AddPort("eth0", "virtio_net");
    for (const char* const tool : {"memtester", "fio", "ethtool"}) {
      m_machine.AddTool(tool, "exit 1");
    }
    m_machine.AddTool("stress-ng", "[ \"$1\" = --version ] || exec sleep 30");
    Open();
    m_model = std::make_unique<TCimModel>(*m_hardware, "server1");
  }

  static TCimValue Find(const TCimInstance& instance, const std::string& name) {
    for (const auto& [own, value] : instance.properties) {
      if (own == name) return value;
    }
    return {};
  }

  static std::string Text(const TCimInstance& instance, const std::string& name) {
    return std::get<std::string>(Find(instance, name));
  }

  static std::uint16_t Number(const TCimInstance& instance, const std::string& name) {
    return std::get<std::uint16_t>(Find(instance, name));
  }

  TCimPath TestPath(const std::string& name) {
    TCimPath path{"DRH_DiagnosticTest", {}, {}};
    path.keys["Name"] = name;
    return path;
  }

  TCimPath DevicePath(const std::string& className, const std::string& id) {
    TCimPath path{className, {}, {}};
    path.keys["DeviceID"] = id;
    return path;
  }

  std::uint32_t Run(const std::string& method, const std::string& test, const TCimValue& element) {
    m_out.clear();
    return m_model->Invoke(TestPath(test), method, {{"ManagedElement", element}}, m_out);
  }

  std::uint32_t Request(const TCimPath& job, TCimValue state) {
    TCimArguments none;
    return m_model->Invoke(job, "RequestStateChange", {{"requestedstate", std::move(state)}}, none);
  }

  std::unique_ptr<TCimModel> m_model;
  TCimArguments m_out;
};

TEST_F(CimModelTest, DevicesCarryKeysAndNames) {
  const std::vector<TCimInstance> processors = m_model->Enumerate("DRH_Processor");
  ASSERT_THAT(processors, SizeIs(2));
  EXPECT_EQ(Text(processors[1], "DeviceID"), "cpu1");
  EXPECT_EQ(Text(processors[1], "SystemName"), "server1");
  EXPECT_EQ(Text(processors[1], "CreationClassName"), "DRH_Processor");
  EXPECT_EQ(Text(processors[1], "ElementName"), "AMD EPYC CPU 1");
  EXPECT_EQ(std::get<std::uint32_t>(Find(processors[1], "MaxClockSpeed")), 2445U);
  EXPECT_EQ(std::get<std::uint64_t>(Find(m_model->Enumerate("drh_memory").at(0), "NumberOfBlocks")),
            1048576U);
  EXPECT_EQ(
      std::get<std::uint64_t>(Find(m_model->Enumerate("DRH_DiskDrive").at(0), "MaxMediaSize")),
      1048576U);
  EXPECT_EQ(Text(m_model->Enumerate("DRH_EthernetPort").at(0), "PermanentAddress"), "02fc00000001");
}

TEST_F(CimModelTest, EveryInstanceIsFoundByItsOwnPath) {
  Run("RunDiagnosticService", "Processor Short Stress", DevicePath("DRH_Processor", "cpu0"));
  m_hardware->GetJobs().Shutdown();
  for (const char* const name : {"DRH_Processor", "DRH_Memory", "DRH_DiskDrive", "DRH_EthernetPort",
                                 "DRH_DiagnosticTest", "DRH_AvailableDiagnosticService", "DRH_Job",
                                 "DRH_CompletionRecord", "DRH_RecordAppliesToElement"}) {
    const std::vector<TCimInstance> instances = m_model->Enumerate(name);
    EXPECT_FALSE(instances.empty()) << name;
    for (const TCimInstance& instance : instances) {
      EXPECT_TRUE(IsSameObject(m_model->Get(instance.path).path, instance.path)) << name;
    }
  }
}

TEST_F(CimModelTest, WhatIsNotThereIsRefusedByName) {
  const auto statusOf = [this](const TCimPath& path) {
    try {
      m_model->Get(path);
    } catch (const TCimError& error) {
      return std::to_string(error.GetStatus()) + " " + error.what();
    }
    return std::string("found");
  };
  EXPECT_EQ(statusOf(DevicePath("DRH_Processor", "cpu9")),
            "6 DRH_Processor.DeviceID=\"cpu9\": no such instance");
  EXPECT_THAT(statusOf({"DRH_Processor", {}, {}}), StartsWith("6 "));
  EXPECT_THAT(statusOf({"CIM_Fan", {}, {}}), StartsWith("5 CIM_Fan"));
  TCimPath foreign = DevicePath("DRH_Processor", "cpu0");
  foreign.keys["SystemName"] = "server2";
  EXPECT_THAT(statusOf(foreign), StartsWith("6 "));
}

TEST_F(CimModelTest, OffersJoinTestAndDeviceWithTheirDuration) {
  const std::vector<TCimInstance> offers = m_model->Enumerate("DRH_AvailableDiagnosticService");
  ASSERT_THAT(offers, SizeIs(8));
  const TCimInstance& extended = offers[1];
  EXPECT_EQ(std::get<TCimPath>(Find(extended, "ServiceProvided")).keys.at("Name"),
            "Processor Extended Stress");
  EXPECT_EQ(std::get<TCimPath>(Find(extended, "UserOfService")).keys.at("DeviceID"), "cpu0");
  EXPECT_EQ(Number(extended, "EstimatedDurationOfService"), 4);
  EXPECT_EQ(std::get<std::uint32_t>(Find(extended, "EstimatedDurationQualifier")), 1U);
}

TEST_F(CimModelTest, ReferencesLeadFromEitherEnd) {
  EXPECT_THAT(m_model->FindReferences(DevicePath("DRH_Processor", "cpu0")), SizeIs(2));
  EXPECT_THAT(m_model->FindReferences(TestPath("Processor Short Stress")), SizeIs(2));
  EXPECT_THAT(m_model->FindReferences(DevicePath("DRH_Processor", "cpu9")), IsEmpty());
}

TEST_F(CimModelTest, AStartedTestGivesAJobAndThenARecord) {
  EXPECT_EQ(Run("RunDiagnostic", "Processor Short Stress", DevicePath("DRH_Processor", "cpu0")),
            4096U);
  const TCimPath path = std::get<TCimPath>(m_out.at("Job"));
  const TCimInstance job = m_model->Get(path);
  EXPECT_LT(Number(job, "PercentComplete"), 100);
  EXPECT_EQ(Text(job, "Name"), "Processor Short Stress");
  EXPECT_THAT(m_model->Enumerate("DRH_CompletionRecord"), IsEmpty());

  EXPECT_EQ(Request(path, std::uint64_t{5}), 4096U);
  m_hardware->GetJobs().WaitFor(path.keys.at("InstanceID"));
  EXPECT_EQ(Number(m_model->Get(path), "PercentComplete"), 100);
  EXPECT_EQ(Number(m_model->Get(path), "JobState"), 9);
  const TCimInstance record = m_model->Enumerate("DRH_CompletionRecord").at(0);
  EXPECT_THAT(Text(record, "InstanceID"), StartsWith(path.keys.at("InstanceID")));
  EXPECT_EQ(Text(record, "ServiceName"), "Processor Short Stress");
  EXPECT_EQ(Text(record, "ManagedElementName"), "AMD EPYC CPU 0");
  EXPECT_EQ(Number(record, "CompletionState"), 6);
  EXPECT_THAT(Text(record, "RecordData"), HasSubstr("killed on request"));
  const TCimInstance applies = m_model->Enumerate("DRH_RecordAppliesToElement").at(0);
  EXPECT_TRUE(IsSameObject(std::get<TCimPath>(Find(applies, "Antecedent")), record.path));
  EXPECT_EQ(std::get<TCimPath>(Find(applies, "Dependent")).keys.at("DeviceID"), "cpu0");
}

TEST_F(CimModelTest, TheOtherMethodReturnsZeroAtOnce) {
  EXPECT_EQ(
      Run("RunDiagnosticService", "Processor Extended Stress", DevicePath("DRH_Processor", "cpu0")),
      0U);
  EXPECT_EQ(m_out.count("Job"), 1U);
}

TEST_F(CimModelTest, AnExtendedTestReturnsAtItsEnd) {
  m_machine.AddTool("stress-ng", "exit 1");
  EXPECT_EQ(Run("RunDiagnostic", "Processor Extended Stress", DevicePath("DRH_Processor", "cpu0")),
            0U);
  EXPECT_EQ(Number(m_model->Get(std::get<TCimPath>(m_out.at("Job"))), "JobState"), 7);
}

TEST_F(CimModelTest, ABusyDeviceRefusesASecondTest) {
  for (const char* const method : {"RunDiagnostic", "RunDiagnosticService"}) {
    Run("RunDiagnosticService", "Processor Short Stress", DevicePath("DRH_Processor", "cpu0"));
    EXPECT_EQ(Run(method, "Processor Extended Stress", DevicePath("DRH_Processor", "cpu0")), 6U);
    EXPECT_THAT(m_out, IsEmpty());
  }
}

TEST_F(CimModelTest, AnElementThatTheTestIsNotForIsRefused) {
  const std::vector<TCimValue> bad = {TCimValue(),
                                      std::string("cpu0"),
                                      std::uint64_t{1},
                                      TCimPath{"DRH_Processor", {}, {}},
                                      DevicePath("DRH_Processor", "cpu9"),
                                      DevicePath("DRH_Processor", "vda"),
                                      DevicePath("DRH_DiskDrive", "cpu0"),
                                      DevicePath("DRH_DiskDrive", "vda")};
  for (const TCimValue& element : bad) {
    EXPECT_EQ(Run("RunDiagnosticService", "Processor Short Stress", element), 5U);
    EXPECT_THAT(m_out, IsEmpty());
  }
  TCimArguments out;
  EXPECT_EQ(m_model->Invoke(TestPath("Processor Short Stress"), "RunDiagnostic", {}, out), 5U);
  EXPECT_THAT(m_model->Enumerate("DRH_Job"), IsEmpty());
}

struct TRequestRow {
  TCimValue state;
  std::uint32_t answer;
};

TEST_F(CimModelTest, OnlyAnEndCanBeRequested) {
  Run("RunDiagnosticService", "Processor Short Stress", DevicePath("DRH_Processor", "cpu0"));
  const TCimPath job = std::get<TCimPath>(m_out.at("Job"));
  const std::vector<TRequestRow> rows = {
      {TCimValue(), 5},      {std::string("5"), 5},     {std::uint64_t{0}, 5},
      {std::uint64_t{2}, 1}, {std::uint64_t{3}, 1},     {std::uint64_t{6}, 1},
      {std::uint64_t{7}, 5}, {std::uint64_t{70000}, 5}, {std::uint16_t{4}, 4096}};
  for (const TRequestRow& row : rows) EXPECT_EQ(Request(job, row.state), row.answer);
  m_hardware->GetJobs().WaitFor(job.keys.at("InstanceID"));
  EXPECT_EQ(Number(m_model->Get(job), "JobState"), 8);
  EXPECT_EQ(Request(job, std::uint64_t{5}), 4097U);
}

TEST_F(CimModelTest, ATimeoutForAnEndIsNotPromised) {
  Run("RunDiagnosticService", "Processor Short Stress", DevicePath("DRH_Processor", "cpu0"));
  TCimArguments none;
  EXPECT_EQ(
      m_model->Invoke(
          std::get<TCimPath>(m_out.at("Job")), "RequestStateChange",
          {{"RequestedState", std::uint64_t{5}}, {"TimeoutPeriod", TCimTime{1000000, true}}}, none),
      4098U);
}

TEST_F(CimModelTest, UnknownMethodsAndTargetsAreRefused) {
  EXPECT_THROW(Run("RunTest", "Processor Short Stress", {}), TCimError);
  EXPECT_THROW(Run("RunDiagnostic", "No Such Test", {}), TCimError);
  EXPECT_THROW(Request(DevicePath("DRH_Processor", "cpu0"), std::uint64_t{5}), TCimError);
  TCimPath job{"DRH_Job", {}, {}};
  job.keys["InstanceID"] = "DRH:none";
  EXPECT_THROW(Request(job, std::uint64_t{5}), TCimError);
}

TEST_F(CimModelTest, WhatIsWithheldIsListed) {
  m_rights.canLockAnyMemory = false;
  Open();
  TCimModel model(*m_hardware, "server1");
  const std::vector<TCimInstance> unoffered = model.Enumerate("DRH_UnofferedTest");
  ASSERT_THAT(unoffered, SizeIs(2));
  EXPECT_EQ(Text(unoffered[1], "ServiceName"), "Memory Short Pattern");
  EXPECT_EQ(Text(unoffered[1], "ElementName"), "memory0");
  EXPECT_EQ(Text(unoffered[1], "Reason"), "the limit for locked memory is too low");
  EXPECT_TRUE(IsSameObject(model.Get(unoffered[0].path).path, unoffered[0].path));
}

}  // namespace
}  // namespace hardware
