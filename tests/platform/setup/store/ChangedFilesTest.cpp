// SPDX-License-Identifier: Apache-2.0
// What was checked is what is installed: a file that changes in between is named.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "platform/setup/FileCopy.h"
#include "tests/platform/setup/store/TStoreTest.h"
#include "tests/support/TSystemHook.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;

constexpr char kOld[] = "# old\nA_Base root/x Probed good instance\n";
constexpr char kNew[] = "# new\nA_Base root/x Probed good instance\n";

struct stat GetStatus(const std::string& file) {
  struct stat status = {};
  ::stat(file.c_str(), &status);
  return status;
}

void Overwrite(const std::string& file, const std::string& text) {
  std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
}

void SetModified(const std::string& file, const timespec& time) {
  const timespec times[] = {time, time};
  ::utimensat(AT_FDCWD, file.c_str(), times, 0);
}

/// Other text of the same length under the old time, as soon as the system's clock has moved on.
void RewriteUnderOldTime(const std::string& file) {
  const struct stat before = GetStatus(file);
  for (struct stat now = before;
       now.st_ctim.tv_sec == before.st_ctim.tv_sec && now.st_ctim.tv_nsec == before.st_ctim.tv_nsec;
       now = GetStatus(file)) {
    Overwrite(file, kNew);
    SetModified(file, before.st_mtim);
  }
}

struct TChange {
  const char* name;
  void (*change)(const std::string& file);
};
void PrintTo(const TChange& row, std::ostream* out) {
  *out << row.name;
}

class ChangedFileTest : public TStoreTest, public testing::WithParamInterface<TChange> {
 protected:
  ChangedFileTest() : m_file(m_vendor.Write("sub/x.registration", kOld)) {}
  std::string Describe() const {
    return m_file +
           ": changed while it was being checked; leave the folder alone and try again; "
           "see rule R20";
  }
  std::string m_file;
};

TEST_P(ChangedFileTest, IsNamedAndNothingIsInstalled) {
  const TProviderPackage package = m_store.Read(m_vendor.GetPath());
  GetParam().change(m_file);
  EXPECT_EQ(Failure([&] { m_store.Add(package, "acme", false); }), Describe());
  EXPECT_EQ(GetInstalled(), "");
}

TEST_P(ChangedFileTest, OfARegistrationReadAloneIsNamedToo) {
  const TProviderPackage package = m_store.Read(m_file);
  GetParam().change(m_file);
  EXPECT_EQ(Failure([&] { m_store.Add(package, "acme", false); }), Describe());
}

TEST_P(ChangedFileTest, LeavesTheOneThatIsInstalled) {
  Add("acme");
  const TProviderPackage package = m_store.Read(m_vendor.GetPath());
  GetParam().change(m_file);
  EXPECT_EQ(Failure([&] { m_store.Add(package, "acme", true); }), Describe());
  EXPECT_EQ(Read("acme/sub/x.registration"), kOld);
}

INSTANTIATE_TEST_SUITE_P(Changes, ChangedFileTest,
                         testing::Values(TChange{"Longer",
                                                 [](const std::string& file) {
                                                   std::ofstream(file, std::ios::app) << "# more\n";
                                                 }},
                                         TChange{"AnotherOfTheSameName",
                                                 [](const std::string& file) {
                                                   const timespec time = GetStatus(file).st_mtim;
                                                   Overwrite(file + ".new", kNew);
                                                   SetModified(file + ".new", time);
                                                   fs::rename(file + ".new", file);
                                                 }},
                                         TChange{"OfAnotherTime",
                                                 [](const std::string& file) {
                                                   Overwrite(file, kNew);
                                                   SetModified(file, {1'000'000'000, 0});
                                                 }},
                                         TChange{"RewrittenUnderItsOldTime", &RewriteUnderOldTime},
                                         TChange{"ALinkToAnother",
                                                 [](const std::string& file) {
                                                   fs::rename(file, file + ".old");
                                                   Overwrite(file + ".new", kNew);
                                                   fs::create_symlink(file + ".new", file);
                                                 }}),
                         [](const auto& row) { return row.param.name; });

class ChangedFilesTest : public TStoreTest {
 protected:
  ChangedFilesTest() : m_file(m_vendor.Write("x.registration", kOld)) {}
  std::string m_file;
};

TEST_F(ChangedFilesTest, AFileThatComesIntoAnIncludeMeanwhileIsRefused) {
  m_vendor.Write("a.mof", "#pragma include (\"part.inc\")\n");
  const TProviderPackage package = m_store.Read(m_file);
  m_vendor.Write("part.inc", "class A_Late { };\n");
  EXPECT_EQ(Failure([&] { m_store.Add(package, "acme", false); }),
            m_vendor.GetPath("part.inc") +
                ": changed while it was being checked; leave the folder alone and try again; see "
                "rule R20");
  EXPECT_EQ(GetInstalled(), "");
}

TEST_F(ChangedFilesTest, WhatTheCheckReadsItDoesNotChange) {
  m_vendor.Write("a.mof", "#pragma include (\"part.inc\")\n");
  m_vendor.Write("part.inc", "class A_Part : A_Base { };\n");
  Take(DIAGS_PROBED_DIR "/libgood.so", "lib/libgood.so");
  const TProviderPackage package = m_store.Read(m_vendor.GetPath());
  EXPECT_EQ(ShowAll(m_store.Check(package)), "");
  m_store.Add(package, "acme", false);
  EXPECT_EQ(GetInstalled(), " acme");
}

TEST_F(ChangedFilesTest, AFileThatChangesWhileItIsCopiedIsRefused) {
  const TProviderPackage package = m_store.Read(m_vendor.GetPath());
  const TSystemHook hook(TSystemHook::kFsync, [this] {
    std::ofstream(m_file, std::ios::app) << "# more\n";
    return 0;
  });
  EXPECT_THAT(Failure([&] { m_store.Add(package, "acme", false); }),
              testing::StartsWith(m_file + ": changed while it was being checked"));
  EXPECT_EQ(GetInstalled(), "");
}

TEST_F(ChangedFilesTest, AFileThatHasMoreThanItsSizeIsNotCopiedWithoutEnd) {
  // What the system makes up as it is read has no size.
  const TVendorFile file = TVendorFolder("/proc").Find("/proc/version");
  ASSERT_EQ(file.fault, "");
  ASSERT_EQ(file.status.st_size, 0);
  EXPECT_THAT(Failure([&] { CopyFile(file, m_root.GetPath("copy")); }),
              testing::StartsWith("/proc/version: changed while it was being checked"));
}

}  // namespace
}  // namespace NZEPQEL20::setup
