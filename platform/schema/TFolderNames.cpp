// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TFolderNames.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "platform/schema/SchemaHash.h"
#include "platform/schema/TMofQualifierTable.h"

namespace NZEPQEL20 {

namespace {

namespace fs = std::filesystem;

/// Calls `take` with each name in the folder; false when the folder cannot be read to its end.
template <typename TTake>
bool ReadNames(const std::string& folder, TFileStamp& stamp, int& problem, const TTake& take) {
  const fs::path place = folder.empty() ? fs::path(".") : fs::path(folder);
  if (!stamp.Read(place.string(), problem)) {
    return false;
  }
  std::error_code error;
  fs::directory_iterator entry(place, error);
  for (const fs::directory_iterator end; !error && entry != end; entry.increment(error)) {
    take(entry->path().filename().string());
  }
  problem = error.value();
  return !error;
}

/// The same whatever the order.
void AddName(std::uint64_t& hash, const std::string& name) {
  hash += HashBytes(name);
}

}  // namespace

const TFolderNames::TNames& TFolderNames::Read(const std::string& folder) {
  const auto [place, isNew] = m_folders.try_emplace(folder);
  TNames& names = place->second;
  if (!isNew) {
    return names;
  }
  TFileStamp stamp;
  int problem = 0;
  std::uint64_t hash = 0;
  const bool isWhole = ReadNames(folder, stamp, problem, [&](const std::string& name) {
    AddName(hash, name);
    // Folders have no order of their own.
    const auto [known, isFirst] = names.try_emplace(FoldName(name), name);
    if (!isFirst && name < known->second) {
      known->second = name;
    }
  });
  if (m_sources == nullptr) {
    return names;
  }
  if (isWhole) {
    m_sources->AddFolder(folder, stamp, hash);
  } else if (problem == ENOENT || problem == ENOTDIR) {
    m_sources->AddAbsent(folder);
  } else {
    m_sources->AddUnreadable(folder, false);
  }
  return names;
}

std::string TFolderNames::Find(const std::string& folder, const std::string& name) {
  const TNames& names = Read(folder);
  const auto found = names.find(FoldName(name));
  return found == names.end() ? std::string() : (fs::path(folder) / found->second).string();
}

bool HashFolder(const std::string& folder, TFileStamp& stamp, std::uint64_t& hash) {
  int problem = 0;
  hash = 0;
  return ReadNames(folder, stamp, problem,
                   [&hash](const std::string& name) { AddName(hash, name); });
}

}  // namespace NZEPQEL20
