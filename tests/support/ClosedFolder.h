// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <string>

/// The first of `path`, an absolute one, and the folders above it that other users may not enter;
/// empty when they may enter all. A test that becomes somebody else cannot work below it.
inline std::string FindClosedFolder(const std::string& path) {
  std::filesystem::path folder;
  for (const std::filesystem::path& part : std::filesystem::path(path)) {
    folder /= part;
    struct stat status = {};
    if (::stat(folder.c_str(), &status) != 0 || (status.st_mode & S_IXOTH) == 0) {
      return folder.string();
    }
  }
  return {};
}
