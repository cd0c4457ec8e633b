// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/VendorFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <set>
#include <system_error>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/schema/TDescriptor.h"

namespace NZEPQEL20 {

namespace {

namespace fs = std::filesystem;

// A full CIM schema with one file for each class is a tenth of it.
constexpr std::size_t kMaxFiles = 20'000;

using TPiece = std::array<char, 65536>;

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
    for (const fs::directory_entry& entry : Read(folder)) {
      // Known from the folder, unless it is a link.
      if (entry.is_directory(error)) {
        below.push_back(entry.path());
      } else if (!Take(entry.path())) {
        return;
      }
    }
    if (depth == m_depth && m_depth < kMaxVendorDepth) return;
    for (const fs::path& next : below) Visit(next, depth + 1);
  }

 private:
  std::vector<fs::directory_entry> Read(const fs::path& folder) {
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    fs::directory_iterator next(folder, error);
    while (!error && next != fs::directory_iterator() && entries.size() <= kMaxFiles) {
      if (next->path().filename().string().front() != '.') entries.push_back(*next);
      next.increment(error);
    }
    if (!error && next != fs::directory_iterator()) {
      m_found.problems.push_back(folder.string() + ": holds more than " +
                                 std::to_string(kMaxFiles) + " names; the others are left out");
    }
    if (error) m_found.problems.push_back(folder.string() + ": cannot be read: " + error.message());
    std::sort(entries.begin(), entries.end(), [](const auto& left, const auto& right) {
      return left.path().native() < right.path().native();
    });
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
  const std::size_t start = file.rfind('/') + 1;
  return file.size() - start > ending.size() &&
         IsSameName(file.substr(file.size() - ending.size()), ending);
}

/// Fills `bytes` as far as the file goes; negative when it cannot be read.
ssize_t ReadFull(int file, TPiece& bytes) {
  std::size_t size = 0;
  while (size < bytes.size()) {
    const ssize_t count = ::read(file, bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return count;
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
  }
  return static_cast<ssize_t>(size);
}

/// Of two files that are read from their beginning.
bool HasSameBytes(int first, int second) {
  TPiece left;
  TPiece right;
  for (;;) {
    const ssize_t size = ReadFull(first, left);
    if (size < 0 || ReadFull(second, right) != size) return false;
    if (!std::equal(left.begin(), left.begin() + size, right.begin())) return false;
    if (static_cast<std::size_t>(size) < left.size()) return true;
  }
}

}  // namespace

TVendorFiles ListVendorFiles(const std::string& folder, unsigned int depth) {
  TVendorFiles found;
  TVisit(found, depth).Visit(folder, 0);
  return found;
}

std::string GetFolderOf(const std::string& file) {
  const std::size_t slash = file.rfind('/');
  return slash == std::string::npos ? "." : file.substr(0, slash);
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

bool IsSameFile(const std::string& left, const std::string& right) {
  // Not blocking, so that a pipe in the place of a file cannot hold the host up.
  constexpr int kHow = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  const TDescriptor first(::open(left.c_str(), kHow));
  const TDescriptor second(::open(right.c_str(), kHow));
  struct stat one = {};
  struct stat other = {};
  if (::fstat(first.Get(), &one) != 0 || ::fstat(second.Get(), &other) != 0) return false;
  if (one.st_dev == other.st_dev && one.st_ino == other.st_ino) return true;
  if (!S_ISREG(one.st_mode) || !S_ISREG(other.st_mode) || one.st_size != other.st_size) {
    return false;
  }
  return HasSameBytes(first.Get(), second.Get());
}

}  // namespace NZEPQEL20
