// SPDX-License-Identifier: Apache-2.0
#include "platform/services/InstalledRoot.h"

#include <filesystem>
#include <system_error>

namespace NZEPQEL20::services {

std::string FindInstalledRoot(const std::string& libraryFile, const std::string& fallback) {
  constexpr int kDeepestLibrary = 2;  // Directories between the prefix and the library.

  // A program may have been started through a relative path or a symbolic link.
  std::error_code error;
  std::filesystem::path place = std::filesystem::canonical(libraryFile, error);
  if (error) return fallback;
  place = place.parent_path();
  for (int level = 0; level < kDeepestLibrary; ++level) {
    place = place.parent_path();
    const std::filesystem::path root = place / "lib" / "diagsrunner";
    if (std::filesystem::is_directory(root, error)) return root.string();
  }
  return fallback;
}

}  // namespace NZEPQEL20::services
