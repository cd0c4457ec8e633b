// SPDX-License-Identifier: Apache-2.0
// A cache that is not what was written, or not by whom it should be, is as good as none.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <thread>

#include "platform/contract/TQELException.h"
#include "platform/schema/TCacheFolder.h"
#include "tests/platform/schema/cache/Dump.h"
#include "tests/platform/schema/cache/TCacheWorld.h"

namespace cachetest {
namespace {

namespace fs = std::filesystem;
using namespace NZEPQEL20;
using ::testing::HasSubstr;

/// What a cache file with these bytes answers; empty when it is refused.
std::string ReadAll(const TCacheWorld& world, const std::string& bytes) {
  world.WriteCache(bytes);
  try {
    auto cache = std::make_shared<const TSchemaCache>(
        TDescriptor(open(world.GetCacheFile().c_str(), O_RDONLY | O_CLOEXEC)));
    return Dump(*TClassRepository::FromStore(cache, nullptr));
  } catch (const TQELException&) {
    return {};
  }
}

class DamagedCacheTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_world.Load();
    m_bytes = m_world.ReadCache();
    m_expected = Dump(*m_world.LoadFiles().classes);
    ASSERT_EQ(ReadAll(m_world, m_bytes), m_expected);
  }

  TCacheWorld m_world;
  std::string m_bytes;
  std::string m_expected;
};

TEST_F(DamagedCacheTest, CutAnywhereItIsRefused) {
  for (std::size_t length = 0; length < m_bytes.size(); ++length) {
    ASSERT_EQ(ReadAll(m_world, m_bytes.substr(0, length)), "") << length;
  }
}

TEST_F(DamagedCacheTest, WithMoreBehindItsEndItIsRefused) {
  EXPECT_EQ(ReadAll(m_world, m_bytes + '\0'), "");
}

TEST_F(DamagedCacheTest, WithOneBitChangedAnywhereItIsRefused) {
  for (std::size_t i = 0; i < m_bytes.size(); i += i < 64 ? 1 : 3) {
    std::string bytes = m_bytes;
    bytes[i] = static_cast<char>(bytes[i] ^ (1 << (i % 8)));
    ASSERT_EQ(ReadAll(m_world, bytes), "") << i;
  }
}

TEST_F(DamagedCacheTest, TheFilesAreReadInstead) {
  for (const std::size_t at : {std::size_t{0}, std::size_t{9}, std::size_t{20}, std::size_t{60},
                               m_bytes.size() / 2, m_bytes.size() - 1}) {
    std::string bytes = m_bytes;
    bytes[at] = static_cast<char>(bytes[at] ^ 1);
    m_world.WriteCache(bytes);
    m_world.Load();
  }
}

TEST_F(DamagedCacheTest, OneOfAnotherBuildIsReplaced) {
  std::string bytes = m_bytes;
  // The number of the build stands behind the magic word.
  bytes[8] = static_cast<char>(bytes[8] + 1);
  m_world.WriteCache(bytes);
  const TLoadedSchema loaded = m_world.Load();
  EXPECT_FALSE(loaded.isFromCache);
  EXPECT_THAT(GetNotes(loaded), HasSubstr("is of another build"));
  EXPECT_TRUE(m_world.Load().isFromCache);
}

TEST_F(DamagedCacheTest, AFileThatIsCutWhileItIsOpenIsMadeUpForFromTheSources) {
  m_world.WriteCache(m_bytes);
  const TLoadedSchema loaded = m_world.Load();
  ASSERT_TRUE(loaded.isFromCache);
  const TLoadedSchema open = LoadSchema(m_world.inputs, m_world.place);
  ASSERT_EQ(truncate(m_world.GetCacheFile().c_str(), 60), 0);
  std::vector<std::string> dumps(3);
  std::vector<std::thread> threads;
  for (std::string& dump : dumps) {
    threads.emplace_back([&dump, &open] { dump = Dump(*open.classes); });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& dump : dumps) EXPECT_EQ(dump, m_expected);
}

TEST_F(DamagedCacheTest, InstancesThatCannotBeReadAreMadeUpForFromTheSources) {
  m_world.WriteCache(m_bytes);
  const TLoadedSchema open = LoadSchema(m_world.inputs, m_world.place);
  ASSERT_TRUE(open.isFromCache);
  ASSERT_EQ(truncate(m_world.GetCacheFile().c_str(), 0), 0);
  EXPECT_EQ(open.classes->GetInstances().size(), 3U);
  EXPECT_EQ(Dump(*open.classes), m_expected);
}

struct TDistrust {
  const char* name;
  const char* note;
  std::function<bool(const TCacheWorld&)> make;  ///< False when we are not allowed to.
};
void PrintTo(const TDistrust& row, std::ostream* out) {
  *out << row.name;
}

class DistrustedCacheTest : public ::testing::TestWithParam<TDistrust> {};

TEST_P(DistrustedCacheTest, IsNotUsed) {
  const TCacheWorld world;
  world.Load();
  ASSERT_TRUE(world.Load().isFromCache);
  if (!GetParam().make(world)) GTEST_SKIP() << "only root can";
  const TLoadedSchema loaded = world.Load();
  EXPECT_FALSE(loaded.isFromCache);
  EXPECT_THAT(GetNotes(loaded), HasSubstr(GetParam().note));
}

bool Change(const std::string& path, mode_t mode) {
  return chmod(path.c_str(), mode) == 0;
}

bool Replace(const TCacheWorld& world, const std::string& name) {
  fs::rename(world.GetPath(name), world.GetPath("real"));
  fs::create_symlink(world.GetPath("real"), world.GetPath(name));
  return true;
}

constexpr uid_t kNobody = 65534;

INSTANTIATE_TEST_SUITE_P(
    All, DistrustedCacheTest,
    ::testing::Values(
        TDistrust{"AGroupMayWriteToTheFile", "others may write to it",
                  [](const TCacheWorld& w) { return Change(w.GetCacheFile(), 0660); }},
        TDistrust{"OthersMayWriteToTheFile", "others may write to it",
                  [](const TCacheWorld& w) { return Change(w.GetCacheFile(), 0646); }},
        TDistrust{"AGroupMayWriteToTheFolder", "others may write to it",
                  [](const TCacheWorld& w) { return Change(w.GetPath("cache"), 0770); }},
        TDistrust{"OthersMayWriteToTheFolder", "others may write to it",
                  [](const TCacheWorld& w) { return Change(w.GetPath("cache"), 01777); }},
        TDistrust{"TheFileIsSomebodyElses", "belongs to somebody else",
                  [](const TCacheWorld& w) {
                    return chown(w.GetCacheFile().c_str(), kNobody, kNobody) == 0;
                  }},
        TDistrust{"TheFolderIsSomebodyElses", "belongs to somebody else",
                  [](const TCacheWorld& w) {
                    return chown(w.GetPath("cache").c_str(), kNobody, kNobody) == 0;
                  }},
        TDistrust{"TheFileIsALink",
                  "x.cache: ", [](const TCacheWorld& w) { return Replace(w, "cache/x.cache"); }},
        TDistrust{"TheFolderIsALink",
                  "cache: ", [](const TCacheWorld& w) { return Replace(w, "cache"); }},
        TDistrust{"ThePlaceIsAPipe", "is not what it should be",
                  [](const TCacheWorld& w) {
                    fs::remove(w.GetCacheFile());
                    return mkfifo(w.GetCacheFile().c_str(), 0600) == 0;
                  }}),
    [](const auto& row) { return row.param.name; });

TEST(CacheFolderTest, TheNextFolderIsTakenWhereOneCannotBeWritten) {
  TCacheWorld world;
  world.place.folders = {world.GetPath("schema/z.mof/cache"), world.GetPath("deep/er/cache")};
  const TLoadedSchema first = world.Load();
  EXPECT_THAT(GetNotes(first), HasSubstr("schema cache not written: " + world.GetPath("schema")));
  EXPECT_THAT(GetNotes(first), HasSubstr("written to " + world.GetPath("deep/er/cache")));
  EXPECT_TRUE(world.Load().isFromCache);
}

TEST(CacheFolderTest, WithoutAFolderThatCanBeWrittenAllGoesOn) {
  TCacheWorld world;
  world.place.folders = {world.GetPath("schema/z.mof/cache"), "/proc/none"};
  EXPECT_FALSE(world.Load().isFromCache);
  EXPECT_FALSE(world.Load().isFromCache);
}

TEST(CacheFolderTest, WhatAKilledWriterLeftBehindDoesNoHarmAndGoesInTime) {
  const TCacheWorld world;
  const std::string fresh = world.folder.Write("cache/.x.cache.123", "DIAGSMOF half");
  const std::string old = world.folder.Write("cache/.x.cache.124", "DIAGSMOF half");
  const std::string other = world.folder.Write("cache/y.cache", "");
  for (const std::string& path : {old, other}) {
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(25));
  }
  world.Load();
  EXPECT_TRUE(world.Load().isFromCache);
  EXPECT_TRUE(fs::exists(fresh));
  EXPECT_FALSE(fs::exists(old));
  EXPECT_TRUE(fs::exists(other));
}

TEST(CacheFolderTest, AFileIsReplacedAsAWhole) {
  const schematest::TFolder folder;
  const TCacheFolder cache(folder.GetPath() + "/c");
  EXPECT_EQ(cache.Write("f", {"long ", "content"}), "");
  std::string reason;
  const TDescriptor before = cache.Open("f", reason);
  ASSERT_TRUE(before.IsOpen());
  EXPECT_EQ(cache.Write("f", {"new"}), "");
  char bytes[16] = {};
  EXPECT_EQ(read(before.Get(), bytes, sizeof(bytes)), 12);
  EXPECT_EQ(fs::file_size(folder.GetPath() + "/c/f"), 3U);
  EXPECT_FALSE(cache.Open("g", reason).IsOpen());
  EXPECT_EQ(reason, "");
}

}  // namespace
}  // namespace cachetest
