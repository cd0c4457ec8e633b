// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <ostream>

#include "platform/contract/TQELException.h"
#include "platform/setup/InstalledFiles.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20::setup {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(InstalledFilesTest, AreFoundByFolderAndEndingInOrderOfTheirNames) {
  const TTemporaryFolder root;
  const std::string second = root.Write("schema/b.mof", "");
  const std::string first = root.Write("schema/a.mof", "");
  root.Write("schema/notes.txt", "");
  const std::string vendorSchema = root.Write("providers/acme/acme.mof", "");
  const std::string registration = root.Write("providers/acme/acme.registration", "");
  const std::string inner = root.Write("providers/acme/mof/more.MOF", "");
  root.Write("providers/stray.registration", "");
  root.Write("providers/.acme.tmp-1/acme.mof", "");
  const TInstalledFiles files = FindInstalledFiles(root.GetPath());
  EXPECT_THAT(files.schema, ElementsAre(first, second));
  EXPECT_THAT(files.providerSchema, ElementsAre(vendorSchema, inner));
  EXPECT_THAT(files.providerFolders, ElementsAre(root.GetPath() + "/providers/acme"));
  ASSERT_EQ(files.vendors.size(), 1U);
  EXPECT_EQ(files.vendors[0].path, root.GetPath() + "/providers/acme");
  EXPECT_THAT(files.vendors[0].files, ElementsAre(vendorSchema, registration, inner));
  EXPECT_THAT(files.problems, IsEmpty());
}

TEST(InstalledFilesTest, AWholeSchemaMayLieInFoldersOfItsOwn) {
  const TTemporaryFolder root;
  const std::string core = root.Write("schema/cim_2.41/Core/CIM_A.mof", "");
  const std::string master = root.Write("schema/cim_2.41/cim.MOF", "");
  const std::string device = root.Write("schema/cim_2.41/Device/CIM_B.Mof", "");
  root.Write("schema/cim_2.41/Device/notes.txt", "");
  root.Write("schema/cim_2.41/Device/._CIM_B.mof", "");
  root.Write("schema/.old/CIM_C.mof", "");
  const std::string own = root.Write("schema/vendor.mof", "");
  const std::string other = root.Write("schema/a/x.mof", "");
  EXPECT_THAT(FindInstalledFiles(root.GetPath()).schema,
              ElementsAre(own, other, master, core, device));
}

TEST(InstalledFilesTest, TheShippedFilesComeFirstWhateverIsBesideThem) {
  const TTemporaryFolder root;
  std::vector<std::string> expected;
  for (const auto& entry : std::filesystem::directory_iterator(DIAGSRUNNER_SCHEMA_DIR)) {
    expected.push_back(root.Write("schema/" + entry.path().filename().string(), ""));
  }
  std::sort(expected.begin(), expected.end());
  ASSERT_EQ(expected.size(), 5U);
  for (const char* name : {"schema/CIM_Processor.mof", "schema/a.mof", "schema/in/cim_core.mof"}) {
    expected.push_back(root.Write(name, ""));
  }
  EXPECT_EQ(FindInstalledFiles(root.GetPath()).schema, expected);
}

TEST(InstalledFilesTest, AFileThatAnotherIncludesComesBehindIt) {
  const TTemporaryFolder root;
  const std::string inner = root.Write("schema/a.mof", "");
  const std::string other = root.Write("schema/b.mof", "");
  const std::string deep = root.Write("schema/in/c.mof", "/* x */ #pragma include (\"../a.mof\")");
  const std::string outer = root.Write("schema/z.mof", "// x\r#pragma include (\"a.mof\")\r");
  EXPECT_THAT(FindInstalledFiles(root.GetPath()).schema, ElementsAre(other, outer, deep, inner));
}

TEST(InstalledFilesTest, AShippedFileThatAnotherIncludesIsStillTheFirst) {
  const TTemporaryFolder root;
  const std::string own = root.Write("schema/a.mof", "#pragma include (\"cim_core.mof\")");
  const std::string shipped = root.Write("schema/cim_core.mof", "");
  EXPECT_THAT(FindInstalledFiles(root.GetPath()).schema, ElementsAre(shipped, own));
}

TEST(InstalledFilesTest, LinksThatLeadRoundInCirclesEnd) {
  const TTemporaryFolder root;
  const std::string file = root.Write("schema/a/x.mof", "");
  std::filesystem::create_directory_symlink("..", root.GetPath() + "/schema/a/up");
  std::filesystem::create_directory_symlink("a", root.GetPath() + "/schema/b");
  std::filesystem::create_directory_symlink("nowhere", root.GetPath() + "/schema/c");
  const TInstalledFiles files = FindInstalledFiles(root.GetPath());
  EXPECT_THAT(files.schema, ElementsAre(file));
}

TEST(InstalledFilesTest, FoldersInFoldersAreReadOnlySoDeep) {
  const TTemporaryFolder root;
  std::string inside = "schema";
  for (int depth = 0; depth < 10; ++depth) {
    root.Write(inside + "/x.mof", "");
    inside += "/d";
  }
  EXPECT_EQ(FindInstalledFiles(root.GetPath()).schema.size(), 9U);
}

TEST(InstalledFilesTest, AnEmptyRootHasNoSchema) {
  const TTemporaryFolder root;
  const TInstalledFiles files = FindInstalledFiles(root.GetPath());
  EXPECT_THAT(files.problems, ElementsAre(HasSubstr("/schema: holds no class declarations")));
  EXPECT_THAT(files.vendors, IsEmpty());
}

TEST(InstalledFilesTest, AFileInThePlaceOfAFolderIsNamed) {
  const TTemporaryFolder root;
  root.Write("schema", "not a folder");
  EXPECT_THAT(FindInstalledFiles(root.GetPath()).problems,
              ::testing::Contains(HasSubstr("/schema: cannot be read: Not a directory")));
}

TEST(InstalledFilesTest, ARootIsMadeAbsoluteAndLosesItsTrailingSlash) {
  const TTemporaryFolder root;
  EXPECT_EQ(CheckRoot(root.GetPath() + "//./"), root.GetPath());
  const std::string relative = std::filesystem::relative(root.GetPath()).string();
  EXPECT_EQ(CheckRoot(relative), root.GetPath());
  EXPECT_EQ(CheckRoot("/"), "/");
}

struct TBadRoot {
  const char* name;
  const char* root;
  const char* reason;
};
void PrintTo(const TBadRoot& row, std::ostream* out) {
  *out << row.name;
}

class BadRootTest : public ::testing::TestWithParam<TBadRoot> {};

TEST_P(BadRootTest, IsRefusedByNameReasonAndRemedy) {
  try {
    CheckRoot(GetParam().root);
    FAIL() << "was accepted";
  } catch (const TQELException& e) {
    EXPECT_THAT(e.what(), HasSubstr(std::string("installation root ") + GetParam().root));
    EXPECT_THAT(e.what(), HasSubstr(GetParam().reason));
    EXPECT_THAT(e.what(), HasSubstr("DIAGSRUNNER_ROOT"));
    EXPECT_EQ(e.GetStatusCode(), TQELStatusCode::kNotFound);
  }
}
INSTANTIATE_TEST_SUITE_P(All, BadRootTest,
                         ::testing::Values(TBadRoot{"Missing", "/no/such/root", "No such file"},
                                           TBadRoot{"AFile", "/etc/passwd", "not a directory"},
                                           TBadRoot{"Empty", "", "not a path"}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace NZEPQEL20::setup
