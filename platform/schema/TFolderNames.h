// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include "platform/schema/TSchemaSources.h"

namespace NZEPQEL20 {

/// Finds names in folders whatever their case.
///
/// Each folder is looked through once, when it is asked for first: an object is to live as long as
/// one piece of work, which sees the folders as they were then.
class TFolderNames {
 public:
  /// The folders that are looked through are added to `sources`.
  explicit TFolderNames(TSchemaSources* sources = nullptr) : m_sources(sources) {}

  /// `folder`/`name` with the spelling that the folder has for it in any case; empty when there is
  /// none. Of several it is the first in the order of bytes. An empty folder is the working folder.
  std::string Find(const std::string& folder, const std::string& name);

 private:
  using TNames = std::unordered_map<std::string, std::string>;

  const TNames& Read(const std::string& folder);

  TSchemaSources* m_sources;
  std::unordered_map<std::string, TNames> m_folders;  ///< The names by their folded forms.
};

/// A hash over the names in a folder, and its stamp from before they were read. False when it
/// cannot be read.
bool HashFolder(const std::string& folder, TFileStamp& stamp, std::uint64_t& hash);

}  // namespace NZEPQEL20
