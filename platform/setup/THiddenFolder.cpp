// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/THiddenFolder.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "platform/setup/FileCopy.h"

namespace NZEPQEL20::setup {
namespace {

constexpr mode_t kFolderMode = 0755;
constexpr char kMark[] = ".tmp-";
constexpr std::size_t kMarkSize = sizeof kMark - 1;
constexpr char kRandom[] = "XXXXXX";
constexpr std::size_t kRandomSize = sizeof kRandom - 1;
constexpr char kAside[] = ".old";
constexpr std::size_t kAsideSize = sizeof kAside - 1;

}  // namespace

THiddenFolder::THiddenFolder(const std::string& providers, const std::string& name)
    : m_path(providers + "/." + name + kMark + kRandom) {
  if (::mkdtemp(m_path.data()) == nullptr) {
    RefusePlace(providers, "no folder can be made in it", errno);
  }
  if (::chmod(m_path.c_str(), kFolderMode) != 0) {
    const int error = errno;
    ::rmdir(m_path.c_str());
    RefusePlace(m_path, "cannot have its permissions", error);
  }
}

THiddenFolder::~THiddenFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

std::string THiddenFolder::GetAside() const {
  return m_path + kAside;
}

std::string THiddenFolder::FindVendor(const std::string& fileName) {
  constexpr std::size_t kTail = kMarkSize + kRandomSize;
  if (fileName.size() < kTail + 2 || fileName.front() != '.') return {};
  const std::size_t mark = fileName.size() - kTail;
  const bool isRandom =
      std::all_of(fileName.begin() + static_cast<std::ptrdiff_t>(mark + kMarkSize), fileName.end(),
                  [](unsigned char c) { return std::isalnum(c); });
  if (!isRandom || fileName.compare(mark, kMarkSize, kMark) != 0) return {};
  return fileName.substr(1, mark - 1);
}

std::string THiddenFolder::FindVendorAside(const std::string& fileName) {
  if (fileName.size() < kAsideSize) return {};
  const std::size_t end = fileName.size() - kAsideSize;
  if (fileName.compare(end, kAsideSize, kAside) != 0) return {};
  return FindVendor(fileName.substr(0, end));
}

}  // namespace NZEPQEL20::setup
