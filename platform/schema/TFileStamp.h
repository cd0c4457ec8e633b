// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>

namespace NZEPQEL20 {

/// What tells a file or folder from what it was before: identity, size and times.
struct TFileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0;
  std::int64_t modified = 0;  ///< In nanoseconds since 1970.
  std::int64_t changed = 0;   ///< Likewise; of the inode, which nobody can set back.

  bool isPublic = false;  ///< Everybody may read it; has no part in comparisons.

  /// False when nothing can be found at `path`; `error` becomes the reason (errno).
  bool Read(const std::string& path, int& error);
  void Take(const struct stat& info);

  bool IsSameFile(const TFileStamp& other) const {
    return device == other.device && inode == other.inode;
  }
  friend bool operator==(const TFileStamp& left, const TFileStamp& right) {
    return left.IsSameFile(right) && left.size == right.size && left.modified == right.modified &&
           left.changed == right.changed;
  }
};

/// The clock that file times are taken from, in nanoseconds since 1970.
std::int64_t GetFileClock();

}  // namespace NZEPQEL20
