// SPDX-License-Identifier: Apache-2.0
// Outlines of MOF files: what they say, and that stored ones are never older than the files.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <new>

#include "platform/schema/TMofOutlines.h"
#include "tests/platform/schema/cache/TCacheWorld.h"
#include "tests/support/TSystemHook.h"

namespace cachetest {
namespace {

namespace fs = std::filesystem;
using namespace NZEPQEL20;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct TOutlineRow {
  const char* name;
  const char* text;
  std::vector<std::string> includes;
  bool registersProviders;
  bool isMereSchema;
};
void PrintTo(const TOutlineRow& row, std::ostream* out) {
  *out << row.name;
}

class MofOutlineTest : public ::testing::TestWithParam<TOutlineRow> {};

TEST_P(MofOutlineTest, TellsWhatTheTextSays) {
  const TMofOutline outline = OutlineMof(GetParam().text);
  EXPECT_EQ(outline.includes, GetParam().includes);
  EXPECT_EQ(outline.registersProviders, GetParam().registersProviders);
  EXPECT_EQ(outline.isMereSchema, GetParam().isMereSchema);
}

INSTANTIATE_TEST_SUITE_P(
    All, MofOutlineTest,
    ::testing::Values(
        TOutlineRow{"Nothing", "", {}, false, false}, TOutlineRow{"Blank", " ", {}, false, true},
        TOutlineRow{"Class", "class A_A { };", {}, false, true},
        TOutlineRow{"Includes",
                    "#pragma include (\"a\")\n // x\n\t# PRAGMA  Include(\"b\\c\" )\r\n",
                    {"a", "b\\c"},
                    false,
                    true},
        TOutlineRow{"NoIncludes", "//#pragma include (\"a\")\n#pragma include", {}, false, true},
        TOutlineRow{"CarriageReturns",
                    "// c\r#pragma include (\"a\")\rclass A_A { };\r#pragma include (\"b\")\r",
                    {"a", "b"},
                    false,
                    true},
        TOutlineRow{
            "IncludesAmidLines",
            "/* x */ #pragma include (\"a\") class A_A { }; #pragma\n include // y\n(\"b\")",
            {"a", "b"},
            false,
            true},
        TOutlineRow{"InBlockComment",
                    "/* x\n#pragma include (\"a\")\n*/ #pragma include (\"b\")\n/* \" */\n/*\n"
                    "#pragma include (\"c\")",
                    {"b"},
                    false,
                    true},
        TOutlineRow{
            "InString",
            "[Description(\"\\\"#pragma include (\\\"a\\\") /* \")] class A_A { char16 c = '\"'; "
            "char16 d = '\\\"'; };\n#pragma include (\"b\\\") #pragma include (\"c\")",
            {"b\\", "c"},
            false,
            true},
        TOutlineRow{"BehindAnOpenString", "\"abc\n#pragma include (\"a\")", {"a"}, false, true},
        TOutlineRow{"OpenInclude", "#pragma include (\"a\n\"", {}, false, true},
        TOutlineRow{"Registration", "instance of PG_ProviderModule { };", {}, true, false},
        TOutlineRow{"AnyCase", "Instance OF\n\t pg_provider{ };", {}, true, false},
        TOutlineRow{"Named", "class PG_Provider { };", {}, false, false},
        TOutlineRow{"Glued", "instanceofPG_Provider { };", {}, false, false},
        TOutlineRow{"OfAlone", "of PG_Provider", {}, true, false},
        TOutlineRow{"FirstWord", "PG_Provider of _Provider", {}, false, false},
        TOutlineRow{"ShortWords", "_ G_Provider PG_", {}, false, true}),
    [](const auto& row) { return row.param.name; });

constexpr std::int64_t kAlways = std::numeric_limits<std::int64_t>::max();

class MofOutlinesTest : public ::testing::Test {
 protected:
  MofOutlinesTest() {
    m_file = m_folder.Write("v/a.mof", "#pragma include (\"b.mof\")\n");
    m_place.folders = {m_folder.GetPath("cache")};
    m_place.fileName = "x.cache";
    m_place.leastSize = 0;
  }

  /// Another process that believes stamps of any age, which looks at the file and stores.
  TMofOutlines Visit() { return Visit(m_file); }
  TMofOutlines Visit(const std::string& file) {
    TMofOutlines outlines(m_place, kAlways);
    outlines.Find(file);
    outlines.Store();
    return outlines;
  }
  std::string GetStored() const { return m_folder.GetPath("cache/outlines-x.cache"); }

  TTemporaryFolder m_folder;
  std::string m_file;
  TSchemaCachePlace m_place;
};

TEST_F(MofOutlinesTest, AStoredOutlineSparesTheReading) {
  EXPECT_EQ(Visit().GetReadCount(), 1U);
  TMofOutlines second = Visit();
  EXPECT_EQ(second.GetReadCount(), 0U);
  EXPECT_THAT(second.Find(m_file)->includes, ElementsAre("b.mof"));
  EXPECT_THAT(second.GetNotes(), IsEmpty());
}

TEST_F(MofOutlinesTest, AFileIsReadOnceByAProcess) {
  TMofOutlines outlines;
  outlines.Find(m_file);
  m_folder.Write("v/a.mof", "");
  EXPECT_THAT(outlines.Find(m_file)->includes, ElementsAre("b.mof"));
  EXPECT_EQ(outlines.Find(m_folder.GetPath("none.mof")), nullptr);
  EXPECT_EQ(outlines.Find(m_folder.GetPath("none.mof")), nullptr);
  EXPECT_EQ(outlines.GetReadCount(), 2U);
}

TEST_F(MofOutlinesTest, OutlinesOfFilesWithYoungStampsAreNotStored) {
  // However late this is, the file is younger.
  constexpr std::int64_t kDay = 86'400;
  const timespec tomorrow = {GetFileClock() / 1'000'000'000 + kDay, 0};
  const timespec times[2] = {tomorrow, tomorrow};
  ASSERT_EQ(utimensat(AT_FDCWD, m_file.c_str(), times, 0), 0);
  TMofOutlines young(m_place);
  young.Find(m_file);
  young.Store();
  EXPECT_FALSE(fs::exists(GetStored()));
  TMofOutlines ofAge(m_place);
  ofAge.Find(DIAGSRUNNER_SCHEMA_DIR "/cim_core.mof");
  ofAge.Store();
  EXPECT_TRUE(fs::exists(GetStored()));
}

TEST_F(MofOutlinesTest, AStampThatNobodyCanSetTellsTheAge) {
  // As old as can be by the one time; by the other as young as the process it is asked by.
  const timespec times[2] = {{1, 0}, {1, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, m_file.c_str(), times, 0), 0);
  TFileStamp stamp;
  int error = 0;
  ASSERT_TRUE(stamp.Read(m_file, error));
  TMofOutlines young(m_place, stamp.changed);
  young.Find(m_file);
  young.Store();
  EXPECT_FALSE(fs::exists(GetStored()));
  TMofOutlines ofAge(m_place, stamp.changed + 1);
  ofAge.Find(m_file);
  ofAge.Store();
  EXPECT_EQ(Visit().GetReadCount(), 0U);
}

TEST_F(MofOutlinesTest, WhatIsTooLittleIsNotStored) {
  m_place.leastSize = fs::file_size(m_file) + 1;
  Visit();
  EXPECT_FALSE(fs::exists(GetStored()));
  --m_place.leastSize;
  Visit();
  EXPECT_TRUE(fs::exists(GetStored()));
}

TEST_F(MofOutlinesTest, ARelativePathIsNotStored) {
  Visit(fs::relative(m_file).string());
  EXPECT_FALSE(fs::exists(GetStored()));
}

TEST_F(MofOutlinesTest, TheFolderThatKnowsTheFileAsItIsCounts) {
  m_place.folders = {m_folder.GetPath("one")};
  Visit();
  m_folder.Write("v/a.mof", "class A_A { };");
  // The first one cannot be replaced any more.
  fs::create_directory(m_folder.GetPath("two"));
  m_place.folders = {m_folder.GetPath("two")};
  Visit();
  m_place.folders = {m_folder.GetPath("one"), m_folder.GetPath("two")};
  TMofOutlines outlines = Visit();
  EXPECT_EQ(outlines.GetReadCount(), 0U);
  EXPECT_THAT(outlines.Find(m_file)->includes, IsEmpty());
}

TEST_F(MofOutlinesTest, WhereOneFolderCannotBeWrittenTheNextOneIs) {
  m_place.folders = {m_folder.Write("file", "") + "/cache", m_folder.GetPath("cache")};
  EXPECT_THAT(Visit().GetNotes(), ElementsAre(HasSubstr("not used"), HasSubstr("not written"),
                                              HasSubstr("written to")));
  EXPECT_EQ(Visit().GetReadCount(), 0U);
}

TEST_F(MofOutlinesTest, WithoutChanceNothingIsStored) {
  const TSystemHook hook(TSystemHook::kGetrandom, TSystemHook::FailAfter(0, ENOSYS));
  EXPECT_THAT(Visit().GetNotes(), ElementsAre("outlines not written: " + m_place.folders[0] +
                                              ": Function not implemented"));
  EXPECT_FALSE(fs::exists(GetStored()));
}

TEST_F(MofOutlinesTest, AFolderThatCannotBeLookedThroughToItsEndIsStoredIn) {
  for (const char* other : {"cache/a", "cache/b", "cache/c"}) m_folder.Write(other, "");
  // Its own two names, and the first of the others: the rest is come to by going on.
  const TSystemHook hook(TSystemHook::kReaddir, TSystemHook::FailAfter(3, EIO));
  EXPECT_THAT(Visit().GetNotes(), ElementsAre(HasSubstr("written to")));
  EXPECT_TRUE(fs::exists(GetStored()));
}

TEST_F(MofOutlinesTest, WantOfMemoryIsANoteToo) {
  const TSystemHook hook(TSystemHook::kFsync, []() -> int { throw std::bad_alloc(); });
  EXPECT_THAT(Visit().GetNotes(), ElementsAre(HasSubstr("not written: std::bad_alloc")));
}

TEST_F(MofOutlinesTest, AFileThatOthersMayWriteToIsNotBelieved) {
  Visit();
  ASSERT_EQ(chmod(GetStored().c_str(), 0666), 0);
  const TMofOutlines outlines = Visit();
  EXPECT_EQ(outlines.GetReadCount(), 1U);
  EXPECT_THAT(outlines.GetNotes()[0], HasSubstr("others may write to it"));
}

std::string ReadBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(MofOutlinesTest, ADamagedFileIsAsGoodAsNone) {
  Visit();
  const std::string whole = ReadBytes(GetStored());
  for (std::size_t i = 0; i < whole.size(); ++i) {
    for (const bool isCut : {false, true}) {
      std::string bytes = whole.substr(0, isCut ? i : whole.size());
      if (!isCut) bytes[i] = static_cast<char>(bytes[i] ^ 0x10);
      m_folder.Write("cache/outlines-x.cache", bytes);
      TMofOutlines outlines(m_place, kAlways);
      EXPECT_THAT(outlines.Find(m_file)->includes, ElementsAre("b.mof"));
      EXPECT_EQ(outlines.GetReadCount(), 1U) << i;
    }
  }
}

struct TFileChange {
  const char* name;
  std::function<void(const TTemporaryFolder&)> make;
};
void PrintTo(const TFileChange& change, std::ostream* out) {
  *out << change.name;
}

class MofOutlineChangeTest : public MofOutlinesTest,
                             public ::testing::WithParamInterface<TFileChange> {};

TEST_P(MofOutlineChangeTest, IsNoticed) {
  Visit();
  ASSERT_EQ(Visit().GetReadCount(), 0U);
  GetParam().make(m_folder);
  TMofOutlines after = Visit();
  TMofOutlines fresh;
  const TMofOutline* const expected = fresh.Find(m_file);
  const TMofOutline* const found = after.Find(m_file);
  EXPECT_EQ(after.GetReadCount(), 1U);
  ASSERT_EQ(found == nullptr, expected == nullptr);
  if (found == nullptr) return;
  EXPECT_EQ(found->includes, expected->includes);
  EXPECT_EQ(found->registersProviders, expected->registersProviders);
  EXPECT_EQ(Visit().GetReadCount(), 0U);
}

INSTANTIATE_TEST_SUITE_P(
    All, MofOutlineChangeTest,
    ::testing::Values(
        TFileChange{"OfTheContent",
                    [](const TTemporaryFolder& f) {
                      f.Write("v/a.mof", "instance of PG_Provider { };\n");
                    }},
        TFileChange{"WithTheSameSizeAndTime",
                    [](const TTemporaryFolder& f) {
                      ReplaceUnseen(f.GetPath("v/a.mof"), "b.mof", "c.mof");
                    }},
        TFileChange{"ToAHalf",
                    [](const TTemporaryFolder& f) { fs::resize_file(f.GetPath("v/a.mof"), 9); }},
        TFileChange{"ByReplacing",
                    [](const TTemporaryFolder& f) {
                      f.Write("v/new", "#pragma include (\"c.mof\")\n");
                      fs::last_write_time(f.GetPath("v/new"),
                                          fs::last_write_time(f.GetPath("v/a.mof")));
                      fs::rename(f.GetPath("v/new"), f.GetPath("v/a.mof"));
                    }},
        TFileChange{"ByALinkToAnother",
                    [](const TTemporaryFolder& f) {
                      f.Write("v/other", "class A_A { };");
                      fs::remove(f.GetPath("v/a.mof"));
                      fs::create_symlink("other", f.GetPath("v/a.mof"));
                    }},
        TFileChange{"ByRemoval",
                    [](const TTemporaryFolder& f) { fs::remove(f.GetPath("v/a.mof")); }},
        TFileChange{"ByAFolder",
                    [](const TTemporaryFolder& f) {
                      fs::remove(f.GetPath("v/a.mof"));
                      fs::create_directory(f.GetPath("v/a.mof"));
                    }}),
    [](const auto& row) { return row.param.name; });

TEST_F(MofOutlinesTest, AFileThatMayNotBeReadAnyMoreIsNotKnown) {
  if (geteuid() == 0) {
    GTEST_SKIP() << "root reads every file";
  }
  ASSERT_EQ(chmod(m_file.c_str(), 0), 0);
  TMofOutlines outlines = Visit();
  EXPECT_EQ(outlines.Find(m_file), nullptr);
}

}  // namespace
}  // namespace cachetest
