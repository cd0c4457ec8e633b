// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/FolderInstall.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>

#include "platform/contract/TQELException.h"
#include "platform/setup/FileCopy.h"
#include "platform/setup/THeldFolder.h"
#include "platform/setup/THiddenFolder.h"
#include "platform/setup/TVendorFolder.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxName = 100;
constexpr mode_t kFolderMode = 0755;

[[noreturn]] void Refuse(const std::string& text) {
  throw TQELException(TQELStatusCode::kFailed, text);
}

/// A folder that is made here can be entered by everybody, whatever the caller's mask says.
void MakeFolder(const fs::path& folder) {
  if (::mkdir(folder.c_str(), kFolderMode) != 0) {
    if (errno == EEXIST) return;
    RefusePlace(folder.string(), "cannot be made", errno);
  }
  const TDescriptor made(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (made.Get() < 0 || ::fchmod(made.Get(), kFolderMode) != 0) {
    RefusePlace(folder.string(), "cannot have its permissions", errno);
  }
}

/// Has the disk know the names in a folder.
void SyncFolder(const fs::path& folder) {
  const TDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  // EINVAL comes from file systems that have nothing to do for this.
  if (opened.Get() < 0 || (::fsync(opened.Get()) != 0 && errno != EINVAL)) {
    RefusePlace(folder.string(), "cannot be written", errno);
  }
}

/// Copies files of one folder into another.
class TFolderCopy {
 public:
  TFolderCopy(const std::string& from, std::string to, const TFileStates& states)
      : m_from(from), m_to(std::move(to)), m_states(states) {}

  void Copy(const std::vector<std::string>& files) {
    for (const std::string& file : files) Place(file);
    for (const TVendorFile& link : m_links) CopyLink(link);
    for (const fs::path& folder : m_folders) SyncFolder(folder);
  }

 private:
  /// Copies a plain file; a link waits until it is known which plain files are copied.
  void Place(const std::string& name) {
    TVendorFile file = Take(name);
    if (file.isLink) {
      // Thousands of links are not to hold as many folders open.
      file.parent = TDescriptor();
      m_links.push_back(std::move(file));
      return;
    }
    const fs::path target = MakePlace(name);
    CopyFile(file, target.string());
    m_copied.emplace(file.real, target);
  }

  void CopyLink(const TVendorFile& link) {
    const fs::path target = MakePlace(link.name);
    const auto copied = m_copied.find(link.real);
    if (copied == m_copied.end()) {
      CopyFile(Take(link.name), target.string());
      return;
    }
    const fs::path place = copied->second.lexically_relative(target.parent_path());
    if (::symlink(place.c_str(), target.c_str()) != 0) {
      RefusePlace(target.string(), "cannot be made", errno);
    }
  }

  /// Where `file` goes; the folders above it are there.
  fs::path MakePlace(const std::string& file) {
    const fs::path place = fs::path(file).lexically_relative(m_from.GetPath());
    fs::path folder = m_to;
    m_folders.insert(folder);
    for (const fs::path& part : place.parent_path()) {
      if (m_folders.insert(folder /= part).second) MakeFolder(folder);
    }
    return m_to / place;
  }

  /// The file, held.
  TVendorFile Take(const std::string& name) const {
    TVendorFile file = m_from.Find(name);
    if (!file.fault.empty()) Refuse(file.fault + "; " + file.remedy + "; see rule R20");
    const auto state = m_states.find(name);
    if (state == m_states.end() || state->second != DescribeState(file.status)) RefuseChanged(name);
    return file;
  }

  const TVendorFolder m_from;
  const fs::path m_to;
  const TFileStates& m_states;
  std::set<fs::path> m_folders;           ///< In which something was put.
  std::map<fs::path, fs::path> m_copied;  ///< By the place in the vendor's folder.
  std::vector<TVendorFile> m_links;
};

bool Exists(const std::string& path) {
  struct stat status = {};
  return ::lstat(path.c_str(), &status) == 0;
}

/// Puts `fresh` into the place of `target`; what was there goes with `fresh` then.
void Exchange(const THiddenFolder& fresh, const std::string& target) {
  const std::string& path = fresh.GetPath();
  if (::renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, target.c_str(), RENAME_EXCHANGE) == 0) return;
  if (errno != EINVAL && errno != ENOSYS) RefusePlace(target, "cannot be replaced", errno);
  // A file system without exchange: for a moment there is neither. Who is cut off in it, or cannot
  // put the old one back, leaves it to whoever holds the folder next.
  const std::string aside = fresh.GetAside();
  if (::rename(target.c_str(), aside.c_str()) != 0) {
    RefusePlace(target, "cannot be replaced", errno);
  }
  if (::rename(path.c_str(), target.c_str()) != 0) {
    const int error = errno;
    const bool isBack = ::rename(aside.c_str(), target.c_str()) == 0;
    RefusePlace(target,
                isBack ? "cannot be replaced" : "cannot be replaced, and is " + aside + " now",
                error);
  }
  std::error_code ignored;
  fs::remove_all(aside, ignored);
}

}  // namespace

bool IsBelow(const std::string& path, const std::string& folder) {
  const std::string start = folder == "/" ? folder : folder + '/';
  return path.size() > start.size() && path.compare(0, start.size(), start) == 0;
}

std::string FindNameFault(const std::string& name) {
  if (name.empty()) return "is empty";
  if (name.size() > kMaxName) return "has more than " + std::to_string(kMaxName) + " characters";
  if (name.front() == '.') return "starts with a dot";
  const auto isBad = [](char c) {
    return c == '/' || static_cast<unsigned char>(c) < ' ' || c == '\x7F';
  };
  if (std::any_of(name.begin(), name.end(), isBad)) return "holds \"/\" or a control character";
  return {};
}

void InstallFolder(const std::string& folder, const std::vector<std::string>& files,
                   const TFileStates& states, const std::string& providers, const std::string& name,
                   bool replace) {
  MakeFolder(providers);
  const THeldFolder held(providers);
  const std::string target = providers + '/' + name;
  const bool isThere = Exists(target);
  if (isThere && !replace) Refuse(target + ": is there already; remove it first, or replace it");
  const THiddenFolder fresh(providers, name);
  TFolderCopy(folder, fresh.GetPath(), states).Copy(files);
  if (isThere) {
    Exchange(fresh, target);
  } else if (::rename(fresh.GetPath().c_str(), target.c_str()) != 0) {
    RefusePlace(target, "cannot be put into its place", errno);
  }
  held.Sync();
}

void RemoveFolder(const std::string& providers, const std::string& name) {
  const THeldFolder held(providers);
  const std::string target = providers + '/' + name;
  const THiddenFolder away(providers, name);
  const std::string place = away.GetPath() + '/' + name;
  if (::rename(target.c_str(), place.c_str()) != 0) {
    RefusePlace(target, "cannot be removed", errno);
  }
  held.Sync();
}

}  // namespace NZEPQEL20::setup
