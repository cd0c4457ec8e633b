// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/schema/SchemaLoad.h"
#include "tests/platform/schema/SchemaSupport.h"

namespace cachetest {

/// A schema of a few files that uses everything, and a folder for its cache.
class TCacheWorld {
 public:
  TCacheWorld();

  /// Loads with the cache. Fails the test when what comes is not what the files say.
  NZEPQEL20::TLoadedSchema Load() const;
  /// Loads without it.
  NZEPQEL20::TLoadedSchema LoadFiles() const;

  /// Makes the cache believe every stamp, as it does when the files are some seconds old; with
  /// false make it believe none.
  void TrustStamps(bool isTrusted) const;

  /// Waits until the clock of the file system ticks: what is changed from then on shows by its
  /// stamp.
  void AwaitTick() const;

  std::string GetPath(const std::string& name) const { return folder.GetPath() + "/" + name; }
  std::string GetCacheFile() const { return GetPath("cache/x.cache"); }
  std::string ReadCache() const;
  /// Writes the bytes of the cache in the place of those that are there.
  void WriteCache(const std::string& bytes) const;

  schematest::TFolder folder;
  NZEPQEL20::TSchemaInputs inputs;
  NZEPQEL20::TSchemaCachePlace place;
};

/// The texts of the notes, one line each.
std::string GetNotes(const NZEPQEL20::TLoadedSchema& schema);

/// Another content for a file, with the size and the time of modification that it had. Afterwards
/// the time of the change of the inode differs from the one before.
void ReplaceUnseen(const std::string& path, const std::string& from, const std::string& to);

}  // namespace cachetest
