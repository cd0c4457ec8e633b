// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace NZEPQEL20::setup {

/// The files of an installation root that are read at set-up, by name in ascending order.
struct TInstalledFiles {
  /// *.mof below <root>/schema, a folder's own before those of the folders in it.
  std::vector<std::string> schema;
  std::vector<std::string> providerSchema;   ///< <root>/providers/<vendor>/*.mof
  std::vector<std::string> providerFolders;  ///< <root>/providers/<vendor>
  std::vector<std::string> registrations;    ///< <root>/providers/<vendor>/*.registration
  std::vector<std::string> problems;         ///< Folders that cannot be read: name and reason.
};

/// `root` as an absolute path without a trailing "/".
/// Errors: TQELException (kNotFound) naming a root that is no directory, kAccessDenied for one that
/// cannot be read.
std::string CheckRoot(const std::string& root);

/// Looks through the root. A folder that is not there holds nothing; that there is no schema or no
/// provider at all is a problem.
TInstalledFiles FindInstalledFiles(const std::string& root);

}  // namespace NZEPQEL20::setup
