// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/schema/TMofOutlines.h"

namespace NZEPQEL20::setup {

/// A vendor's folder below `providers/`.
struct TInstalledFolder {
  std::string path;
  std::vector<std::string> files;  ///< Those of the folders below it, too.
};

/// The files of an installation root that are read at set-up, by name in ascending order.
struct TInstalledFiles {
  /// *.mof below <root>/schema, those that are shipped first, a folder's own before those of the
  /// folders in it.
  std::vector<std::string> schema;
  /// *.mof below <root>/providers/<vendor>, what others include behind those.
  std::vector<std::string> providerSchema;
  std::vector<std::string> providerFolders;  ///< <root>/providers/<vendor>
  std::vector<TInstalledFolder> vendors;     ///< The same folders with what lies in them.
  std::vector<std::string> problems;         ///< Folders that cannot be read: name and reason.
};

/// `root` as an absolute path without a trailing "/".
/// Errors: TQELException (kNotFound) naming a root that is no directory, kAccessDenied for one that
/// cannot be read.
std::string CheckRoot(const std::string& root);

/// Looks through the root. A folder that is not there holds nothing, one with a dot in front of its
/// name is left out; that there is no schema at all is a problem.
TInstalledFiles FindInstalledFiles(const std::string& root);
/// The same; what vendors' MOF files include is in `outlines`.
TInstalledFiles FindInstalledFiles(const std::string& root, TMofOutlines& outlines);

}  // namespace NZEPQEL20::setup
