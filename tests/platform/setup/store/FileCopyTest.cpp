// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/contract/TQELException.h"
#include "platform/setup/FileCopy.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20::setup {
namespace {

using ::testing::HasSubstr;

TVendorFile Find(const std::string& file) {
  return TVendorFolder(std::filesystem::path(file).parent_path().string()).Find(file);
}

std::string FailureOf(const std::string& from, const std::string& to) {
  try {
    CopyFile(Find(from), to);
  } catch (const TQELException& failure) {
    return failure.what();
  }
  return "";
}

TEST(FileCopyTest, BytesArriveAsTheyAreAndPermissionsAsTheyShould) {
  const TTemporaryFolder folder;
  const std::string bytes = std::string("a\0b", 3) + std::string(200'000, 'x');
  struct TMode {
    mode_t before;
    mode_t after;
  };
  for (const TMode mode : {TMode{0600, 0600}, TMode{0640, 0640}, TMode{0666, 0644},
                           TMode{06777, 0755}, TMode{0700, 0700}}) {
    const std::string copy = folder.GetPath("copy" + std::to_string(mode.before));
    CopyFile(Find(folder.Write("from", bytes, mode.before)), copy);
    std::ifstream in(copy, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), bytes);
    struct stat status = {};
    ASSERT_EQ(::stat(copy.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, mode.after) << mode.before;
  }
}

TEST(FileCopyTest, ATargetThatIsThereIsLeftAlone) {
  const TTemporaryFolder folder;
  const std::string from = folder.Write("from", "new");
  const std::string to = folder.Write("to", "older");
  EXPECT_THAT(FailureOf(from, to), HasSubstr("to: cannot be made: File exists"));
  EXPECT_EQ(std::filesystem::file_size(to), 5U);
}

TEST(FileCopyTest, AFailureToWriteSaysWhatHelps) {
  EXPECT_THAT(DescribeWriteFault(EROFS), HasSubstr("the installation root is read-only"));
  EXPECT_THAT(DescribeWriteFault(ENOSPC), HasSubstr("No space left on device; make room"));
  EXPECT_THAT(DescribeWriteFault(EACCES), HasSubstr("name another root"));
  EXPECT_EQ(DescribeWriteFault(EIO), "Input/output error");
}

}  // namespace
}  // namespace NZEPQEL20::setup
