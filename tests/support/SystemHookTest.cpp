// SPDX-License-Identifier: Apache-2.0
#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include "tests/support/TSystemHook.h"
#include "tests/support/TTemporaryFolder.h"

namespace {

struct TCall {
  const char* name;
  TSystemHook::ECall call;
  bool (*make)(const std::string& folder);  ///< Whether it has succeeded.
};
void PrintTo(const TCall& row, std::ostream* out) {
  *out << row.name;
}

class SystemCallTest : public ::testing::TestWithParam<TCall> {
 protected:
  bool Make() const { return GetParam().make(m_folder.GetPath()); }

  const TTemporaryFolder m_folder;
};

TEST_P(SystemCallTest, IsAskedInFrontOfTheCallWhileItLives) {
  int asked = 0;
  {
    const TSystemHook hook(GetParam().call, [&asked] {
      ++asked;
      return 0;
    });
    EXPECT_TRUE(Make());
  }
  EXPECT_TRUE(Make());
  EXPECT_EQ(asked, 1);
}

TEST_P(SystemCallTest, FailsTheCallsBehindTheGoodOnes) {
  const TSystemHook hook(GetParam().call, TSystemHook::FailAfter(1, ENOSPC));
  EXPECT_TRUE(Make());
  for (int round = 0; round < 2; ++round) {
    errno = 0;
    EXPECT_FALSE(Make());
    EXPECT_EQ(errno, ENOSPC);
  }
}

INSTANTIATE_TEST_SUITE_P(Calls, SystemCallTest,
                         ::testing::Values(TCall{"Fsync", TSystemHook::kFsync,
                                                 [](const std::string& folder) {
                                                   const int file =
                                                       ::open(folder.c_str(), O_RDONLY | O_CLOEXEC);
                                                   const bool isDone = ::fsync(file) == 0;
                                                   const int error = errno;
                                                   ::close(file);
                                                   errno = error;
                                                   return isDone;
                                                 }},
                                           TCall{"Chmod", TSystemHook::kChmod,
                                                 [](const std::string& folder) {
                                                   return ::chmod(folder.c_str(), 0700) == 0;
                                                 }},
                                           TCall{"Readdir", TSystemHook::kReaddir,
                                                 [](const std::string& folder) {
                                                   const std::unique_ptr<DIR, int (*)(DIR*)> open(
                                                       ::opendir(folder.c_str()), &::closedir);
                                                   return ::readdir(open.get()) != nullptr;
                                                 }},
                                           TCall{"Getrandom", TSystemHook::kGetrandom,
                                                 [](const std::string&) {
                                                   char byte = 0;
                                                   return ::getrandom(&byte, 1, 0) == 1;
                                                 }}),
                         [](const auto& row) { return row.param.name; });

TEST(SystemHookTest, ReachesTheCallsOfLibraries) {
  const TTemporaryFolder folder;
  const TSystemHook hook(TSystemHook::kReaddir, TSystemHook::FailAfter(0, EIO));
  std::error_code error;
  const std::filesystem::directory_iterator first(folder.GetPath(), error);
  EXPECT_EQ(error, std::errc::io_error);
}

}  // namespace
