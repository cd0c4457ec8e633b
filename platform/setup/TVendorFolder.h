// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "platform/schema/TDescriptor.h"

namespace NZEPQEL20::setup {

/// What each file was at some time, by its name.
using TFileStates = std::map<std::string, std::string>;

/// The state of a file: differs when it is another one, or has been written to or had its
/// permissions changed, even when its time was put back.
std::string DescribeState(const struct stat& status);

/// Throws TQELException: the file is not the one that was checked.
[[noreturn]] void RefuseChanged(const std::string& file);

/// A regular file of a vendor's folder, found and held.
struct TVendorFile {
  std::string name;            ///< As it was asked for.
  std::filesystem::path real;  ///< Its place below the folder, free of links.
  bool isLink = false;         ///< The name was that of a link to it.
  struct stat status = {};
  TDescriptor parent;  ///< The folder that it lies in.
  std::string fault;   ///< Why it cannot be had; nothing else but the name counts then.
  std::string remedy;
};

/// A vendor's folder, opened once. Its files are found from there name by name, so that nothing
/// that is renamed or linked in the meantime leads out of it.
/// Threads: safe from several.
class TVendorFolder {
 public:
  /// `path` is absolute and free of links.
  /// Errors: TQELException when it cannot be opened.
  explicit TVendorFolder(const std::string& path);

  const std::string& GetPath() const { return m_path; }

  /// Follows links as far as they stay in the folder. Opens nothing but folders: looking at a
  /// device or a pipe does nothing to it.
  TVendorFile Find(const std::string& file) const;

  /// Opens what was found for reading.
  /// Errors: TQELException naming the file: it may not be read, or is not what was found.
  static TDescriptor Open(const TVendorFile& file);

  /// `opened` is the file as Open() has given it.
  /// Errors: TQELException naming the file when it is not what was found any more.
  static void CheckUnchanged(const TVendorFile& file, int opened);

 private:
  std::string m_path;
  TDescriptor m_folder;
};

}  // namespace NZEPQEL20::setup
