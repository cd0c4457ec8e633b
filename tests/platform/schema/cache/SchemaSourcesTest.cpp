// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <limits>

#include "platform/schema/TMofSource.h"
#include "platform/schema/TSchemaSources.h"
#include "tests/platform/schema/SchemaSupport.h"

namespace cachetest {
namespace {

using namespace NZEPQEL20;

constexpr std::int64_t kAlways = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kNever = 0;

class SchemaSourcesTest : public ::testing::Test {
 protected:
  void AddFile(const std::string& path) {
    TFileStamp stamp;
    const std::string bytes = ReadMofBytes(path, stamp);
    m_sources.AddFile(path, stamp, bytes);
  }
  ESourceState Check(std::int64_t trustedBefore) const {
    return CheckSource(m_sources.Get().back(), trustedBefore);
  }

  schematest::TFolder m_folder;
  TSchemaSources m_sources;
};

TEST_F(SchemaSourcesTest, OldStampsAreBelievedAndYoungOnesComparedByContent) {
  AddFile(m_folder.Write("a", "text"));
  EXPECT_EQ(Check(kAlways), ESourceState::kSame);
  EXPECT_EQ(Check(kNever), ESourceState::kSameByContent);
}

TEST_F(SchemaSourcesTest, AYoungStampHidesAChangeAndItsContentShowsIt) {
  const std::string path = m_folder.Write("a", "text");
  TFileStamp stamp;
  ReadMofBytes(path, stamp);
  // As if written twice within one tick of the clock.
  m_sources.AddFile(path, stamp, "tExt");
  EXPECT_EQ(Check(kAlways), ESourceState::kSame);
  EXPECT_EQ(Check(kNever), ESourceState::kChanged);
}

TEST_F(SchemaSourcesTest, FoldersAreComparedByTheirNames) {
  const std::string path = m_folder.GetPath();
  m_folder.Write("a", "");
  TFileStamp stamp;
  std::uint64_t hash = 0;
  ASSERT_TRUE(HashFolder(path, stamp, hash));
  m_sources.AddFolder(path, stamp, hash);
  EXPECT_EQ(Check(kNever), ESourceState::kSameByContent);
  m_sources.AddFolder(path + "/", stamp, hash + 1);
  EXPECT_EQ(Check(kAlways), ESourceState::kSame);
  EXPECT_EQ(Check(kNever), ESourceState::kChanged);
}

TEST_F(SchemaSourcesTest, WhatWasAbsentMustStayAbsent) {
  const std::string path = m_folder.GetPath() + "/none";
  m_sources.AddAbsent(path);
  EXPECT_EQ(Check(kAlways), ESourceState::kSame);
  m_folder.Write("none", "");
  EXPECT_EQ(Check(kAlways), ESourceState::kChanged);
}

TEST_F(SchemaSourcesTest, WhatCannotBeReadIsTheSameWhileTheReasonIs) {
  const std::string loop = m_folder.GetPath() + "/loop";
  std::filesystem::create_symlink("loop", loop);
  m_sources.AddUnreadable(loop, false);
  EXPECT_EQ(m_sources.Get().back().hash, static_cast<std::uint64_t>(ELOOP));
  EXPECT_EQ(Check(kAlways), ESourceState::kSame);
  EXPECT_EQ(Check(kNever), ESourceState::kSame);
  std::filesystem::remove(loop);
  EXPECT_EQ(Check(kAlways), ESourceState::kChanged);
  m_folder.Write("loop", "text");
  EXPECT_EQ(Check(kAlways), ESourceState::kChanged);
  EXPECT_TRUE(m_sources.IsWhole());
}

TEST_F(SchemaSourcesTest, WhatIsNoFileIsTheSameWhileItsStampIs) {
  const std::string path = m_folder.GetPath() + "/a";
  std::filesystem::create_directory(path);
  m_sources.AddUnreadable(path, true);
  EXPECT_EQ(Check(kAlways), ESourceState::kSame);
  std::filesystem::remove(path);
  m_folder.Write("a", "text");
  EXPECT_EQ(Check(kAlways), ESourceState::kChanged);
}

TEST_F(SchemaSourcesTest, AFaultThatDoesNotShowAgainCannotBeTold) {
  m_sources.AddUnreadable(m_folder.Write("a", "text"), false);
  EXPECT_FALSE(m_sources.IsWhole());
}

TEST_F(SchemaSourcesTest, APathIsAddedOnce) {
  const std::string path = m_folder.Write("a", "text");
  AddFile(path);
  AddFile(path);
  m_sources.AddSameFile(path);
  EXPECT_EQ(m_sources.Get().size(), 1U);
  EXPECT_EQ(m_sources.GetSize(), 4U);
  EXPECT_TRUE(m_sources.IsWhole());
}

TEST_F(SchemaSourcesTest, AnotherNameOfAFileMustLeadToOneThatWasRead) {
  AddFile(m_folder.Write("a", "text"));
  std::filesystem::create_symlink("a", m_folder.GetPath() + "/b");
  m_sources.AddSameFile(m_folder.GetPath() + "/b");
  EXPECT_TRUE(m_sources.IsWhole());
  m_sources.AddSameFile(m_folder.Write("c", "text"));
  EXPECT_FALSE(m_sources.IsWhole());
}

}  // namespace
}  // namespace cachetest
