// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TFileStamp.h"

#include <cerrno>
#include <ctime>

namespace NZEPQEL20 {

namespace {

std::int64_t GetNanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

bool TFileStamp::Read(const std::string& path, int& error) {
  struct stat info = {};
  if (stat(path.c_str(), &info) != 0) {
    error = errno;
    return false;
  }
  Take(info);
  return true;
}

void TFileStamp::Take(const struct stat& info) {
  device = info.st_dev;
  inode = info.st_ino;
  size = static_cast<std::uint64_t>(info.st_size);
  modified = GetNanoseconds(info.st_mtim);
  changed = GetNanoseconds(info.st_ctim);
  const mode_t need = S_ISDIR(info.st_mode) ? S_IROTH | S_IXOTH : S_IROTH;
  isPublic = (info.st_mode & need) == need;
}

std::int64_t GetFileClock() {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  return GetNanoseconds(now);
}

}  // namespace NZEPQEL20
