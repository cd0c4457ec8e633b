// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "platform/contract/Export.h"

namespace NZEPQEL20 {

/// What the runner needs of the operating system and of the host's configuration.
class DIAGSPLATFORM_EXPORT TOSSpecific {
 public:
  /// The machine's BIOS identifier from DMI, trimmed; empty where there is none.
  static std::string GetBiosID();

  /// The installation root, without a trailing "/": what SetQELRootPath() was given, else the
  /// environment variable DIAGSRUNNER_ROOT, else the place below the install prefix.
  static std::string GetQELRootPath();

  /// Size in bytes; 0 for a file that does not exist.
  /// Errors: TQELException naming the file and the system's reason; a directory is an error.
  static std::uint64_t GetFileSize(std::string path);

  /// False unless the host said otherwise.
  static bool isOEMBuild();

  /// Overrides the root for this process; an empty text takes the override back.
  static void SetQELRootPath(const std::string& root);
  static void SetOEMBuild(bool isOEM);
};

}  // namespace NZEPQEL20
