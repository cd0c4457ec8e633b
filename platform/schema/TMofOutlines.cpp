// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TMofOutlines.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <limits>
#include <string_view>
#include <utility>

#include "platform/contract/TQELException.h"
#include "platform/schema/SchemaBuild.h"
#include "platform/schema/SchemaCodec.h"
#include "platform/schema/SchemaHash.h"
#include "platform/schema/TCacheFolder.h"
#include "platform/schema/TMofSource.h"

namespace NZEPQEL20 {

namespace {

constexpr std::string_view kMagic = "DIAGSOUT";
constexpr std::size_t kHeaderSize = 24;
// What is stored had a stamp that was old enough.
constexpr std::int64_t kAlways = std::numeric_limits<std::int64_t>::max();
// More than any vendors' files need; what a file can make us hold is bounded by this.
constexpr off_t kMaxSize = off_t{64} * 1024 * 1024;

std::string GetFileName(const TSchemaCachePlace& place) {
  return "outlines-" + place.fileName;
}

std::string ReadWhole(int file) {
  struct stat info = {};
  if (fstat(file, &info) != 0 || info.st_size > kMaxSize) {
    throw TDamagedError();
  }
  std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = read(file, bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      throw TDamagedError();
    }
    done += static_cast<std::size_t>(count);
  }
  return bytes;
}

/// What stands behind the header of `bytes`.
std::string_view CheckHeader(std::string_view bytes) {
  if (bytes.size() < kHeaderSize || bytes.substr(0, kMagic.size()) != kMagic) {
    throw TDamagedError();
  }
  TByteReader header(bytes.substr(kMagic.size(), kHeaderSize - kMagic.size()));
  if (header.TakeLong() != kSchemaBuild) {
    throw TQELException(TQELStatusCode::kFailed, "it is of another build");
  }
  const std::string_view body = bytes.substr(kHeaderSize);
  if (header.TakeLong() != HashBytes(body)) {
    throw TDamagedError();
  }
  return body;
}

}  // namespace

TMofOutlines::TMofOutlines(TSchemaCachePlace place, std::int64_t trustedBefore)
    : m_place(std::move(place)), m_trustedBefore(trustedBefore) {
  for (const std::string& folder : m_place.folders) {
    try {
      Load(folder);
    } catch (const std::exception& e) {
      m_notes.push_back("outlines in " + folder + " not used: " + e.what());
    }
  }
}

void TMofOutlines::Load(const std::string& folder) {
  std::string reason;
  const TDescriptor file = TCacheFolder(folder).Open(GetFileName(m_place), reason);
  if (file.IsOpen()) {
    Decode(ReadWhole(file.Get()));
  } else if (!reason.empty()) {
    m_notes.push_back("outlines not used: " + reason);
  }
}

void TMofOutlines::Decode(const std::string& bytes) {
  TByteReader in(CheckHeader(bytes));
  const std::size_t count = in.TakeCount(kLeastSource);
  for (std::size_t i = 0; i < count; ++i) {
    TEntry entry;
    entry.source = DecodeSource(in);
    if (entry.source.kind != TSchemaSource::EKind::kFile) {
      throw TDamagedError();
    }
    entry.outline.registersProviders = in.TakeFlag();
    entry.outline.isMereSchema = in.TakeFlag();
    entry.outline.includes.resize(in.TakeCount(sizeof(std::uint32_t)));
    for (std::string& include : entry.outline.includes) {
      include = in.TakeText();
    }
    entry.canBeStored = true;
    const std::string path = entry.source.path;
    m_stored.emplace(path, std::move(entry));
  }
  in.Finish();
}

std::string TMofOutlines::Encode() const {
  TByteWriter body;
  body.PutCount(static_cast<std::size_t>(std::count_if(
      m_found.begin(), m_found.end(), [](const auto& found) { return found.second.canBeStored; })));
  for (const auto& [path, entry] : m_found) {
    if (!entry.canBeStored) {
      continue;
    }
    EncodeSource(body, entry.source);
    body.PutFlag(entry.outline.registersProviders);
    body.PutFlag(entry.outline.isMereSchema);
    body.PutCount(entry.outline.includes.size());
    for (const std::string& include : entry.outline.includes) {
      body.PutText(include);
    }
  }
  TByteWriter header;
  header.PutLong(kSchemaBuild);
  header.PutLong(HashBytes(body.GetBytes()));
  return std::string(kMagic) + header.Take() + body.Take();
}

const TMofOutlines::TEntry* TMofOutlines::FindStored(const std::string& path) const {
  const auto [first, last] = m_stored.equal_range(path);
  const auto found = std::find_if(first, last, [](const auto& stored) {
    return CheckSource(stored.second.source, kAlways) == ESourceState::kSame;
  });
  return found == last ? nullptr : &found->second;
}

TMofOutlines::TEntry TMofOutlines::Read(const std::string& path) {
  TEntry entry;
  ++m_readCount;
  try {
    TSchemaSources sources;
    entry.outline = OutlineMof(TMofSource::ReadFile(path, &sources).text);
    entry.source = sources.Get().front();
    const TFileStamp& stamp = entry.source.stamp;
    // A relative path means something else in another working folder.
    entry.canBeStored =
        path.compare(0, 1, "/") == 0 && std::max(stamp.modified, stamp.changed) < m_trustedBefore;
  } catch (const TQELException&) {
    entry.canBeRead = false;
  }
  return entry;
}

const TMofOutline* TMofOutlines::Find(const std::string& path) {
  auto found = m_found.find(path);
  if (found == m_found.end()) {
    const TEntry* const stored = FindStored(path);
    TEntry entry = stored != nullptr ? *stored : Read(path);
    m_isNew = m_isNew || (stored == nullptr && entry.canBeStored);
    found = m_found.emplace(path, std::move(entry)).first;
  }
  return found->second.canBeRead ? &found->second.outline : nullptr;
}

void TMofOutlines::Store() {
  std::size_t size = 0;
  for (const auto& [path, entry] : m_found) {
    size += entry.canBeStored ? static_cast<std::size_t>(entry.source.stamp.size) : 0;
  }
  if (!m_isNew || size < m_place.leastSize) {
    return;
  }
  try {
    Write();
  } catch (const std::exception& e) {
    m_notes.push_back(std::string("outlines not written: ") + e.what());
  }
}

void TMofOutlines::Write() {
  const std::string bytes = Encode();
  for (const std::string& folder : m_place.folders) {
    const std::string reason = TCacheFolder(folder).Write(GetFileName(m_place), {bytes});
    if (reason.empty()) {
      m_notes.push_back("outlines written to " + folder +
                        "; files read: " + std::to_string(m_readCount));
      m_isNew = false;
      return;
    }
    m_notes.push_back("outlines not written: " + reason);
  }
}

}  // namespace NZEPQEL20
