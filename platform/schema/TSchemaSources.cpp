// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TSchemaSources.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/contract/TQELException.h"
#include "platform/schema/SchemaHash.h"
#include "platform/schema/TDescriptor.h"
#include "platform/schema/TFolderNames.h"
#include "platform/schema/TMofSource.h"

namespace NZEPQEL20 {

namespace {

bool IsAbsent(int error) {
  return error == ENOENT || error == ENOTDIR;
}

/// Whoever wrote the cache may have been allowed to read what we are not.
bool IsReadable(const TSchemaSource& source, const TFileStamp& now) {
  const int need = source.kind == TSchemaSource::EKind::kFolder ? R_OK | X_OK : R_OK;
  return now.isPublic || faccessat(AT_FDCWD, source.path.c_str(), need, AT_EACCESS) == 0;
}

bool HasSameContent(const TSchemaSource& source) {
  TFileStamp stamp;
  if (source.kind == TSchemaSource::EKind::kFolder) {
    std::uint64_t hash = 0;
    return HashFolder(source.path, stamp, hash) && hash == source.hash;
  }
  try {
    return HashBytes(ReadMofBytes(source.path, stamp)) == source.hash;
  } catch (const TQELException&) {
    return false;
  }
}

/// The reason why `path` cannot be opened for reading, 0 when it can. `stamp` stays empty when it
/// leads to nothing.
int FindReadError(const std::string& path, TFileStamp& stamp) {
  int error = 0;
  if (!stamp.Read(path, error)) {
    return error;
  }
  const TDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  return file.IsOpen() ? 0 : errno;
}

ESourceState CheckUnreadable(const TSchemaSource& source) {
  TFileStamp now;
  const auto error = static_cast<std::uint64_t>(FindReadError(source.path, now));
  return error == source.hash && now == source.stamp ? ESourceState::kSame : ESourceState::kChanged;
}

}  // namespace

ESourceState CheckSource(const TSchemaSource& source, std::int64_t trustedBefore) {
  using EKind = TSchemaSource::EKind;
  if (source.kind == EKind::kUnreadable) {
    return CheckUnreadable(source);
  }
  TFileStamp now;
  int error = 0;
  if (!now.Read(source.path, error)) {
    return source.kind == EKind::kAbsent && IsAbsent(error) ? ESourceState::kSame
                                                            : ESourceState::kChanged;
  }
  if (source.kind == EKind::kSameFile) {
    return now.IsSameFile(source.stamp) ? ESourceState::kSame : ESourceState::kChanged;
  }
  if (source.kind == EKind::kAbsent || !(now == source.stamp) || !IsReadable(source, now)) {
    return ESourceState::kChanged;
  }
  if (std::max(now.modified, now.changed) < trustedBefore) {
    return ESourceState::kSame;
  }
  return HasSameContent(source) ? ESourceState::kSameByContent : ESourceState::kChanged;
}

bool TSchemaSources::Begin(TSchemaSource::EKind kind, const std::string& path) {
  if (!m_seen.insert(path).second) {
    return false;
  }
  TSchemaSource source;
  source.kind = kind;
  source.path = path;
  m_sources.push_back(std::move(source));
  return true;
}

void TSchemaSources::AddFile(const std::string& path, const TFileStamp& stamp,
                             std::string_view bytes) {
  if (Begin(TSchemaSource::EKind::kFile, path)) {
    m_sources.back().stamp = stamp;
    m_sources.back().hash = HashBytes(bytes);
    m_files.emplace(stamp.device, stamp.inode);
    m_size += bytes.size();
  }
}

void TSchemaSources::AddSameFile(const std::string& path) {
  if (!Begin(TSchemaSource::EKind::kSameFile, path)) {
    return;
  }
  int error = 0;
  TFileStamp& stamp = m_sources.back().stamp;
  // It may lead elsewhere since it was found to be the same.
  if (!stamp.Read(path, error) || m_files.count({stamp.device, stamp.inode}) == 0) {
    Spoil();
  }
}

void TSchemaSources::AddFolder(const std::string& path, const TFileStamp& stamp,
                               std::uint64_t namesHash) {
  if (Begin(TSchemaSource::EKind::kFolder, path)) {
    m_sources.back().stamp = stamp;
    m_sources.back().hash = namesHash;
  }
}

void TSchemaSources::AddAbsent(const std::string& path) {
  Begin(TSchemaSource::EKind::kAbsent, path);
}

void TSchemaSources::AddUnreadable(const std::string& path, bool isByNature) {
  TFileStamp stamp;
  const int error = FindReadError(path, stamp);
  // It may have become readable meanwhile, or the medium is faulty.
  if (error == 0 && !isByNature) {
    Spoil();
    return;
  }
  if (Begin(TSchemaSource::EKind::kUnreadable, path)) {
    m_sources.back().stamp = stamp;
    m_sources.back().hash = static_cast<std::uint64_t>(error);
  }
}

}  // namespace NZEPQEL20
