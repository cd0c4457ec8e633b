// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "providers/hardware/TDeviceInventory.h"
#include "tests/providers/TFakeMachine.h"

namespace hardware {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DeviceInventoryTest : public ::testing::Test {
 protected:
  std::vector<std::string> FindIds() const {
    std::vector<std::string> ids;
    for (const TDevice& device : m_inventory.FindDevices()) ids.push_back(device.id);
    return ids;
  }

  TFakeMachine m_machine;
  THostFiles m_files{m_machine.GetRoot()};
  TDeviceInventory m_inventory{m_files};
};

TEST_F(DeviceInventoryTest, AMachineThatTellsNothingHasNoDevices) {
  EXPECT_THAT(FindIds(), IsEmpty());
}

TEST_F(DeviceInventoryTest, AServerShowsItsPhysicalDevicesOnly) {
  m_machine.AddProcessors(2, "AMD EPYC");
  m_machine.AddMemory(32768);
  for (const char* const disk : {"nvme0n1", "sda", "vda", "sr0", "fd0", "mmcblk0boot0"}) {
    m_machine.AddDisk(disk, 1024);
  }
  for (const char* const made : {"loop0", "ram0", "zram0", "dm-0", "md127"}) {
    m_machine.Write(std::string("/sys/block/") + made + "/size", "2048\n");
  }
  m_machine.AddPort("eth0", "igb");
  m_machine.AddPort("eth1", "igb");
  m_machine.Write("/sys/class/net/bond0/type", "1\n");
  m_machine.Write("/sys/class/net/lo/type", "772\n");
  m_machine.AddPort("wlan0", "iwlwifi");
  m_machine.Write("/sys/class/net/wlan0/phy80211/name", "phy0");
  m_machine.AddPort("ib0", "mlx5_core");
  m_machine.Write("/sys/class/net/ib0/type", "32\n");
  EXPECT_THAT(FindIds(),
              ElementsAre("cpu0", "cpu1", "memory0", "nvme0n1", "sda", "vda", "eth0", "eth1"));
}

TEST_F(DeviceInventoryTest, ProcessorsThatAreOfflineAreLeftOut) {
  m_machine.AddProcessors(4, "AMD EPYC");
  m_machine.Write("/sys/devices/system/cpu/online", "0,2-3\n");
  EXPECT_THAT(FindIds(), ElementsAre("cpu0", "cpu2", "cpu3"));
  EXPECT_EQ(m_inventory.FindProcessors()[1].number, 2U);
}

TEST_F(DeviceInventoryTest, ProcessorsAreNamedByTheirModel) {
  m_machine.AddProcessors(1, "Intel(R) Xeon(R), Gold|6338");
  const TDevice device = m_inventory.FindProcessors().at(0);
  EXPECT_EQ(device.name, "Intel(R) Xeon(R); Gold/6338 CPU 0");
  EXPECT_EQ(device.clockMHz, 2445U);
  m_machine.Write("/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq", "3500000\n");
  EXPECT_EQ(m_inventory.FindProcessors().at(0).clockMHz, 3500U);
}

TEST_F(DeviceInventoryTest, AModelToldOnceCountsForAllProcessors) {
  m_machine.Write("/proc/cpuinfo",
                  "processor : 0\nBogoMIPS : 50\n\nprocessor : 1\nBogoMIPS : 50\n\n"
                  "cpu\t\t: POWER9, altivec supported\n");
  const std::vector<TDevice> processors = m_inventory.FindProcessors();
  ASSERT_EQ(processors.size(), 2U);
  EXPECT_EQ(processors[1].name, "POWER9; altivec supported CPU 1");
}

TEST_F(DeviceInventoryTest, AProcessorOfUnknownModelIsStillNamed) {
  m_machine.Write("/sys/devices/system/cpu/online", "0\n");
  EXPECT_EQ(m_inventory.FindProcessors().at(0).name, "Processor CPU 0");
}

TEST_F(DeviceInventoryTest, MemoryIsNamedByTheMachine) {
  m_machine.AddMemory(32768);
  EXPECT_EQ(m_inventory.FindMemory().at(0).name, "Memory 32 GiB");
  m_machine.Write("/sys/class/dmi/id/sys_vendor", "Acme, Inc.\n");
  m_machine.Write("/sys/class/dmi/id/product_name", "Server 9000\n");
  EXPECT_EQ(m_inventory.FindMemory().at(0).name, "Acme; Inc. Server 9000 memory 32 GiB");
  EXPECT_EQ(m_inventory.FindMemory().at(0).bytes, 32ULL << 30U);
}

TEST_F(DeviceInventoryTest, DisksAreNamedByVendorAndModel) {
  m_machine.AddDisk("sda", 20480);
  m_machine.Write("/sys/block/sda/device/vendor", "ATA     \n");
  m_machine.Write("/sys/block/sda/device/model", "Samsung SSD 870 \n");
  m_machine.AddDisk("sdb", 20480);
  m_machine.Write("/sys/block/sdb/device/vendor", "SEAGATE \n");
  m_machine.Write("/sys/block/sdb/device/model", "ST1200MM0009\n");
  m_machine.AddDisk("vda", 20480);
  m_machine.Write("/sys/block/vda/device/vendor", "0x1af4\n");
  const std::vector<TDevice> disks = m_inventory.FindDisks();
  ASSERT_EQ(disks.size(), 3U);
  EXPECT_EQ(disks[0].name, "Samsung SSD 870 20 GiB");
  EXPECT_EQ(disks[1].name, "SEAGATE ST1200MM0009 20 GiB");
  EXPECT_EQ(disks[2].name, "Virtual disk 20 GiB");
  EXPECT_EQ(disks[2].node, "/dev/vda");
  EXPECT_EQ(disks[2].controllerNode, "");
}

TEST_F(DeviceInventoryTest, AnNvmeDiskKnowsItsController) {
  m_machine.AddDisk("nvme10n2", 1024);
  EXPECT_EQ(m_inventory.FindDisks().at(0).controllerNode, "/dev/nvme10");
}

TEST_F(DeviceInventoryTest, DisksWithoutMediumAndHiddenPathsAreLeftOut) {
  m_machine.AddDisk("sda", 0);
  m_machine.AddDisk("nvme0c0n1", 1024);
  m_machine.Write("/sys/block/nvme0c0n1/hidden", "1\n");
  EXPECT_THAT(FindIds(), IsEmpty());
}

TEST_F(DeviceInventoryTest, ADiskInASubfolderKeepsItsPath) {
  m_machine.AddDisk("cciss!c0d0", 1024);
  EXPECT_EQ(m_inventory.FindDisks().at(0).node, "/dev/cciss/c0d0");
}

TEST_F(DeviceInventoryTest, PortsAreNamedByInterfaceAndDriver) {
  m_machine.AddPort("eth0", "igb");
  const TDevice port = m_inventory.FindNetworkPorts().at(0);
  EXPECT_EQ(port.name, "Ethernet port eth0 (igb)");
  EXPECT_EQ(port.address, "02:fc:00:00:00:01");
  EXPECT_EQ(port.linkBitsPerSecond, 1000000000U);
  m_machine.Write("/sys/class/net/eth0/speed", "-1\n");
  EXPECT_EQ(m_inventory.FindNetworkPorts().at(0).linkBitsPerSecond, 0U);
}

TEST_F(DeviceInventoryTest, APortNamedLikeAnOptionIsLeftOut) {
  m_machine.AddPort("-s", "igb");
  EXPECT_THAT(FindIds(), IsEmpty());
}

struct TListRow {
  const char* list;
  std::vector<unsigned int> numbers;
};
void PrintTo(const TListRow& row, std::ostream* out) {
  *out << "'" << row.list << "'";
}

class CpuListTest : public ::testing::TestWithParam<TListRow> {};

TEST_P(CpuListTest, GivesItsNumbersAndSkipsWhatIsMalformed) {
  EXPECT_EQ(ParseCpuList(GetParam().list), GetParam().numbers);
}
INSTANTIATE_TEST_SUITE_P(All, CpuListTest,
                         ::testing::Values(TListRow{"", {}}, TListRow{"0", {0}},
                                           TListRow{"0-2,5", {0, 1, 2, 5}}, TListRow{"3-1", {}},
                                           TListRow{"x,1,-,2-", {1}},
                                           TListRow{"0-99999999999", {}}));

}  // namespace
}  // namespace hardware
