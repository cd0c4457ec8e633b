// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/ClosedFolder.h"
#include "tests/support/TTemporaryFolder.h"

namespace {

TEST(ClosedFolderTest, IsTheFirstOneThatOthersMayNotEnter) {
  const TTemporaryFolder folder;
  std::filesystem::create_directories(folder.GetPath("a/b"));
  std::filesystem::permissions(folder.GetPath("a"), std::filesystem::perms(0755));
  std::filesystem::permissions(folder.GetPath("a/b"), std::filesystem::perms(0700));
  const std::string above = FindClosedFolder(folder.GetPath());
  // Whoever tests may have folders of his own above, or not.
  EXPECT_EQ(folder.GetPath().compare(0, above.size(), above), 0);
  EXPECT_EQ(FindClosedFolder(folder.GetPath("a/b")), above);
  EXPECT_EQ(FindClosedFolder("/"), "");
  EXPECT_EQ(FindClosedFolder("/usr/bin"), "");
  EXPECT_EQ(FindClosedFolder("/no/such/folder"), "/no");
}

TEST(ClosedFolderTest, BelowOpenOnesIsTheOneThatIsClosed) {
  const TTemporaryFolder folder;
  std::filesystem::create_directories(folder.GetPath("a/b"));
  std::filesystem::permissions(folder.GetPath(), std::filesystem::perms(0755));
  if (!FindClosedFolder(folder.GetPath()).empty()) {
    GTEST_SKIP() << FindClosedFolder(folder.GetPath()) << " is closed, too";
  }
  std::filesystem::permissions(folder.GetPath("a"), std::filesystem::perms(0711));
  std::filesystem::permissions(folder.GetPath("a/b"), std::filesystem::perms(0750));
  EXPECT_EQ(FindClosedFolder(folder.GetPath("a")), "");
  EXPECT_EQ(FindClosedFolder(folder.GetPath("a/b")), folder.GetPath("a/b"));
}

}  // namespace
