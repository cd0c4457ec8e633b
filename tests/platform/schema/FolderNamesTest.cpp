// SPDX-License-Identifier: Apache-2.0
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "platform/schema/TFolderNames.h"
#include "tests/platform/schema/SchemaSupport.h"

namespace {

using namespace schematest;
using NZEPQEL20::TFolderNames;
using NZEPQEL20::TSchemaSource;
using NZEPQEL20::TSchemaSources;

TEST(FolderNamesTest, NamesAreFoundInAnyCaseAndOfSeveralTheFirst) {
  const TFolder folder;
  folder.Write("b.MOF", "");
  folder.Write("B.mof", "");
  folder.Write("one.mof", "");
  TFolderNames names;
  EXPECT_EQ(names.Find(folder.GetPath(), "b.mof"), folder.GetPath("B.mof"));
  EXPECT_EQ(names.Find(folder.GetPath(), "ONE.MOF"), folder.GetPath("one.mof"));
  EXPECT_EQ(names.Find(folder.GetPath(), "two.mof"), "");
  EXPECT_EQ(names.Find(folder.GetPath("nowhere"), "one.mof"), "");
}

TEST(FolderNamesTest, FoldersAreAddedToTheSourcesAsTheyAre) {
  const TFolder folder;
  folder.Write("file", "");
  TSchemaSources sources;
  TFolderNames names(&sources);
  names.Find(folder.GetPath(), "x");
  names.Find(folder.GetPath(), "y");
  names.Find(folder.GetPath("nowhere"), "x");
  names.Find(folder.GetPath("file"), "x");
  ASSERT_EQ(sources.Get().size(), 3U);
  EXPECT_EQ(sources.Get()[0].kind, TSchemaSource::EKind::kFolder);
  EXPECT_EQ(sources.Get()[1].kind, TSchemaSource::EKind::kAbsent);
  EXPECT_EQ(sources.Get()[2].kind, TSchemaSource::EKind::kAbsent);
  EXPECT_TRUE(sources.IsWhole());
}

/// Counts how often a folder is looked through.
class TLooks {
 public:
  explicit TLooks(const std::string& folder) {
    // With the closings, as alike events in a row would become one.
    if (inotify_add_watch(m_events, folder.c_str(), IN_OPEN | IN_CLOSE | IN_ONLYDIR) < 0) {
      throw std::system_error(errno, std::generic_category(), folder);
    }
  }
  ~TLooks() { close(m_events); }
  TLooks(const TLooks&) = delete;
  TLooks& operator=(const TLooks&) = delete;

  int Count() const {
    int count = 0;
    std::array<char, 65536> bytes = {};
    for (ssize_t got = 0; (got = read(m_events, bytes.data(), bytes.size())) > 0;) {
      for (std::size_t at = 0; at < static_cast<std::size_t>(got);) {
        inotify_event event = {};
        std::memcpy(&event, bytes.data() + at, sizeof event);
        at += sizeof event + event.len;
        // Without a name it is the folder itself.
        count += (event.mask & IN_OPEN) != 0 && event.len == 0 ? 1 : 0;
      }
    }
    return count;
  }

 private:
  int m_events = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
};

TEST(FolderNamesTest, LooksAreCounted) {
  const TFolder folder;
  const TLooks looks(folder.GetPath());
  for (int i = 0; i < 3; ++i) TFolderNames().Find(folder.GetPath(), "x");
  EXPECT_EQ(looks.Count(), 3);
}

TEST(FolderNamesTest, ManyMissingSuperclassesTakeOneLookAtTheFolder) {
  const TFolder folder;
  folder.Write("CIM_Base7.MOF", "class CIM_Base7 : CIM_Root { };");
  folder.Write("cim_root.mof", "class CIM_Root { };");
  std::string text;
  for (int i = 0; i < 50; ++i) {
    const std::string number = std::to_string(i);
    text += "class V_" + number + " : CIM_Base" + number + " { };\n";
  }
  TClassRepository repository;
  repository.AddSearchPath(folder.GetPath());
  LoadLines(repository, text);
  const TLooks looks(folder.GetPath());
  repository.Check();
  EXPECT_EQ(looks.Count(), 1);
  EXPECT_TRUE(repository.IsA("V_7", "CIM_Root"));
}

TEST(FolderNamesTest, ManyIncludesInAnotherCaseTakeOneLookAtTheFolder) {
  const TFolder folder;
  std::string text;
  for (int i = 0; i < 50; ++i) {
    const std::string number = std::to_string(i);
    folder.Write("a" + number + ".mof", "class A_" + number + " { };");
    text += "#pragma include (\"A" + number + ".MOF\")\n";
  }
  const std::string master = folder.Write("master.mof", text);
  TClassRepository repository;
  const TLooks looks(folder.GetPath());
  EXPECT_EQ(Lines(repository.Load(master)), TLines());
  EXPECT_EQ(looks.Count(), 1);
  EXPECT_EQ(repository.GetCount(), 50U);
}

}  // namespace
