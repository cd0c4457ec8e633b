// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/schema/TFileStamp.h"

namespace NZEPQEL20 {

/// Something on disk that loading a schema has looked at.
struct TSchemaSource {
  enum class EKind : std::uint8_t {
    kFile,       ///< A file that was read.
    kSameFile,   ///< Another path of a file that was read.
    kFolder,     ///< A folder whose names were looked through.
    kAbsent,     ///< A path at which nothing was found.
    kUnreadable  ///< Something that could not be read.
  };
  static constexpr auto kLastKind = EKind::kUnreadable;

  EKind kind = EKind::kFile;
  std::string path;
  TFileStamp stamp;
  /// Of the content of a file, or of the names in a folder; the reason (errno) why it cannot be
  /// read, 0 for what cannot be a MOF file by its nature.
  std::uint64_t hash = 0;
};

/// Whether a source is still what it was.
enum class ESourceState {
  kSame,           ///< By its stamp, which is old enough to be trusted.
  kSameByContent,  ///< By its content; the stamp is too young to tell.
  kChanged
};

/// Times within this of the moment of looking do not tell two writes apart: clocks of file
/// systems are coarse.
constexpr std::int64_t kStampDoubt = 2'000'000'000;

/// Looks at `source` again. Stamps with a time from `trustedBefore` on are not trusted, and the
/// content is compared.
ESourceState CheckSource(const TSchemaSource& source, std::int64_t trustedBefore);

/// Collects what loading a schema looks at: files, folders that were searched, and paths that led
/// nowhere. While all of it stays the same, loading again would give the same.
class TSchemaSources {
 public:
  void AddFile(const std::string& path, const TFileStamp& stamp, std::string_view bytes);
  /// `path` leads to a file that was added before under another path.
  void AddSameFile(const std::string& path);
  /// `stamp` is from before the names were read.
  void AddFolder(const std::string& path, const TFileStamp& stamp, std::uint64_t namesHash);
  void AddAbsent(const std::string& path);
  /// What cannot be opened for reading is the same while its stamp and the reason are.
  /// `isByNature`: it can be opened, and its stamp tells why it is not read: a folder, a pipe, too
  /// large.
  void AddUnreadable(const std::string& path, bool isByNature);

  /// Something could not be read, for a reason that need not show when it goes away.
  void Spoil() { m_isWhole = false; }
  /// Whether the sources tell all; false after Spoil().
  bool IsWhole() const { return m_isWhole; }

  const std::vector<TSchemaSource>& Get() const { return m_sources; }
  /// Bytes of all files.
  std::size_t GetSize() const { return m_size; }

 private:
  bool Begin(TSchemaSource::EKind kind, const std::string& path);

  std::vector<TSchemaSource> m_sources;
  std::unordered_set<std::string> m_seen;
  std::set<std::pair<std::uint64_t, std::uint64_t>> m_files;  ///< Device and inode.
  std::size_t m_size = 0;
  bool m_isWhole = true;
};

}  // namespace NZEPQEL20
