// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/VendorFiles.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <set>
#include <system_error>

#include "platform/contract/TCIMInstanceData.h"

namespace NZEPQEL20 {

namespace {

namespace fs = std::filesystem;

// A full CIM schema with one file for each class is a tenth of it.
constexpr std::size_t kMaxFiles = 20'000;

/// Looks through one vendor's folder.
class TVisit {
 public:
  TVisit(TVendorFiles& found, unsigned int depth) : m_found(found), m_depth(depth) {}

  void Visit(const fs::path& folder, unsigned int depth) {
    std::error_code error;
    const fs::path canonical = fs::canonical(folder, error);
    if (!error && !m_visited.insert(canonical).second) return;
    if (depth > kMaxVendorDepth) {
      m_found.problems.push_back(folder.string() + ": lies deeper than " +
                                 std::to_string(kMaxVendorDepth) + " folders; it is left out");
      return;
    }
    std::vector<fs::path> below;
    for (const fs::path& entry : Read(folder)) {
      if (fs::is_directory(entry, error)) {
        below.push_back(entry);
      } else if (!Take(entry)) {
        return;
      }
    }
    if (depth == m_depth && m_depth < kMaxVendorDepth) return;
    for (const fs::path& next : below) Visit(next, depth + 1);
  }

 private:
  std::vector<fs::path> Read(const fs::path& folder) {
    std::vector<fs::path> entries;
    std::error_code error;
    fs::directory_iterator next(folder, error);
    while (!error && next != fs::directory_iterator() && entries.size() <= kMaxFiles) {
      if (next->path().filename().string().front() != '.') entries.push_back(next->path());
      next.increment(error);
    }
    if (!error && next != fs::directory_iterator()) {
      m_found.problems.push_back(folder.string() + ": holds more than " +
                                 std::to_string(kMaxFiles) + " names; the others are left out");
    }
    if (error) m_found.problems.push_back(folder.string() + ": cannot be read: " + error.message());
    std::sort(entries.begin(), entries.end());
    return entries;
  }

  bool Take(const fs::path& file) {
    if (m_found.files.size() < kMaxFiles) {
      m_found.files.push_back(file.string());
      return true;
    }
    if (!m_isFull) {
      m_found.problems.push_back(file.string() + ": is beyond the first " +
                                 std::to_string(kMaxFiles) + " files; they alone are taken");
    }
    m_isFull = true;
    return false;
  }

  TVendorFiles& m_found;
  const unsigned int m_depth;
  std::set<fs::path> m_visited;
  bool m_isFull = false;
};

bool HasEnding(const std::string& file, const std::string& ending) {
  const std::string name = fs::path(file).filename().string();
  return name.size() > ending.size() &&
         IsSameName(name.substr(name.size() - ending.size()), ending);
}

}  // namespace

TVendorFiles ListVendorFiles(const std::string& folder, unsigned int depth) {
  TVendorFiles found;
  TVisit(found, depth).Visit(folder, 0);
  return found;
}

bool IsLibraryName(const std::string& file) {
  const std::string name = fs::path(file).filename().string();
  const std::size_t place = name.rfind(".so");
  if (place == std::string::npos || place == 0) return false;
  const std::string version = name.substr(place + 3);
  return version.empty() ||
         (version.front() == '.' && version.find_first_not_of(".0123456789") == std::string::npos);
}

bool IsMofName(const std::string& file) {
  return HasEnding(file, ".mof");
}

bool IsRegistrationName(const std::string& file) {
  return HasEnding(file, ".registration") || HasEnding(file, ".reg");
}

}  // namespace NZEPQEL20
