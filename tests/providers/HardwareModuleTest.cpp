// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <thread>

#include "tests/providers/TFakeMachine.h"
#include "tests/providers/TTinyBroker.h"

namespace hardware {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;
using ::testing::StartsWith;

/// Drives the module as a broker does: by its entry points and tables.
class HardwareModuleTest : public ::testing::Test {
 protected:
  HardwareModuleTest() {
    m_machine.AddProcessors(1, "AMD EPYC");
    m_machine.AddDisk("vda", 64);
    m_machine.AddTool("stress-ng", "[ \"$1\" = --version ] || exec sleep 30");
    m_machine.AddTool("fio", "exit 1");
    m_machine.Write("/proc/sys/kernel/hostname", "server1\n");
    m_machine.Write("/own.conf", "network_seconds = 1\nrubbish\n");
    ::setenv("DIAGSRUNNER_HARDWARE_SYSROOT", m_machine.GetRoot().c_str(), 1);
    ::setenv("DIAGSRUNNER_HARDWARE_CONF", (m_machine.GetRoot() + "/own.conf").c_str(), 1);
    ::setenv("PATH", (m_machine.GetToolFolder() + ":" + m_path).c_str(), 1);
    m_library = ::dlopen(DIAGSRUNNER_HARDWARE_MODULE, RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(m_library, nullptr) << ::dlerror();
    m_instances = Create<CMPIInstanceMI>("DiagsHardware_Create_InstanceMI");
    m_associations = Create<CMPIAssociationMI>("DiagsHardware_Create_AssociationMI");
    m_methods = Create<CMPIMethodMI>("DiagsHardware_Create_MethodMI");
  }

  ~HardwareModuleTest() override {
    Clean();
    ::setenv("PATH", m_path.c_str(), 1);
    ::dlclose(m_library);
  }

  template <typename TTable>
  TTable* Create(const char* name) {
    using TFactory = TTable* (*)(const CMPIBroker*, const CMPIContext*, CMPIStatus*);
    const auto factory = reinterpret_cast<TFactory>(::dlsym(m_library, name));
    EXPECT_NE(factory, nullptr) << name;
    CMPIStatus status{CMPI_RC_OK, nullptr};
    TTable* const table = factory(m_broker.Get(), nullptr, &status);
    EXPECT_EQ(status.rc, CMPI_RC_OK) << name;
    return table;
  }

  void Clean() {
    m_instances->ft->cleanup(m_instances, nullptr, 1);
    m_associations->ft->cleanup(m_associations, nullptr, 1);
    m_methods->ft->cleanup(m_methods, nullptr, 1);
  }

  std::vector<TTinyObject*> Enumerate(const char* className) {
    TTinyObject& result = m_broker.Make();
    const CMPIStatus status = m_instances->ft->enumerateInstances(
        m_instances, nullptr, &result.result, &m_broker.MakePath(className).path, nullptr);
    EXPECT_EQ(status.rc, CMPI_RC_OK) << TTinyBroker::Text(status.msg);
    return result.returned;
  }

  TTinyObject* Get(const TTinyObject& path) {
    TTinyObject& result = m_broker.Make();
    const CMPIStatus status =
        m_instances->ft->getInstance(m_instances, nullptr, &result.result, &path.path, nullptr);
    EXPECT_EQ(status.rc, CMPI_RC_OK) << TTinyBroker::Text(status.msg);
    return result.returned.empty() ? nullptr : result.returned.front();
  }

  std::string Invoke(const TTinyObject& target, const char* method, TTinyObject& in,
                     TTinyObject& out) {
    TTinyObject& result = m_broker.Make();
    const CMPIStatus status = m_methods->ft->invokeMethod(
        m_methods, nullptr, &result.result, &target.path, method, &in.arguments, &out.arguments);
    return status.rc == CMPI_RC_OK
               ? result.Show("return")
               : "error " + std::to_string(status.rc) + " " + TTinyBroker::Text(status.msg);
  }

  // Starts the short stress of cpu0 and returns its job's path.
  TTinyObject* StartStress() {
    TTinyObject& in = m_broker.Make();
    TTinyObject& out = m_broker.Make();
    CMPIValue device{};
    device.ref = &m_broker.MakePath("DRH_Processor", {{"DeviceID", "cpu0"}}).path;
    in.arguments.ft->addArg(&in.arguments, "ManagedElement", &device, CMPI_ref);
    EXPECT_EQ(Invoke(m_test, "RunDiagnostic", in, out), "4096");
    EXPECT_NE(out.Follow("Job"), nullptr);
    return out.Follow("Job");
  }

  TFakeMachine m_machine;
  const std::string m_path = ::getenv("PATH");
  TTinyBroker m_broker;
  void* m_library = nullptr;
  CMPIInstanceMI* m_instances = nullptr;
  CMPIAssociationMI* m_associations = nullptr;
  CMPIMethodMI* m_methods = nullptr;
  TTinyObject& m_test =
      m_broker.MakePath("DRH_DiagnosticTest", {{"Name", "Processor Short Stress"}});
};

TEST(TinyBrokerTest, GivesBackWhatItWasGiven) {
  TTinyBroker broker;
  TTinyObject& object = broker.MakePath("A_B", {{"k", "v"}});
  CMPIValue value{};
  value.uint16 = 7;
  object.instance.ft->setProperty(&object.instance, "n", &value, CMPI_uint16);
  value.ref = &object.path;
  TTinyObject& arguments = broker.Make();
  arguments.arguments.ft->addArg(&arguments.arguments, "r", &value, CMPI_ref);
  EXPECT_EQ(object.Show("n"), "7");
  EXPECT_EQ(object.Show("none"), "null");
  EXPECT_EQ(arguments.Show("r"), "A_B.k=v,n=7");
  EXPECT_EQ(arguments.Follow("r"), &object);
  EXPECT_EQ(broker.Get()->eft->classPathIsA(broker.Get(), &object.path, "CIM_B", nullptr), 1);
  EXPECT_EQ(broker.Get()->eft->classPathIsA(broker.Get(), &object.path, "CIM_C", nullptr), 0);
}

TEST_F(HardwareModuleTest, ReportsASettingThatCannotBeUsed) {
  EXPECT_THAT(m_broker.GetLog(), ElementsAre(HasSubstr("own.conf: line 2")));
}

TEST_F(HardwareModuleTest, ServesInstancesWithTypedProperties) {
  const std::vector<TTinyObject*> devices = Enumerate("DRH_Processor");
  ASSERT_THAT(devices, SizeIs(1));
  EXPECT_EQ(devices[0]->Show("ElementName"), "AMD EPYC CPU 0");
  EXPECT_EQ(devices[0]->Show("SystemName"), "server1");
  EXPECT_EQ(devices[0]->Show("MaxClockSpeed"), "2445");
  const std::vector<TTinyObject*> offers = Enumerate("DRH_AvailableDiagnosticService");
  ASSERT_THAT(offers, SizeIs(3));
  EXPECT_EQ(offers[0]->Show("EstimatedDurationOfService"), "3");
  EXPECT_EQ(offers[0]->Follow("UserOfService")->Show("DeviceID"), "cpu0");
  EXPECT_EQ(offers[0]->Follow("UserOfService")->nameSpace, "root/cimv2");
  EXPECT_EQ(Get(*offers[0]->Follow("ServiceProvided"))->Show("TestTypes"), "3");
}

TEST_F(HardwareModuleTest, NamesItsInstances) {
  TTinyObject& result = m_broker.Make();
  m_instances->ft->enumerateInstanceNames(m_instances, nullptr, &result.result,
                                          &m_broker.MakePath("DRH_DiskDrive").path);
  ASSERT_THAT(result.returned, SizeIs(1));
  EXPECT_EQ(result.returned[0]->ShowPath(),
            "DRH_DiskDrive.CreationClassName=DRH_DiskDrive,DeviceID=vda,"
            "SystemCreationClassName=CIM_ComputerSystem,SystemName=server1");
}

TEST_F(HardwareModuleTest, TellsWhatItCannotServe) {
  TTinyObject& result = m_broker.Make();
  CMPIStatus status = m_instances->ft->getInstance(
      m_instances, nullptr, &result.result,
      &m_broker.MakePath("DRH_Processor", {{"DeviceID", "cpu9"}}).path, nullptr);
  EXPECT_EQ(status.rc, CMPI_RC_ERR_NOT_FOUND);
  EXPECT_THAT(TTinyBroker::Text(status.msg), HasSubstr("cpu9"));
  status = m_instances->ft->deleteInstance(m_instances, nullptr, &result.result, &m_test.path);
  EXPECT_EQ(status.rc, CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_THAT(Invoke(m_test, "RunTest", m_broker.Make(), m_broker.Make()), StartsWith("error 17"));
}

TEST_F(HardwareModuleTest, FollowsAssociationsUnderEveryFilter) {
  const auto count = [this](const char* association, const char* result, const char* role,
                            const char* resultRole) {
    TTinyObject& found = m_broker.Make();
    m_associations->ft->associators(
        m_associations, nullptr, &found.result,
        &m_broker.MakePath("DRH_Processor", {{"DeviceID", "cpu0"}}).path, association, result, role,
        resultRole, nullptr);
    return found.returned.size();
  };
  EXPECT_EQ(count(nullptr, nullptr, nullptr, nullptr), 2U);
  EXPECT_EQ(count("CIM_AvailableDiagnosticService", "CIM_DiagnosticTest", "userofservice",
                  "ServiceProvided"),
            2U);
  EXPECT_EQ(count("CIM_RecordAppliesToElement", nullptr, nullptr, nullptr), 0U);
  EXPECT_EQ(count(nullptr, "CIM_Processor", nullptr, nullptr), 0U);
  EXPECT_EQ(count(nullptr, nullptr, "ServiceProvided", nullptr), 0U);
  EXPECT_EQ(count(nullptr, nullptr, nullptr, "UserOfService"), 0U);
  TTinyObject& names = m_broker.Make();
  m_associations->ft->referenceNames(m_associations, nullptr, &names.result, &m_test.path, nullptr,
                                     nullptr);
  ASSERT_THAT(names.returned, SizeIs(1));
  EXPECT_EQ(names.returned[0]->className, "DRH_AvailableDiagnosticService");
}

TEST_F(HardwareModuleTest, RunsKillsAndRecordsATest) {
  const TTinyObject* const job = StartStress();
  EXPECT_EQ(job->className, "DRH_Job");
  EXPECT_NE(Get(*job)->Show("PercentComplete"), "100");
  TTinyObject& in = m_broker.Make();
  CMPIValue kill{};
  kill.uint16 = 5;
  in.arguments.ft->addArg(&in.arguments, "RequestedState", &kill, CMPI_uint16);
  EXPECT_EQ(Invoke(*job, "RequestStateChange", in, m_broker.Make()), "4096");
  for (int i = 0; i < 1000 && Get(*job)->Show("JobState") != "9"; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  EXPECT_EQ(Get(*job)->Show("PercentComplete"), "100");
  EXPECT_THAT(Get(*job)->Show("ElapsedTime"), HasSubstr(" interval"));
  const std::vector<TTinyObject*> records = Enumerate("DRH_CompletionRecord");
  ASSERT_THAT(records, SizeIs(1));
  EXPECT_EQ(records[0]->Show("CompletionState"), "6");
  EXPECT_THAT(records[0]->Show("InstanceID"), StartsWith(job->Show("InstanceID")));
}

TEST_F(HardwareModuleTest, StaysWhileATestRunsUnlessTheHostEnds) {
  StartStress();
  EXPECT_EQ(m_instances->ft->cleanup(m_instances, nullptr, 0).rc, CMPI_RC_DO_NOT_UNLOAD);
  EXPECT_THAT(Enumerate("DRH_Job"), SizeIs(1));
  Clean();
  EXPECT_EQ(m_instances->ft
                ->enumerateInstances(m_instances, nullptr, &m_broker.Make().result,
                                     &m_broker.MakePath("DRH_Job").path, nullptr)
                .rc,
            CMPI_RC_ERR_FAILED);
}

TEST_F(HardwareModuleTest, EndsABlockingTestWhenTheHostEnds) {
  std::thread blocked([this] {
    const TTinyObject& test =
        m_broker.MakePath("DRH_DiagnosticTest", {{"Name", "Processor Extended Stress"}});
    TTinyObject& in = m_broker.Make();
    TTinyObject& out = m_broker.Make();
    CMPIValue device{};
    device.ref = &m_broker.MakePath("DRH_Processor", {{"DeviceID", "cpu0"}}).path;
    in.arguments.ft->addArg(&in.arguments, "ManagedElement", &device, CMPI_ref);
    EXPECT_EQ(Invoke(test, "RunDiagnostic", in, out), "0");
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  m_instances->ft->cleanup(m_instances, nullptr, 1);
  blocked.join();
}

}  // namespace
}  // namespace hardware
