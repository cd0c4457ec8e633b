// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/VendorSchema.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <set>
#include <system_error>
#include <unordered_set>
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

/// Some files, and which of them others include.
class TIncluded {
 public:
  TIncluded(const std::vector<std::string>& files, TMofOutlines& outlines)
      : m_paths(files.begin(), files.end()), m_outlines(outlines) {}

  void AddIncludesOf(const std::string& file) {
    const TMofOutline* const outline = m_outlines.Find(file);
    // Loading it says why it cannot be read.
    if (outline == nullptr) return;
    for (const std::string& path : outline->includes) {
      const std::string plain = FindPlainly(path, file);
      m_included.insert(Identify(plain.empty() ? ResolveMofPath(path, file, m_names) : plain));
    }
  }

  bool Has(const std::string& file) const {
    const TIdentity identity = Identify(file);
    return identity != TIdentity() && m_included.count(identity) > 0;
  }

 private:
  using TIdentity = std::pair<std::uint64_t, std::uint64_t>;  ///< Device and inode.

  /// What a file is on disk, whatever the names that lead there; nothing for one that is not there.
  TIdentity Identify(const std::string& file) const {
    TFileStamp stamp;
    int error = 0;
    if (m_paths.count(file) > 0 && m_outlines.Find(file) != nullptr) {
      stamp = m_outlines.GetStamp(file);
    } else {
      stamp.Read(file, error);
    }
    return {stamp.device, stamp.inode};
  }

  /// The one of the files that `path` names letter by letter; empty when it takes a look at the
  /// disk to tell. A whole schema has a thousand includes, and nearly all of them are such.
  std::string FindPlainly(const std::string& path, const std::string& file) const {
    std::string plain = file.substr(0, file.rfind('/') + 1) + path;
    std::replace(plain.begin(), plain.end(), '\\', '/');
    return m_paths.count(plain) > 0 ? plain : std::string();
  }

  const std::unordered_set<std::string> m_paths;
  TMofOutlines& m_outlines;
  TFolderNames m_names;
  std::set<TIdentity> m_included;
};

}  // namespace

std::string MakeCanonical(const std::string& file) {
  std::error_code error;
  const fs::path real = fs::canonical(file, error);
  return error ? file : real.string();
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
  TIncluded included(files, outlines);
  for (const std::string& file : files) included.AddIncludesOf(file);
  std::vector<std::string> ordered = files;
  std::stable_partition(ordered.begin(), ordered.end(),
                        [&](const std::string& file) { return !included.Has(file); });
  return ordered;
}

}  // namespace NZEPQEL20::setup
