// SPDX-License-Identifier: Apache-2.0
// What an installation that was cut off has left is tidied up by the next command, whichever.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "platform/setup/ChildRun.h"
#include "platform/setup/THiddenFolder.h"
#include "tests/platform/setup/store/TStoreTest.h"
#include "tests/support/TSystemHook.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;

class CutOffInstallTest : public TStoreTest {
 protected:
  CutOffInstallTest() {
    m_vendor.Write("acme.registration", "A_Base root/x Probed good instance\n");
  }
  /// A process adds the folder and is killed when `count` files are copied.
  void AddAndBeKilled(const std::string& name, int count, bool replace = false) const {
    const TChildOutcome outcome = RunInChild(
        [&](const TTell&) {
          int left = count;
          const TSystemHook hook(TSystemHook::kFsync,
                                 [&left] { return --left == 0 ? ::raise(SIGKILL) : 0; });
          Add(name, replace);
        },
        std::chrono::seconds(20));
    ASSERT_THAT(outcome.ending, testing::HasSubstr("signal 9"));
  }
  /// What an installation of `name` has left.
  void Leave(const std::string& name) const {
    m_root.Write("providers/" + name + "/acme.registration", "A_Base root/x P l instance\n");
  }
};

TEST_F(CutOffInstallTest, AListTidiesUp) {
  AddAndBeKilled("acme", 1);
  EXPECT_THAT(GetInstalled(), testing::MatchesRegex(" \\.acme\\.tmp-......"));
  EXPECT_TRUE(m_store.List().empty());
  EXPECT_EQ(GetInstalled(), "");
}

TEST_F(CutOffInstallTest, AReplacementThatWasCutOffLeavesTheOldOne) {
  Add("acme");
  m_vendor.Write("new.conf", "");
  AddAndBeKilled("acme", 1, true);
  EXPECT_EQ(m_store.List().size(), 1U);
  EXPECT_EQ(GetInstalled(), " acme");
  EXPECT_FALSE(fs::exists(m_root.GetPath("providers/acme/new.conf")));
}

TEST_F(CutOffInstallTest, AnInstallationOfAnotherNameTidiesUp) {
  Leave(".acme.tmp-Ab3xYz");
  Add("bolt");
  EXPECT_EQ(GetInstalled(), " bolt");
}

TEST_F(CutOffInstallTest, ARemovalOfAnotherNameTidiesUp) {
  Add("bolt");
  Leave(".acme.tmp-Ab3xYz");
  m_store.Remove("bolt");
  EXPECT_EQ(GetInstalled(), "");
}

TEST_F(CutOffInstallTest, WhatBelongsToALivingProcessStays) {
  Leave(".acme.tmp-Ab3xYz");
  const int other = ::open(m_root.GetPath("providers").c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_EQ(::flock(other, LOCK_EX), 0);
  EXPECT_TRUE(m_store.List().empty());
  EXPECT_EQ(GetInstalled(), " .acme.tmp-Ab3xYz");
  ::close(other);
  EXPECT_TRUE(m_store.List().empty());
  EXPECT_EQ(GetInstalled(), "");
}

TEST_F(CutOffInstallTest, AFolderThatWasPutAsideComesBackUnlessThereIsAnother) {
  Leave(".acme.tmp-Ab3xYz.old");
  EXPECT_EQ(m_store.List().size(), 1U);
  EXPECT_EQ(GetInstalled(), " acme");
  Leave(".acme.tmp-Ab3xYz.old/more");
  EXPECT_EQ(m_store.List().size(), 1U);
  EXPECT_EQ(GetInstalled(), " acme");
  EXPECT_FALSE(fs::exists(m_root.GetPath("providers/acme/more")));
}

TEST_F(CutOffInstallTest, WhatIsNotAnInstallationsStays) {
  const char* const names[] = {".acme",          ".acme.old",         ".acme.tmp-",
                               ".acme.tmp-Ab3x", ".acme.tmp-Ab3xY/z", ".tmp-Ab3xYz"};
  for (const char* name : names) Leave(name);
  m_root.Write("providers/.file.tmp-Ab3xYz", "");
  const std::string before = GetInstalled();
  m_store.List();
  EXPECT_EQ(GetInstalled(), before);
}

TEST(HiddenFolderTest, IsRecognisedByItsNameWhateverTheVendors) {
  const TTemporaryFolder providers;
  for (const std::string vendor : {"a", "acme.tmp-Ab3xYz", "acme.old", "with blank"}) {
    const THiddenFolder folder(providers.GetPath(), vendor);
    EXPECT_EQ(THiddenFolder::FindVendor(fs::path(folder.GetPath()).filename()), vendor);
    EXPECT_EQ(THiddenFolder::FindVendorAside(fs::path(folder.GetAside()).filename()), vendor);
    EXPECT_EQ(THiddenFolder::FindVendor(fs::path(folder.GetAside()).filename()), "");
  }
}

}  // namespace
}  // namespace NZEPQEL20::setup
