// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <optional>

#include "platform/contract/TOSSpecific.h"
#include "platform/contract/TQELException.h"
#include "platform/services/BiosVersion.h"
#include "platform/services/InstalledRoot.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20 {
namespace {

using ::testing::HasSubstr;

// Leaves the process as it found it.
class OSSpecificTest : public ::testing::Test {
 protected:
  OSSpecificTest() {
    const char* const root = getenv("DIAGSRUNNER_ROOT");
    if (root != nullptr) m_root = root;
    unsetenv("DIAGSRUNNER_ROOT");
  }
  ~OSSpecificTest() override {
    TOSSpecific::SetQELRootPath("");
    TOSSpecific::SetOEMBuild(false);
    if (m_root) setenv("DIAGSRUNNER_ROOT", m_root->c_str(), 1);
  }

  // Status and text of the refusal.
  static std::pair<unsigned int, std::string> GetSizeError(const std::string& path) {
    try {
      TOSSpecific::GetFileSize(path);
    } catch (const TQELException& error) {
      return {error.GetStatusCode().GetValue(), error.what()};
    }
    return {TQELStatusCode::kOk, ""};
  }

  TTemporaryFolder m_folder;

 private:
  std::optional<std::string> m_root;
};

TEST_F(OSSpecificTest, CountsTheBytesOfAFile) {
  EXPECT_EQ(TOSSpecific::GetFileSize(m_folder.Write("five", "1234\n")), 5U);
  EXPECT_EQ(TOSSpecific::GetFileSize(m_folder.Write("none", "")), 0U);
}

TEST_F(OSSpecificTest, CountsBeyondFourGigabytes) {
  const std::string file = m_folder.Write("large", "");
  std::filesystem::resize_file(file, (5ULL << 30U) + 7);
  EXPECT_EQ(TOSSpecific::GetFileSize(file), (5ULL << 30U) + 7);
}

TEST_F(OSSpecificTest, TakesAMissingFileAsEmptyEvenWhereItsFolderIsMissing) {
  EXPECT_EQ(TOSSpecific::GetFileSize(m_folder.GetPath() + "/missing"), 0U);
  EXPECT_EQ(TOSSpecific::GetFileSize(m_folder.GetPath() + "/no/such/folder"), 0U);
  EXPECT_EQ(TOSSpecific::GetFileSize(""), 0U);
}

TEST_F(OSSpecificTest, RefusesADirectoryByNameAndReason) {
  const auto [status, text] = GetSizeError(m_folder.GetPath());
  EXPECT_EQ(status, TQELStatusCode::kFailed);
  EXPECT_EQ(text, "Size of '" + m_folder.GetPath() + "': Is a directory");
}

TEST_F(OSSpecificTest, RefusesAPathThroughAFile) {
  const std::string path = m_folder.Write("file", "x") + "/below";
  EXPECT_EQ(GetSizeError(path).second, "Size of '" + path + "': Not a directory");
}

TEST_F(OSSpecificTest, RefusesAPipeThatNobodyMayWriteTo) {
  const std::string path = m_folder.GetPath() + "/pipe";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const auto [status, text] = GetSizeError(path);
  EXPECT_EQ(status, TQELStatusCode::kInvalidArgument);
  EXPECT_EQ(text, "Size of '" + path + "': not a regular file");
}

TEST_F(OSSpecificTest, RefusesANameThatIsTooLong) {
  const std::string path = m_folder.GetPath() + "/" + std::string(5000, 'x');
  EXPECT_THAT(GetSizeError(path).second, HasSubstr("File name too long"));
}

TEST_F(OSSpecificTest, RefusesLinksThatLeadToThemselves) {
  const std::string path = m_folder.GetPath() + "/loop";
  std::filesystem::create_symlink(path, path);
  EXPECT_THAT(GetSizeError(path).second, HasSubstr("Too many levels of symbolic links"));
}

TEST_F(OSSpecificTest, PrefersTheChosenRootToTheEnvironmentsAndThatToTheInstalledOne) {
  const std::string installed = TOSSpecific::GetQELRootPath();
  EXPECT_THAT(installed, ::testing::EndsWith("/lib/diagsrunner"));

  setenv("DIAGSRUNNER_ROOT", "/from/environment", 1);
  EXPECT_EQ(TOSSpecific::GetQELRootPath(), "/from/environment");
  TOSSpecific::SetQELRootPath("/chosen");
  EXPECT_EQ(TOSSpecific::GetQELRootPath(), "/chosen");
  TOSSpecific::SetQELRootPath("");
  EXPECT_EQ(TOSSpecific::GetQELRootPath(), "/from/environment");
  setenv("DIAGSRUNNER_ROOT", "", 1);
  EXPECT_EQ(TOSSpecific::GetQELRootPath(), installed);
}

TEST_F(OSSpecificTest, GivesTheRootWithoutSlashesAtItsEnd) {
  TOSSpecific::SetQELRootPath("/chosen///");
  EXPECT_EQ(TOSSpecific::GetQELRootPath(), "/chosen");
  TOSSpecific::SetQELRootPath("/");
  EXPECT_EQ(TOSSpecific::GetQELRootPath(), "");
  TOSSpecific::SetQELRootPath("");
  setenv("DIAGSRUNNER_ROOT", "/from/environment/", 1);
  EXPECT_EQ(TOSSpecific::GetQELRootPath(), "/from/environment");
}

TEST_F(OSSpecificTest, IsAnOEMBuildOnlyWhenTheHostSaysSo) {
  EXPECT_FALSE(TOSSpecific::isOEMBuild());
  TOSSpecific::SetOEMBuild(true);
  EXPECT_TRUE(TOSSpecific::isOEMBuild());
}

TEST_F(OSSpecificTest, FindsTheRootBesideTheInstalledLibrary) {
  for (const char* library : {"lib/libX.so", "lib/x86_64-linux-gnu/libX.so", "lib64/libX.so"}) {
    const TTemporaryFolder prefix;
    const std::string file = prefix.Write(library, "");
    EXPECT_EQ(services::FindInstalledRoot(file, "/fallback"), "/fallback") << library;
    prefix.Write("lib/diagsrunner/qdx/data/x.xml", "");
    EXPECT_EQ(services::FindInstalledRoot(file, "/fallback"), prefix.GetPath() + "/lib/diagsrunner")
        << library;
  }
}

TEST_F(OSSpecificTest, FindsTheRootOfALibraryBehindALink) {
  const std::string file = m_folder.Write("lib/libX.so.1", "");
  m_folder.Write("lib/diagsrunner/x", "");
  const TTemporaryFolder elsewhere;
  const std::string link = elsewhere.GetPath() + "/libX.so";
  std::filesystem::create_symlink(file, link);
  EXPECT_EQ(services::FindInstalledRoot(link, "/fallback"),
            m_folder.GetPath() + "/lib/diagsrunner");
}

TEST_F(OSSpecificTest, FallsBackWhereTheLibraryIsUnknown) {
  EXPECT_EQ(services::FindInstalledRoot("", "/fallback"), "/fallback");
  EXPECT_EQ(services::FindInstalledRoot("/no/such/lib.so", "/fallback"), "/fallback");
}

TEST_F(OSSpecificTest, TrimsTheBiosVersion) {
  EXPECT_EQ(services::ReadBiosVersion(m_folder.Write("bios", " N2EET58W (1.40 ) \t\n")),
            "N2EET58W (1.40 )");
  EXPECT_EQ(services::ReadBiosVersion(m_folder.Write("bios", "first\nsecond\n")), "first");
}

TEST_F(OSSpecificTest, HasNoBiosVersionWhereThereIsNone) {
  EXPECT_EQ(services::ReadBiosVersion(m_folder.Write("bios", "\n")), "");
  EXPECT_EQ(services::ReadBiosVersion(m_folder.GetPath() + "/missing"), "");
  EXPECT_EQ(services::ReadBiosVersion(m_folder.GetPath()), "");
}

TEST_F(OSSpecificTest, AsksTheMachineForItsBiosVersion) {
  EXPECT_EQ(TOSSpecific::GetBiosID(), services::ReadBiosVersion("/sys/class/dmi/id/bios_version"));
}

}  // namespace
}  // namespace NZEPQEL20
