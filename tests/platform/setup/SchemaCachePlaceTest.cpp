// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>

#include "platform/setup/ProviderSetup.h"
#include "platform/setup/SchemaCachePlace.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20::setup {
namespace {

using ::testing::ElementsAreArray;

// Sets environment variables, and what they were before at the end.
class TEnvironment {
 public:
  void Set(const std::string& name, const char* value) {
    const char* const before = std::getenv(name.c_str());
    m_before.emplace(name, before == nullptr ? std::nullopt : std::optional<std::string>(before));
    Put(name, value);
  }
  TEnvironment() = default;
  TEnvironment(const TEnvironment&) = delete;
  TEnvironment& operator=(const TEnvironment&) = delete;
  ~TEnvironment() {
    for (const auto& [name, value] : m_before) Put(name, value ? value->c_str() : nullptr);
  }

 private:
  static void Put(const std::string& name, const char* value) {
    if (value == nullptr) {
      unsetenv(name.c_str());
    } else {
      setenv(name.c_str(), value, 1);
    }
  }
  std::map<std::string, std::optional<std::string>> m_before;
};

struct TPlaceRow {
  const char* name;
  const char* chosen;
  const char* caches;
  const char* home;
  std::vector<std::string> folders;
};
void PrintTo(const TPlaceRow& row, std::ostream* out) {
  *out << row.name;
}

class SchemaCachePlaceTest : public ::testing::TestWithParam<TPlaceRow> {};

TEST_P(SchemaCachePlaceTest, FollowsTheEnvironment) {
  TEnvironment environment;
  environment.Set("DIAGSRUNNER_SCHEMA_CACHE", GetParam().chosen);
  environment.Set("XDG_CACHE_HOME", GetParam().caches);
  environment.Set("HOME", GetParam().home);
  EXPECT_THAT(ChooseSchemaCache("/opt/x").folders, ElementsAreArray(GetParam().folders));
}

INSTANTIATE_TEST_SUITE_P(
    All, SchemaCachePlaceTest,
    ::testing::Values(
        TPlaceRow{"Home", nullptr, nullptr, "/h", {"/opt/x/cache", "/h/.cache/diagsrunner"}},
        TPlaceRow{"Xdg", "", "/c", "/h", {"/opt/x/cache", "/c/diagsrunner"}},
        TPlaceRow{"RelativeXdg", nullptr, "c", "/h", {"/opt/x/cache", "/h/.cache/diagsrunner"}},
        TPlaceRow{"NoHome", nullptr, nullptr, nullptr, {"/opt/x/cache"}},
        TPlaceRow{"RelativeHome", nullptr, nullptr, "h", {"/opt/x/cache"}},
        TPlaceRow{"Chosen", "/own", "/c", "/h", {"/own"}},
        TPlaceRow{"RelativeChosen", "own", nullptr, nullptr, {"/opt/x/cache"}},
        TPlaceRow{"Off", "off", "/c", "/h", {}}),
    [](const auto& row) { return row.param.name; });

TEST(SchemaCacheOwnerTest, RootWritesNothingIntoTheHomeOfAnotherUser) {
  const TTemporaryFolder home;
  constexpr uid_t kNobody = 65534;
  // Where the tests do not run as root, the folder is another user's as it is.
  if (geteuid() == 0) {
    ASSERT_EQ(chown(home.GetPath().c_str(), kNobody, kNobody), 0);
  }
  for (const char* name : {"HOME", "XDG_CACHE_HOME"}) {
    TEnvironment environment;
    environment.Set("DIAGSRUNNER_SCHEMA_CACHE", nullptr);
    environment.Set("XDG_CACHE_HOME", nullptr);
    environment.Set("HOME", "/");
    environment.Set(name, home.GetPath().c_str());
    EXPECT_EQ(ChooseSchemaCache("/opt/x", 0).folders.size(), 1U) << name;
    EXPECT_EQ(ChooseSchemaCache("/opt/x", kNobody).folders.size(), 2U) << name;
  }
}

TEST(SchemaCacheNameTest, EachRootHasAFileOfItsOwn) {
  const std::string one = ChooseSchemaCache("/opt/x").fileName;
  EXPECT_EQ(one, ChooseSchemaCache("/opt/x").fileName);
  EXPECT_NE(one, ChooseSchemaCache("/opt/y").fileName);
  EXPECT_EQ(one.size(), std::string("schema-0123456789abcdef.cache").size());
}

// A root with a schema that is large enough to be stored.
void WriteSchema(const TTemporaryFolder& root) {
  std::string mof;
  for (int i = 0; mof.size() < 400'000; ++i) {
    mof += "[Description(\"" + std::string(500, 'x') + "\")] class B_" + std::to_string(i) +
           " { [Key] uint8 k; };\n";
  }
  root.Write("schema/big.mof", mof);
}

TEST(SchemaCacheUseTest, TheSecondStartOfARootUsesTheCacheBelowIt) {
  TEnvironment environment;
  environment.Set("DIAGSRUNNER_SCHEMA_CACHE", nullptr);
  const TTemporaryFolder root;
  WriteSchema(root);
  const std::size_t count = OpenProviders(root.GetPath(), "root/x").classes->GetCount();
  const std::string file = root.GetPath() + "/cache/" + ChooseSchemaCache(root.GetPath()).fileName;
  ASSERT_TRUE(std::filesystem::exists(file));
  EXPECT_EQ(OpenProviders(root.GetPath(), "root/x").classes->GetCount(), count);
  root.Write("providers/acme/acme.mof", "class C_C { };");
  EXPECT_EQ(OpenProviders(root.GetPath(), "root/x").classes->GetCount(), count + 1);
}

// The file that the outlines of vendors' MOF are in; each time they are stored it is another one.
ino_t GetStoredFile(const TTemporaryFolder& root) {
  struct stat info = {};
  EXPECT_EQ(stat((root.GetPath() + "/cache/outlines-" + ChooseSchemaCache(root.GetPath()).fileName)
                     .c_str(),
                 &info),
            0);
  return info.st_ino;
}

TEST(SchemaCacheUseTest, AVendorsSchemaIsNotReadAgainAndItsChangesAreNoticed) {
  TEnvironment environment;
  environment.Set("DIAGSRUNNER_SCHEMA_CACHE", nullptr);
  const TTemporaryFolder root;
  root.Write("schema/base.mof", "class A_Base { [Key] string InstanceID; };");
  // Files that have been there for long.
  std::filesystem::create_directories(root.GetPath("providers/acme"));
  for (const auto& entry : std::filesystem::directory_iterator(DIAGSRUNNER_SCHEMA_DIR)) {
    for (int i = 0; i < 9; ++i) {
      const std::string name = std::to_string(i) + entry.path().filename().string();
      std::filesystem::create_symlink(entry.path(), root.GetPath("providers/acme/" + name));
    }
  }
  const std::size_t count = OpenProviders(root.GetPath(), "root/x").classes->GetCount();
  const auto stored = GetStoredFile(root);
  EXPECT_EQ(OpenProviders(root.GetPath(), "root/x").classes->GetCount(), count);
  EXPECT_EQ(GetStoredFile(root), stored);
  std::filesystem::remove(root.GetPath("providers/acme/0cim_jobs.mof"));
  root.Write("providers/acme/0cim_jobs.mof",
             "instance of PG_ProviderModule { Name = \"M\"; InterfaceType = \"CMPI\"; "
             "Location = \"acme\"; };\n"
             "instance of PG_Provider { ProviderModuleName = \"M\"; Name = \"P\"; };\n"
             "instance of PG_ProviderCapabilities { ProviderModuleName = \"M\"; ProviderName = "
             "\"P\"; CapabilityID = \"1\"; ClassName = \"A_Base\"; Namespaces = {\"root/y\"}; "
             "ProviderType = {2}; };\n");
  const TProviderSetup changed = OpenProviders(root.GetPath(), "root/x");
  EXPECT_THAT(changed.operations->GetNamespaces(), ::testing::ElementsAre("root/x", "root/y"));
  root.Write("providers/acme/0cim_jobs.mof", "class A_More { };");
  EXPECT_EQ(OpenProviders(root.GetPath(), "root/x").classes->GetCount(), count + 1);
}

TEST(SchemaCacheUseTest, NothingIsWrittenWhenItIsOff) {
  TEnvironment environment;
  environment.Set("DIAGSRUNNER_SCHEMA_CACHE", "off");
  const TTemporaryFolder root;
  WriteSchema(root);
  OpenProviders(root.GetPath(), "root/x");
  EXPECT_FALSE(std::filesystem::exists(root.GetPath() + "/cache"));
}

}  // namespace
}  // namespace NZEPQEL20::setup
