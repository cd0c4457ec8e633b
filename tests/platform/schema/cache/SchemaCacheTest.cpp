// SPDX-License-Identifier: Apache-2.0
// The cache is used when nothing has changed, and never otherwise.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <thread>

#include "tests/platform/schema/FullSchema.h"
#include "tests/platform/schema/cache/Dump.h"
#include "tests/platform/schema/cache/TCacheWorld.h"

namespace cachetest {
namespace {

namespace fs = std::filesystem;
using namespace NZEPQEL20;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

TEST(SchemaCacheTest, ASecondLoadGivesTheSameFromTheCache) {
  const TCacheWorld world;
  const TLoadedSchema first = world.Load();
  EXPECT_FALSE(first.isFromCache);
  EXPECT_THAT(GetNotes(first), HasSubstr("schema cache written to " + world.GetPath("cache")));
  const TLoadedSchema second = world.Load();
  EXPECT_TRUE(second.isFromCache);
  EXPECT_THAT(GetNotes(second), HasSubstr("taken from the cache"));
  // What the comparison is worth: there is something to compare.
  EXPECT_EQ(second.problems.size(), 3U);
  EXPECT_EQ(second.classes->GetInstances().size(), 3U);
  EXPECT_EQ(second.classes->GetCount(), 4U);
  EXPECT_FALSE(second.classes->IsComplete("V_Child"));
  EXPECT_TRUE(second.classes->IsA("V_Child", "V_Gone"));
}

TEST(SchemaCacheTest, AFileThatCannotBeReadDoesNotSwitchItOff) {
  TCacheWorld world;
  world.inputs.files.push_back(world.GetPath("loop.mof"));
  fs::create_symlink("loop.mof", world.inputs.files.back());
  world.Load();
  EXPECT_TRUE(world.Load().isFromCache);
  fs::remove(world.inputs.files.back());
  world.folder.Write("loop.mof", "class L_L { };");
  const TLoadedSchema mended = world.Load();
  EXPECT_FALSE(mended.isFromCache);
  EXPECT_NE(mended.classes->Find("L_L"), nullptr);
}

TEST(SchemaCacheTest, AFullSchemaComesWholeFromTheCache) {
  TCacheWorld world;
  constexpr std::size_t kCount = 120;
  world.inputs.files = {fullschema::Write(world.GetPath("full"), kCount)};
  world.Load();
  const TLoadedSchema second = world.Load();
  EXPECT_TRUE(second.isFromCache);
  EXPECT_THAT(second.problems, IsEmpty());
  EXPECT_EQ(second.classes->GetCount(), kCount);
  EXPECT_GE(second.classes->Find(fullschema::GetClassName(kCount - 1))->properties.size(), 10U);
}

TEST(SchemaCacheTest, WhatAMasterFileIncludesIsNotReadAgainByItsOwnName) {
  const schematest::TFolder folder;
  constexpr std::size_t kCount = 30;
  TSchemaInputs inputs;
  inputs.files = {fullschema::Write(folder.GetPath(), kCount),
                  folder.GetPath() + "/qualifiers.mof"};
  std::size_t size = 0;
  for (std::size_t i = 0; i < kCount; ++i) {
    inputs.files.push_back(folder.GetPath() + "/" + fullschema::GetFileName(i));
  }
  for (const std::string& file : inputs.files) size += fs::file_size(file);
  const TLoadedSchema loaded = LoadSchema(inputs, {});
  EXPECT_THAT(loaded.problems, IsEmpty());
  EXPECT_EQ(loaded.classes->GetCount(), kCount);
  EXPECT_EQ(loaded.classes->GetSources().Get().size(), kCount + 2);
  EXPECT_EQ(loaded.classes->GetSources().GetSize(), size);
}

TEST(SchemaCacheTest, AWholeSchemaHoldsOverAReducedOneWithOneWarning) {
  const schematest::TFolder folder;
  constexpr std::size_t kCount = 30;
  std::string reduced;
  for (std::size_t i = 0; i < kCount; i += 2) {
    reduced += "class " + fullschema::GetClassName(i) + " { };\n";
  }
  TSchemaInputs inputs;
  inputs.files = {folder.Write("cim.mof", reduced), fullschema::Write(folder.GetPath(), kCount)};
  const TLoadedSchema loaded = LoadSchema(inputs, {});
  ASSERT_EQ(loaded.problems.size(), 1U);
  EXPECT_TRUE(loaded.problems[0].isWarning);
  EXPECT_THAT(loaded.problems[0].text, HasSubstr("later declarations of 14 more classes"));
  EXPECT_NE(loaded.classes->Find("CIM_Gen0")->FindProperty("InstanceID"), nullptr);
  EXPECT_TRUE(loaded.classes->IsA("CIM_Gen28", "CIM_Gen0"));
}

struct TChange {
  const char* name;
  std::function<void(TCacheWorld&)> make;
};
void PrintTo(const TChange& change, std::ostream* out) {
  *out << change.name;
}

class SchemaChangeTest : public ::testing::TestWithParam<std::tuple<TChange, bool>> {};

TEST_P(SchemaChangeTest, IsNoticed) {
  const auto& [change, isTrusted] = GetParam();
  TCacheWorld world;
  world.Load();
  world.TrustStamps(isTrusted);
  ASSERT_TRUE(world.Load().isFromCache);
  world.TrustStamps(isTrusted);
  world.AwaitTick();
  change.make(world);
  const TLoadedSchema after = world.Load();
  EXPECT_FALSE(after.isFromCache);
  EXPECT_THAT(GetNotes(after), HasSubstr("out of date"));
  EXPECT_TRUE(world.Load().isFromCache);
}

void Write(TCacheWorld& world, const char* name, const char* text) {
  world.folder.Write(name, text);
}

INSTANTIATE_TEST_SUITE_P(
    All, SchemaChangeTest,
    ::testing::Combine(
        ::testing::Values(
            TChange{"OfAFile",
                    [](TCacheWorld& w) { Write(w, "schema/z.mof", "class Z_Z { };"); }},
            TChange{"OfAnIncludedFileWithTheSameSizeAndTime",
                    [](TCacheWorld& w) {
                      ReplaceUnseen(w.GetPath("schema/sub/Node.mof"), "Size = 4", "Size = 5");
                    }},
            TChange{"OfAFileToNothing", [](TCacheWorld& w) { Write(w, "schema/a.mof", ""); }},
            TChange{"OfTheOrder",
                    [](TCacheWorld& w) { std::swap(w.inputs.files[0], w.inputs.files[1]); }},
            TChange{"ByAnotherFile",
                    [](TCacheWorld& w) {
                      w.inputs.files.push_back(w.folder.Write("schema/b.mof", "class B_B { };"));
                    }},
            TChange{"ByAFileLess", [](TCacheWorld& w) { w.inputs.files.pop_back(); }},
            TChange{"ByAFileThatIsGone",
                    [](TCacheWorld& w) { fs::remove(w.GetPath("schema/z.mof")); }},
            TChange{"ByAFileInTheOtherPlace",
                    [](TCacheWorld& w) {
                      fs::remove(w.GetPath("schema/z.mof"));
                      fs::create_symlink("../search/other.mof", w.GetPath("schema/z.mof"));
                    }},
            TChange{"ByAnIncludeThatIsThereNow",
                    [](TCacheWorld& w) { Write(w, "schema/missing.mof", "class M_M { };"); }},
            TChange{"ByAnIncludeThatIsThereInAnotherCase",
                    [](TCacheWorld& w) { Write(w, "schema/MISSING.mof", "class M_M { };"); }},
            TChange{"ByAnIncludeThatFitsBetter",
                    [](TCacheWorld& w) { Write(w, "schema/Sub/NODE.mof", "class A_Node { };"); }},
            TChange{"ByASuperclassThatIsThereNow",
                    [](TCacheWorld& w) { Write(w, "search/v_gone.MOF", "class V_Gone { };"); }},
            TChange{"ByASuperclassInAFolderThatIsThereNow",
                    [](TCacheWorld& w) { Write(w, "nowhere/V_Gone.mof", "class V_Gone { };"); }},
            TChange{"OfTheFoldersThatAreSearched",
                    [](TCacheWorld& w) { w.inputs.folders.pop_back(); }}),
        ::testing::Bool()),
    [](const auto& row) {
      return std::string(std::get<0>(row.param).name) +
             (std::get<1>(row.param) ? "WhenStampsAreOld" : "WhenStampsAreYoung");
    });

TEST(SchemaCacheTest, ALinkThatLeadsElsewhereNowIsNoticed) {
  TCacheWorld world;
  world.folder.Write("schema/one.mof", "class O_O { };");
  world.folder.Write("schema/two.mof", "class T_T { };");
  const std::string link = world.GetPath("schema/link.mof");
  fs::create_symlink("one.mof", link);
  // Read once under its own name, so that the link is one name more for it.
  world.inputs.files = {world.GetPath("schema/one.mof"), link};
  world.Load();
  world.TrustStamps(true);
  ASSERT_TRUE(world.Load().isFromCache);
  fs::remove(link);
  fs::create_symlink("two.mof", link);
  const TLoadedSchema after = world.Load();
  EXPECT_FALSE(after.isFromCache);
  EXPECT_NE(after.classes->Find("T_T"), nullptr);
}

TEST(SchemaCacheTest, YoungStampsAreBelievedOnceTheyAreOld) {
  TCacheWorld world;
  world.inputs.files.clear();
  for (const auto& entry : fs::directory_iterator(DIAGSRUNNER_SCHEMA_DIR)) {
    world.inputs.files.push_back(entry.path().string());
  }
  world.inputs.folders.clear();
  world.Load();
  world.TrustStamps(false);
  const TLoadedSchema young = world.Load();
  EXPECT_TRUE(young.isFromCache);
  EXPECT_THAT(GetNotes(young), HasSubstr("schema cache renewed in"));
  const TLoadedSchema old = world.Load();
  EXPECT_TRUE(old.isFromCache);
  EXPECT_THAT(GetNotes(old), Not(HasSubstr("renewed")));
}

TEST(SchemaCacheTest, ASmallSchemaIsNotStored) {
  TCacheWorld world;
  world.place.leastSize = 10'000;
  EXPECT_THAT(world.Load().notes, IsEmpty());
  EXPECT_THAT(world.Load().notes, IsEmpty());
  EXPECT_FALSE(fs::exists(world.GetPath("cache")));
}

TEST(SchemaCacheTest, APipeInThePlaceOfAFileDoesNotSwitchItOff) {
  TCacheWorld world;
  const std::string pipe = world.GetPath("schema/pipe.mof");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  world.inputs.files.push_back(pipe);
  world.Load();
  EXPECT_TRUE(world.Load().isFromCache);
  fs::remove(pipe);
  world.folder.Write("schema/pipe.mof", "class P_P { };");
  EXPECT_NE(world.Load().classes->Find("P_P"), nullptr);
}

TEST(SchemaCacheTest, RelativePathsAreNotStored) {
  TCacheWorld world;
  world.inputs.files[1] = fs::relative(world.inputs.files[1]).string();
  world.Load();
  EXPECT_FALSE(world.Load().isFromCache);
}

TEST(SchemaCacheTest, SeveralThreadsMayLoadAndStoreAtOnce) {
  const TCacheWorld world;
  const std::string expected = Dump(*world.LoadFiles().classes);
  std::vector<int> good(4, 0);
  std::vector<std::thread> threads;
  for (int& count : good) {
    threads.emplace_back([&world, &count, &expected] {
      for (int round = 0; round < 8; ++round) {
        const TLoadedSchema loaded = LoadSchema(world.inputs, world.place);
        count += Dump(*loaded.classes) == expected ? 1 : 0;
        if (round % 3 == 0) std::remove(world.GetCacheFile().c_str());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(good, std::vector<int>(4, 8));
  world.Load();
  EXPECT_TRUE(world.Load().isFromCache);
  // No half-written file is left.
  EXPECT_EQ(std::distance(fs::directory_iterator(world.GetPath("cache")), {}), 1);
}

TEST(SchemaCacheTest, ClassesFromTheCacheAnswerSeveralThreadsAtOnce) {
  const TCacheWorld world;
  world.Load();
  const TLoadedSchema loaded = LoadSchema(world.inputs, world.place);
  ASSERT_TRUE(loaded.isFromCache);
  const std::string expected = Dump(*world.LoadFiles().classes);
  std::vector<int> good(4, 0);
  std::vector<std::thread> threads;
  for (int& count : good) {
    threads.emplace_back([&] { count = Dump(*loaded.classes) == expected ? 1 : 0; });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(good, std::vector<int>(4, 1));
}

}  // namespace
}  // namespace cachetest
