// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <set>

#include "providers/hardware/Text.h"
#include "tests/providers/THardwareFixture.h"

namespace hardware {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class HardwareOfferTest : public THardwareFixture {
 protected:
  void AddAllTools() {
    for (const char* const tool : {"stress-ng", "memtester", "fio", "smartctl", "nvme"}) {
      m_machine.AddTool(tool, "exit 1");
    }
    m_machine.AddTool("ethtool", "echo 'supports-test: no'");
  }
};

TEST_F(HardwareOfferTest, EveryDeviceHasTheTestsThatItSupports) {
  AddAllTools();
  m_machine.AddProcessors(2, "AMD EPYC");
  m_machine.AddMemory(1024);
  m_machine.AddDisk("vda", 1024);
  m_machine.AddPort("eth0", "virtio_net");
  Open();
  EXPECT_THAT(ListOffers(),
              ElementsAre("Processor Short Stress on cpu0", "Processor Extended Stress on cpu0",
                          "Processor Short Stress on cpu1", "Processor Extended Stress on cpu1",
                          "Memory Short Pattern on memory0", "Memory Extended Pattern on memory0",
                          "DiskDefault Read Verify on vda", "Network Link Check on eth0"));
  EXPECT_THAT(m_hardware->GetView()->unoffered, IsEmpty());
}

TEST_F(HardwareOfferTest, ADriveWithASelfTestIsNotReadInstead) {
  AddAllTools();
  m_machine.AddTool("smartctl",
                    "echo '{\"smartctl\":{\"exit_status\":0},\"ata_smart_data\":"
                    "{\"capabilities\":{\"self_tests_supported\":true}}}'");
  m_machine.AddTool("nvme", "echo '{\"oacs\":23}'");
  m_machine.AddDisk("sda", 1024);
  m_machine.AddDisk("nvme0n1", 1024);
  Open();
  EXPECT_THAT(ListOffers(), ElementsAre("DiskDefault NVMe Self-Test on nvme0n1",
                                        "DiskDefault SMART Self-Test on sda"));
}

TEST_F(HardwareOfferTest, ADriveWithoutASelfTestIsReadInstead) {
  AddAllTools();
  m_machine.AddTool("smartctl", "echo '{\"smartctl\":{\"exit_status\":4}}'; exit 4");
  m_machine.AddTool("nvme", "echo '{\"oacs\":7}'");
  m_machine.AddDisk("sda", 1024);
  m_machine.AddDisk("nvme0n1", 1024);
  Open();
  EXPECT_THAT(ListOffers(),
              ElementsAre("DiskDefault Read Verify on nvme0n1", "DiskDefault Read Verify on sda"));
  EXPECT_THAT(m_hardware->GetView()->unoffered, IsEmpty());
}

TEST_F(HardwareOfferTest, ADriverWithASelfTestTakesThePlaceOfTheLinkCheck) {
  AddAllTools();
  m_machine.AddTool("ethtool", "echo 'driver: igb'; echo 'supports-test: yes'");
  m_machine.AddPort("eth0", "igb");
  Open();
  EXPECT_THAT(ListOffers(), ElementsAre("Network Driver Self-Test on eth0"));
}

TEST_F(HardwareOfferTest, ADeviceIsAskedOnce) {
  AddAllTools();
  m_machine.AddTool("smartctl", "echo asked >>" + m_machine.GetRoot() +
                                    "/asked; echo '{\"smartctl\":{\"exit_status\":4}}'");
  m_machine.AddDisk("sda", 1024);
  Open();
  for (int i = 0; i < 3; ++i) m_hardware->Refresh();
  EXPECT_EQ(m_machine.Read("/asked"), "asked\n");
}

TEST_F(HardwareOfferTest, MissingRightsAreNamedWithTheirRemedy) {
  AddAllTools();
  m_machine.AddTool("ethtool", "echo 'supports-test: yes'");
  m_machine.AddMemory(1024);
  m_machine.AddPort("eth0", "igb");
  m_rights = {false, false, false, 8U << 20U};
  Open();
  EXPECT_THAT(ListOffers(), ElementsAre("Network Link Check on eth0"));
  const auto view = m_hardware->GetView();
  ASSERT_THAT(view->unoffered, SizeIs(3));
  EXPECT_EQ(view->unoffered[0].serviceName, "Memory Extended Pattern");
  EXPECT_EQ(view->unoffered[1].serviceName, "Memory Short Pattern");
  EXPECT_EQ(view->unoffered[1].remedy, "run as root, or raise the limit (ulimit -l) to 16384");
  EXPECT_EQ(view->unoffered[2].serviceName, "Network Driver Self-Test");
  EXPECT_EQ(view->unoffered[2].remedy, "run as root");
  EXPECT_EQ(view->unoffered[2].deviceNames, "eth0");
}

TEST_F(HardwareOfferTest, ADiskWithoutItsDeviceFileIsWithheld) {
  AddAllTools();
  m_machine.AddDisk("vda", 1024);
  ::unlink((m_machine.GetRoot() + "/dev/vda").c_str());
  Open();
  EXPECT_THAT(ListOffers(), IsEmpty());
  const auto view = m_hardware->GetView();
  ASSERT_THAT(view->unoffered, SizeIs(1));
  EXPECT_THAT(view->unoffered[0].reason, HasSubstr("/dev/vda cannot be read: No such file"));
  EXPECT_THAT(view->unoffered[0].remedy, HasSubstr("check that the device file"));
}

TEST_F(HardwareOfferTest, AProbeWithoutTheRightForItIsWithheldAndTheDiskIsRead) {
  AddAllTools();
  m_machine.AddTool("smartctl",
                    "echo '{\"smartctl\":{\"exit_status\":2,\"messages\":[{\"string\":\"Smartctl "
                    "open device: /dev/sda failed: Permission denied\"}]}}'; exit 2");
  m_machine.AddDisk("sda", 1024);
  Open();
  EXPECT_THAT(ListOffers(), ElementsAre("DiskDefault Read Verify on sda"));
  ASSERT_THAT(m_hardware->GetView()->unoffered, SizeIs(1));
  EXPECT_EQ(m_hardware->GetView()->unoffered[0].remedy, "run as root");
}

TEST_F(HardwareOfferTest, OneReasonForManyDevicesIsOneEntry) {
  m_machine.AddProcessors(200, "AMD EPYC");
  m_machine.AddTool("fio", "exit 1");
  TTestTools tools(m_config, THostFiles(m_machine.GetRoot()), m_rights,
                   TToolFinder(m_machine.GetToolFolder()));
  EXPECT_EQ(tools.CheckTool("no-such-tool", "some-package").remedy, "install package some-package");
  m_rights = {false, false, false, 0};
  m_machine.AddMemory(1024);
  for (const char* const name : {"eth0", "eth1", "eth2", "eth3", "eth4"}) {
    m_machine.AddPort(name, "igb");
  }
  m_machine.AddTool("ethtool", "echo 'supports-test: yes'");
  Open();
  std::vector<std::string> names;
  for (const auto& entry : m_hardware->GetView()->unoffered) names.push_back(entry.deviceNames);
  EXPECT_THAT(names, Contains("eth0; eth1; eth2; and 2 more"));
}

TEST_F(HardwareOfferTest, NamesAreUniqueAndFitTestIdentifiers) {
  AddAllTools();
  m_machine.AddTool("ethtool", "case $2 in eth0) echo 'supports-test: yes';; esac");
  m_machine.AddTool("smartctl",
                    "echo '{\"smartctl\":{\"exit_status\":0},\"ata_smart_data\":"
                    "{\"capabilities\":{\"self_tests_supported\":true}}}'");
  m_machine.AddTool("nvme", "echo '{\"oacs\":16}'");
  m_machine.AddProcessors(1, "AMD EPYC");
  m_machine.AddMemory(1024);
  for (const char* const disk : {"sda", "nvme0n1", "vda"}) m_machine.AddDisk(disk, 1024);
  m_machine.AddPort("eth0", "igb");
  m_machine.AddPort("eth1", "virtio_net");
  Open();
  const std::vector<const IDiagnosticTest*> tests = m_hardware->GetTests();
  ASSERT_THAT(tests, SizeIs(9));
  std::set<std::string> names;
  for (const IDiagnosticTest* const test : tests) {
    const std::string& name = test->GetService().name;
    EXPECT_TRUE(names.insert(name).second) << name;
    EXPECT_EQ(name, CleanName(name));
    // The runner treats these texts specially.
    for (const char* const special : {"BRCM", "ELX", "Tape", "FIO", "ZEP", "Fusion-io", "IANet",
                                      "Nvidia", "Brocade", "diag service"}) {
      EXPECT_EQ(name.find(special), std::string::npos) << name;
    }
    for (const IDiagnosticTest* const other : tests) {
      if (other == test) continue;
      // A record's service is looked up by a part of its name.
      EXPECT_EQ(other->GetService().name.find(name), std::string::npos) << name;
    }
  }
}

TEST_F(HardwareOfferTest, ExtendedTestsAnnounceMinutesAndBlock) {
  AddAllTools();
  m_machine.AddProcessors(1, "AMD EPYC");
  m_machine.AddMemory(1024);
  Open();
  for (const IDiagnosticTest* const test : m_hardware->GetTests()) {
    const TService& service = test->GetService();
    const bool isExtended = service.name.find("Extended") != std::string::npos;
    EXPECT_EQ(service.durationUnit, isExtended ? 4 : 3) << service.name;
    EXPECT_GE(service.durationCount, 1U) << service.name;
    EXPECT_EQ(service.isBlocking, isExtended) << service.name;
    EXPECT_EQ(std::count(service.characteristics.begin(), service.characteristics.end(), 6), 0);
  }
}

}  // namespace
}  // namespace hardware
