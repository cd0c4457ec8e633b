// SPDX-License-Identifier: Apache-2.0
// Files of a vendor's folder: what is found in it, and that nothing leads out of it.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <string>

#include "platform/contract/TQELException.h"
#include "platform/setup/TVendorFolder.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

class VendorFolderFilesTest : public testing::Test {
 protected:
  VendorFolderFilesTest() {
    m_vendor.Write("lib/real", "inside");
    m_elsewhere.Write("secret", "outside");
  }
  TVendorFile Find(const std::string& name) const {
    return TVendorFolder(m_vendor.GetPath()).Find(m_vendor.GetPath(name));
  }
  void Link(const std::string& target, const std::string& name) const {
    fs::create_symlink(target, m_vendor.GetPath(name));
  }
  static std::string ReadAll(const TVendorFile& file) {
    const TDescriptor opened = TVendorFolder::Open(file);
    std::array<char, 64> bytes;
    const ssize_t count = ::read(opened.Get(), bytes.data(), bytes.size());
    return count < 0 ? "unreadable" : std::string(bytes.data(), static_cast<std::size_t>(count));
  }
  static std::string OpenFault(const TVendorFile& file) {
    try {
      TVendorFolder::Open(file);
    } catch (const TQELException& failure) {
      return failure.what();
    }
    return "";
  }

  TTemporaryFolder m_vendor;
  TTemporaryFolder m_elsewhere;
};

TEST_F(VendorFolderFilesTest, LinksThatStayInTheFolderAreFollowed) {
  const TTemporaryFolder aside;
  fs::create_symlink(m_vendor.GetPath(), aside.GetPath("alias"));
  Link("lib/../lib/real", "up");
  Link(m_vendor.GetPath("lib/real"), "absolute");
  Link(aside.GetPath("alias/lib/real"), "alias");
  Link("lib", "folder");
  Link("folder/real", "twice");
  for (const char* name : {"up", "absolute", "alias", "twice"}) {
    const TVendorFile file = Find(name);
    EXPECT_EQ(file.fault, "") << name;
    EXPECT_EQ(file.real, "lib/real") << name;
    EXPECT_TRUE(file.isLink) << name;
    EXPECT_EQ(ReadAll(file), "inside") << name;
  }
  for (const char* name : {"lib/real", "folder/real"}) {
    const TVendorFile file = Find(name);
    EXPECT_EQ(file.real, "lib/real") << name;
    EXPECT_FALSE(file.isLink) << name;
  }
}

TEST_F(VendorFolderFilesTest, WhatLeadsOutIsNamedWithItsTarget) {
  const std::string secret = m_elsewhere.GetPath("secret");
  Link(secret, "absolute");
  Link("../" +
           fs::path(secret).lexically_relative(fs::path(m_vendor.GetPath()).parent_path()).string(),
       "relative");
  Link(secret.substr(0, secret.rfind('/')), "folder");
  Link("../" + fs::path(m_vendor.GetPath()).filename().string() + "/lib/real", "outAndIn");
  for (const char* name : {"absolute", "relative", "folder/secret"}) {
    EXPECT_EQ(Find(name).fault, m_vendor.GetPath(name) + ": is a link to " + secret +
                                    ", outside the folder " + m_vendor.GetPath());
  }
  EXPECT_THAT(Find("outAndIn").fault, HasSubstr(", outside the folder "));
  EXPECT_THAT(TVendorFolder(m_vendor.GetPath()).Find(secret).fault,
              HasSubstr("secret: lies outside the folder "));
}

TEST_F(VendorFolderFilesTest, WhatIsNoRegularFileIsSaidAndNotOpened) {
  ASSERT_EQ(::mkfifo(m_vendor.GetPath("pipe").c_str(), 0600), 0);
  Link("lib/real/", "below");
  Link("nowhere", "dangling");
  Link("loop", "loop");
  EXPECT_THAT(Find("pipe").fault, HasSubstr("pipe: is not a regular file"));
  EXPECT_THAT(Find("lib").fault, HasSubstr("lib: is not a regular file"));
  EXPECT_THAT(Find("dangling").fault, HasSubstr("dangling: cannot be copied: No such file"));
  EXPECT_THAT(Find("loop").fault, HasSubstr("loop: cannot be copied: Too many levels"));
  EXPECT_THAT(Find("lib/real/x").fault, HasSubstr("x: cannot be copied: Not a directory"));
  EXPECT_THAT(Find("below").fault, HasSubstr("below: cannot be copied: Not a directory"));
}

TEST_F(VendorFolderFilesTest, WhatIsReplacedAfterTheLookIsNotRead) {
  const std::string name = m_vendor.GetPath("lib/real");
  const TVendorFile file = Find("lib/real");
  // Another file has another number only while the first one is there, too.
  fs::rename(name, m_vendor.GetPath("lib/aside"));
  fs::create_symlink(m_elsewhere.GetPath("secret"), name);
  EXPECT_THAT(OpenFault(file), HasSubstr("lib/real: cannot be read: Too many levels"));
  fs::remove(name);
  m_vendor.Write("lib/real", "other");
  EXPECT_THAT(OpenFault(file), HasSubstr("lib/real: changed while it was being checked; "));
  fs::remove(name);
  ASSERT_EQ(::mkfifo(name.c_str(), 0600), 0);
  EXPECT_THAT(OpenFault(file), HasSubstr("lib/real: changed while it was being checked; "));
}

TEST_F(VendorFolderFilesTest, AFolderThatBecomesALinkAfterTheLookDoesNotLeadOut) {
  m_elsewhere.Write("real", "outside");
  const TVendorFile file = Find("lib/real");
  fs::rename(m_vendor.GetPath("lib"), m_vendor.GetPath("aside"));
  Link(m_elsewhere.GetPath(), "lib");
  EXPECT_EQ(ReadAll(file), "inside");
  EXPECT_THAT(Find("lib/real").fault, HasSubstr(", outside the folder "));
}

TEST_F(VendorFolderFilesTest, AFolderThatIsReplacedWholeStaysTheOneThatWasOpened) {
  const TVendorFolder held(m_vendor.GetPath());
  const std::string aside = m_elsewhere.GetPath("aside");
  fs::rename(m_vendor.GetPath("lib"), aside);
  fs::create_symlink(aside, m_vendor.GetPath("lib"));
  EXPECT_THAT(held.Find(m_vendor.GetPath("lib/real")).fault,
              HasSubstr("is a link to " + aside + "/real, outside the folder "));
}

}  // namespace
}  // namespace NZEPQEL20::setup
