// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "providers/hardware/TDiskMounts.h"
#include "tests/providers/TFakeMachine.h"

namespace hardware {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const char* const kKernelMounts =
    "22 27 0:21 / /proc rw,relatime - proc proc rw\n"
    "27 1 8:2 / / rw,relatime shared:1 master:2 - ext4 /dev/root rw,discard\n"
    "28 27 8:1 / /boot rw - vfat /dev/sda1 rw\n";

TEST(MountInfoTest, TellsDevicePlaceTypeAndSource) {
  const std::vector<TMount> mounts = ParseMountInfo(kKernelMounts);
  ASSERT_THAT(mounts, SizeIs(3));
  EXPECT_EQ(mounts[1].device, "8:2");
  EXPECT_EQ(mounts[1].point, "/");
  EXPECT_EQ(mounts[1].type, "ext4");
  EXPECT_EQ(mounts[1].source, "/dev/root");
}

TEST(MountInfoTest, EscapedCharactersArePutBack) {
  const std::vector<TMount> mounts =
      ParseMountInfo("27 1 8:2 / /a\\040b\\134c\\9\\04 rw - ext4 /dev/x\\011y rw\n");
  ASSERT_THAT(mounts, SizeIs(1));
  EXPECT_EQ(mounts[0].point, "/a b\\c\\9\\04");
  EXPECT_EQ(mounts[0].source, "/dev/x\ty");
}

struct TBadMount {
  const char* name;
  const char* line;
};
void PrintTo(const TBadMount& row, std::ostream* out) {
  *out << row.line;
}

class BadMountTest : public ::testing::TestWithParam<TBadMount> {};

TEST_P(BadMountTest, IsLeftOut) {
  EXPECT_THAT(ParseMountInfo(std::string(GetParam().line) + "\n" + kKernelMounts), SizeIs(3));
}
INSTANTIATE_TEST_SUITE_P(All, BadMountTest,
                         ::testing::Values(TBadMount{"Empty", ""}, TBadMount{"Word", "27"},
                                           TBadMount{"NoDash", "27 1 8:2 / / rw ext4 /dev/sda2 rw"},
                                           TBadMount{"NothingAfterTheDash", "27 1 8:2 / / rw -"},
                                           TBadMount{"NoSource", "27 1 8:2 / / rw - ext4"},
                                           TBadMount{"DashTooEarly", "27 1 8:2 - ext4 sda rw"}),
                         [](const auto& row) { return row.param.name; });

class DiskMountsTest : public ::testing::Test {
 protected:
  DiskMountsTest() {
    AddBlock("/sys/block/sda", "8:0");
    AddBlock("/sys/block/sda/sda1", "8:1");
    AddBlock("/sys/block/sda/sda2", "8:2");
    AddBlock("/sys/block/sdb", "8:16");
    m_machine.Write("/sys/block/sda/sda1/partition", "1\n");
    m_machine.Write("/sys/block/sda/sda2/partition", "2\n");
    // A folder of the disk that is no partition, whatever number it has.
    AddBlock("/sys/block/sda/holders", "253:0");
  }

  void AddBlock(const std::string& folder, const std::string& number) {
    m_machine.Write(folder + "/dev", number + "\n");
  }

  /// Mount points of what is found on sda when the kernel lists `mounts`.
  std::vector<std::string> FindPoints(const std::string& mounts,
                                      const std::string& disk = "sda") const {
    m_machine.Write("/proc/self/mountinfo", mounts);
    TDevice device;
    device.kernelName = disk;
    std::vector<std::string> points;
    for (const TMount& mount : TDiskMounts(THostFiles(m_machine.GetRoot())).Find(device)) {
      points.push_back(mount.point);
    }
    return points;
  }

  TFakeMachine m_machine;
};

TEST_F(DiskMountsTest, FindsPartitionsByTheirNumbers) {
  EXPECT_THAT(FindPoints(kKernelMounts), ElementsAre("/", "/boot"));
  EXPECT_THAT(FindPoints(kKernelMounts, "sdb"), IsEmpty());
}

TEST_F(DiskMountsTest, FindsADiskWithoutPartitions) {
  EXPECT_THAT(FindPoints("27 1 8:16 / /data rw - xfs /dev/sdb rw\n", "sdb"), ElementsAre("/data"));
}

TEST_F(DiskMountsTest, ANumberHoldsOverTheSource) {
  EXPECT_THAT(FindPoints("27 1 253:0 / / rw - ext4 /dev/sda2 rw\n"), IsEmpty());
  EXPECT_THAT(FindPoints("27 1 8:2 / / rw - ext4 /dev/sdb rw\n"), ElementsAre("/"));
}

TEST_F(DiskMountsTest, MappedDevicesAreLeftOut) {
  m_machine.Link("/dev/mapper/root", "dm-0");
  m_machine.Write("/sys/fs/btrfs/1/devices/dm-0", "");
  EXPECT_THAT(FindPoints("27 1 253:0 / / rw - ext4 /dev/mapper/root rw\n"
                         "28 1 0:30 / /b rw - btrfs /dev/mapper/root rw\n"),
              IsEmpty());
}

TEST_F(DiskMountsTest, AFileSystemWithoutABlockNumberIsFoundByItsSource) {
  m_machine.Write("/sys/fs/btrfs/1/devices/sda2", "");
  EXPECT_THAT(FindPoints("27 1 0:30 / / rw - btrfs /dev/sda2 rw\n"), ElementsAre("/"));
  EXPECT_THAT(FindPoints("27 1 0:30 / / rw - btrfs /dev/sda1 rw\n"), IsEmpty());
}

TEST_F(DiskMountsTest, ASourceMayBeALinkToTheDevice) {
  m_machine.Write("/sys/fs/btrfs/1/devices/sda2", "");
  m_machine.Link("/dev/disk/by-uuid/4711", "sda2");
  EXPECT_THAT(FindPoints("27 1 0:30 / / rw - btrfs /dev/disk/by-uuid/4711 rw\n"), ElementsAre("/"));
}

TEST_F(DiskMountsTest, AFileSystemOnSeveralDevicesIsLeftOut) {
  m_machine.Write("/sys/fs/btrfs/1/devices/sda2", "");
  m_machine.Write("/sys/fs/btrfs/1/devices/sdb", "");
  EXPECT_THAT(FindPoints("27 1 0:30 / / rw - btrfs /dev/sda2 rw\n"), IsEmpty());
}

TEST_F(DiskMountsTest, ASourceThatAnybodyCanChooseIsNotBelieved) {
  m_machine.Write("/sys/fs/btrfs/1/devices/sda2", "");
  EXPECT_THAT(FindPoints("27 1 0:30 / /a rw - fuse.anything /dev/sda2 rw\n"
                         "28 1 0:31 / /b rw - tmpfs /dev/sda2 rw\n"
                         "29 1 0:32 / /c rw - 9p /dev/sda2 rw\n"),
              IsEmpty());
}

TEST_F(DiskMountsTest, AMountUnderAnotherOneAtTheSamePlaceIsLeftOut) {
  EXPECT_THAT(FindPoints("27 1 8:2 / /data rw - ext4 /dev/sda2 rw\n"
                         "28 27 0:40 / /data rw - tmpfs none rw\n"),
              IsEmpty());
}

TEST_F(DiskMountsTest, WithoutTheKernelsListNothingIsFound) {
  TDevice device;
  device.kernelName = "sda";
  EXPECT_THAT(TDiskMounts(THostFiles(m_machine.GetRoot())).Find(device), IsEmpty());
}

}  // namespace
}  // namespace hardware
