// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/VendorSchema.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

#include "platform/schema/TFolderNames.h"
#include "platform/schema/TMofSource.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;

/// Where the includes of `file` lead.
std::vector<std::string> FindTargets(const std::string& file, TMofOutlines& outlines,
                                     TFolderNames& names) {
  std::vector<std::string> found;
  const TMofOutline* const outline = outlines.Find(file);
  // Loading it says why it cannot be read.
  if (outline == nullptr) return found;
  for (const std::string& path : outline->includes) {
    found.push_back(ResolveMofPath(path, file, names));
  }
  return found;
}

/// Tells files from each other by what they are on disk, without following every path.
class TFileSet {
 public:
  void Add(const std::string& file) {
    TFileStamp stamp;
    int error = 0;
    if (stamp.Read(file, error)) m_files.emplace(stamp.device, stamp.inode);
  }
  bool Has(const std::string& file) const {
    TFileStamp stamp;
    int error = 0;
    return stamp.Read(file, error) && m_files.count({stamp.device, stamp.inode}) > 0;
  }

 private:
  std::set<std::pair<std::uint64_t, std::uint64_t>> m_files;
};

}  // namespace

std::string MakeCanonical(const std::string& file) {
  std::error_code error;
  const fs::path real = fs::canonical(file, error);
  return error ? file : real.string();
}

std::vector<std::string> FindIncludes(const std::string& file) {
  TMofOutlines outlines;
  TFolderNames names;
  return FindTargets(file, outlines, names);
}

std::vector<std::string> FindAllIncludes(const std::vector<std::string>& files) {
  std::vector<std::string> found;
  std::vector<std::string> open = files;
  std::set<std::string> seen;
  TMofOutlines outlines;
  TFolderNames names;
  while (!open.empty()) {
    const std::string file = open.back();
    open.pop_back();
    if (!seen.insert(MakeCanonical(file)).second) continue;
    for (const std::string& other : FindTargets(file, outlines, names)) {
      std::error_code error;
      if (!fs::exists(other, error)) continue;
      found.push_back(fs::path(other).lexically_normal().string());
      open.push_back(other);
    }
  }
  return found;
}

std::vector<std::string> OrderByIncludes(const std::vector<std::string>& files) {
  TMofOutlines outlines;
  return OrderByIncludes(files, outlines);
}

std::vector<std::string> OrderByIncludes(const std::vector<std::string>& files,
                                         TMofOutlines& outlines) {
  if (files.size() < 2) return files;
  TFolderNames names;
  TFileSet included;
  for (const std::string& file : files) {
    for (const std::string& other : FindTargets(file, outlines, names)) included.Add(other);
  }
  std::vector<std::string> ordered = files;
  std::stable_partition(ordered.begin(), ordered.end(),
                        [&](const std::string& file) { return !included.Has(file); });
  return ordered;
}

}  // namespace NZEPQEL20::setup
