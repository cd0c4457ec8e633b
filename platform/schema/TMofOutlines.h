// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/schema/MofOutline.h"
#include "platform/schema/TSchemaCachePlace.h"
#include "platform/schema/TSchemaSources.h"

namespace NZEPQEL20 {

/// The outlines of MOF files, each made once, or taken from what an earlier process has stored.
///
/// What was stored counts for a file whose stamp is what it was. Only outlines of files whose
/// stamps had come of age when they were read are stored, so that a stamp which still fits tells
/// that nothing was written since; all others are read anew by each process.
/// Threads: to be used alone.
class TMofOutlines {
 public:
  /// Knows nothing, and stores nothing.
  TMofOutlines() = default;

  /// Takes what is stored in the folders of `place`, whose file name gets an ending of its own. A
  /// file in there that is damaged or not to be trusted is as good as none.
  /// Stamps from `trustedBefore` on may hide a change; see CheckSource().
  explicit TMofOutlines(TSchemaCachePlace place,
                        std::int64_t trustedBefore = GetFileClock() - kStampDoubt);

  /// Null when the file cannot be read. The answer for a path stays the same.
  const TMofOutline* Find(const std::string& path);

  /// The stamp of a file that Find() has found.
  const TFileStamp& GetStamp(const std::string& path) const {
    return m_found.at(path).source.stamp;
  }

  /// Stores what Find() was asked for, when some of that had to be read and it is large enough for
  /// a cache. That it cannot be stored, for whatever reason, is no error.
  void Store();

  /// Files that had to be read.
  std::size_t GetReadCount() const { return m_readCount; }

  /// What became of the stored ones, for a log.
  const std::vector<std::string>& GetNotes() const { return m_notes; }

 private:
  struct TEntry {
    TSchemaSource source;
    TMofOutline outline;
    bool canBeRead = true;
    bool canBeStored = false;  ///< Its stamp tells any later change.
  };

  void Load(const std::string& folder);
  void Decode(const std::string& bytes);
  std::string Encode() const;
  /// The stored entry for the file as it is now; null when there is none.
  const TEntry* FindStored(const std::string& path) const;
  TEntry Read(const std::string& path);
  void Write();

  TSchemaCachePlace m_place;
  std::int64_t m_trustedBefore = 0;
  std::unordered_multimap<std::string, TEntry> m_stored;  ///< Several folders may know a path.
  std::unordered_map<std::string, TEntry> m_found;
  std::size_t m_readCount = 0;
  bool m_isNew = false;  ///< Something was read that can be stored.
  std::vector<std::string> m_notes;
};

}  // namespace NZEPQEL20
