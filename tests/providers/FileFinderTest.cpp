// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "providers/hardware/TFileFinder.h"
#include "providers/hardware/Units.h"
#include "tests/providers/TFileFolder.h"

namespace hardware {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class FileFinderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!m_folder.CanReadDirectly()) GTEST_SKIP() << "no direct reads in " << m_folder.GetPlace();
  }

  TFileFinder MakeFinder(TFileFinder::TLimits limits = TFileFinder::TLimits()) const {
    return {m_folder.GetPlace(), m_folder.GetDevice(), limits};
  }

  /// "name: MiB" of what is chosen.
  std::vector<std::string> Choose(std::uint64_t mib, TFileFinder::TLimits limits = {}) const {
    std::vector<std::string> files;
    for (const TChosenFile& file : MakeFinder(limits).Choose(mib * kMib)) {
      EXPECT_EQ(file.bytes % kMib, 0U);
      files.push_back(file.path.substr(m_folder.GetPlace().size() + 1) + ": " +
                      std::to_string(file.bytes / kMib));
    }
    return files;
  }

  TFakeMachine m_machine;
  TFileFolder m_folder{m_machine, "/data"};
};

TEST_F(FileFinderTest, TakesWholeMibOfFilesInAllFoldersLargestFirst) {
  m_folder.AddFile("a/b/deep", 2 * kMib + 4711);
  m_folder.AddFile("top", 3 * kMib);
  m_folder.AddFile("small", kMib - 1);
  m_folder.AddFile("empty", 0);
  EXPECT_THAT(Choose(100), ElementsAre("top: 3", "a/b/deep: 2"));
  EXPECT_TRUE(MakeFinder().HasAny());
}

TEST_F(FileFinderTest, SharesTheBytesOutAmongTheFiles) {
  m_folder.AddFile("one", kMib);
  m_folder.AddFile("four", 4 * kMib);
  m_folder.AddFile("five", 5 * kMib);
  EXPECT_THAT(Choose(7), ElementsAre("five: 3", "four: 3", "one: 1"));
  EXPECT_THAT(Choose(3), ElementsAre("five: 1", "four: 1", "one: 1"));
  EXPECT_THAT(Choose(2), ElementsAre("five: 1", "four: 1"));
  EXPECT_THAT(Choose(0), IsEmpty());
}

TEST_F(FileFinderTest, TakesNoMoreFilesThanItMay) {
  for (const char* const name : {"a", "b", "c"}) m_folder.AddFile(name, kMib);
  TFileFinder::TLimits limits;
  limits.files = 2;
  EXPECT_THAT(Choose(100, limits), SizeIs(2));
}

TEST_F(FileFinderTest, LooksAtNoMoreEntriesThanItMay) {
  for (const char* const name : {"a", "b", "c", "d"}) m_folder.AddFile(name, kMib);
  TFileFinder::TLimits limits;
  limits.entries = 3;
  EXPECT_THAT(Choose(100, limits), SizeIs(3));
}

TEST_F(FileFinderTest, EndsWhenItsTimeIsUp) {
  m_folder.AddFile("a", kMib);
  TFileFinder::TLimits limits;
  limits.time = std::chrono::milliseconds(0);
  EXPECT_THAT(Choose(100, limits), IsEmpty());
  EXPECT_FALSE(MakeFinder(limits).HasAny());
}

TEST_F(FileFinderTest, FollowsNoLinks) {
  m_machine.Write("/elsewhere/file", std::string(2 * kMib, 'x'));
  std::filesystem::create_symlink(m_machine.GetRoot() + "/elsewhere/file",
                                  m_folder.GetPlace() + "/file");
  std::filesystem::create_symlink(m_machine.GetRoot() + "/elsewhere",
                                  m_folder.GetPlace() + "/folder");
  EXPECT_FALSE(MakeFinder().HasAny());
}

TEST_F(FileFinderTest, TakesOnlyRegularFilesThatAreOnTheDisk) {
  m_folder.AddHole("hole", 8 * kMib);
  ASSERT_EQ(::mkfifo((m_folder.GetPlace() + "/fifo").c_str(), 0600), 0);
  EXPECT_FALSE(MakeFinder().HasAny());
  EXPECT_THAT(Choose(100), IsEmpty());
}

TEST_F(FileFinderTest, TakesNamesOfAnyKind) {
  m_folder.AddFile("a:b\\c $d\xff\n", kMib);
  EXPECT_THAT(Choose(100), ElementsAre("a:b\\c $d\xff\n: 1"));
}

TEST_F(FileFinderTest, LeavesOutWhatItMayNotRead) {
  if (::geteuid() == 0) GTEST_SKIP() << "root may read everything";
  m_folder.AddFile("secret", kMib);
  ASSERT_EQ(::chmod((m_folder.GetPlace() + "/secret").c_str(), 0), 0);
  EXPECT_FALSE(MakeFinder().HasAny());
}

TEST_F(FileFinderTest, ANameGivenToAnotherFileLaterChangesNothing) {
  m_folder.AddFile("file", kMib);
  const std::vector<TChosenFile> files = MakeFinder().Choose(kMib);
  ASSERT_THAT(files, SizeIs(1));
  std::filesystem::remove(files[0].path);
  m_folder.AddFile("file", 3 * kMib);
  struct stat status {};
  ASSERT_EQ(::fstat(files[0].file.Get(), &status), 0);
  EXPECT_EQ(static_cast<std::uint64_t>(status.st_size), kMib);
  EXPECT_NE(::fcntl(files[0].file.Get(), F_GETFL) & O_DIRECT, 0);
}

TEST_F(FileFinderTest, AnotherDeviceThanExpectedIsNotSearched) {
  m_folder.AddFile("file", kMib);
  EXPECT_FALSE(TFileFinder(m_folder.GetPlace(), "4095:77").HasAny());
  EXPECT_THAT(TFileFinder(m_folder.GetPlace(), "4095:77").Choose(kMib), IsEmpty());
}

TEST(FileFinderMountTest, EntersNoOtherMount) {
  // On most machines this is a mount of its own in a folder without files of any size.
  const std::string name = "/dev/shm/finder" + std::to_string(::getpid());
  std::ofstream(name) << std::string(2 * kMib, 'x');
  const bool isFound = TFileFinder("/dev/shm", "0:0").HasAny();
  const bool isFoundFromOutside = TFileFinder("/dev", "0:0").HasAny();
  std::filesystem::remove(name);
  if (!isFound) GTEST_SKIP() << "no direct reads in /dev/shm";
  EXPECT_FALSE(isFoundFromOutside);
}

TEST_F(FileFinderTest, WhatIsNoFolderIsNotSearched) {
  m_folder.AddFile("file", kMib);
  EXPECT_FALSE(TFileFinder(m_folder.GetPlace() + "/file", m_folder.GetDevice()).HasAny());
  EXPECT_FALSE(TFileFinder(m_folder.GetPlace() + "/none", m_folder.GetDevice()).HasAny());
}

TEST(FileFolderTest, MakesFilesOfTheirSizeWithAndWithoutContent) {
  const TFakeMachine machine;
  const TFileFolder folder(machine, "/data");
  folder.AddFile("a/file", 4096);
  folder.AddHole("hole", kMib);
  EXPECT_EQ(machine.Read("/data/a/file").size(), 4096U);
  EXPECT_EQ(machine.Read("/data/hole"), std::string(kMib, '\0'));
  EXPECT_NE(machine.Read("/data/a/file"), std::string(4096, '\0'));
  EXPECT_THAT(folder.GetDevice(), ::testing::MatchesRegex("[0-9]+:[0-9]+"));
}

}  // namespace
}  // namespace hardware
