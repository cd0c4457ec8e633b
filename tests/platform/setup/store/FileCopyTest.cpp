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

std::string FailureOf(const std::string& from, const std::string& to) {
  try {
    CopyFile(from, to);
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
  for (const TMode mode : {TMode{0600, 0644}, TMode{0666, 0644}, TMode{04777, 0755}}) {
    const std::string copy = folder.GetPath("copy" + std::to_string(mode.before));
    CopyFile(folder.Write("from", bytes, mode.before), copy);
    std::ifstream in(copy, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), bytes);
    struct stat status = {};
    ASSERT_EQ(::stat(copy.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, mode.after) << mode.before;
  }
}

TEST(FileCopyTest, WhatIsNoPlainFileIsRefusedAtOnce) {
  const TTemporaryFolder folder;
  const std::string pipe = folder.GetPath("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_THAT(FailureOf(pipe, folder.GetPath("copy")), HasSubstr("pipe: is not a regular file"));
  EXPECT_THAT(FailureOf(folder.GetPath(), folder.GetPath("copy")),
              HasSubstr(": is not a regular file"));
  std::filesystem::create_symlink(folder.Write("file", ""), folder.GetPath("link"));
  EXPECT_THAT(FailureOf(folder.GetPath("link"), folder.GetPath("copy")),
              HasSubstr("link: cannot be read: Too many levels"));
  EXPECT_FALSE(std::filesystem::exists(folder.GetPath("copy")));
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
