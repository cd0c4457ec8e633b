// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/FolderInstall.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
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
#include "platform/setup/TVendorFolder.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxName = 100;
constexpr mode_t kFolderMode = 0755;

[[noreturn]] void Refuse(const std::string& text, int error = 0) {
  const bool isDenied = error == EACCES || error == EPERM || error == EROFS;
  throw TQELException(isDenied ? TQELStatusCode::kAccessDenied : TQELStatusCode::kFailed, text);
}

/// For a failure of the system at a place below the root.
[[noreturn]] void RefusePlace(const std::string& place, const std::string& what, int error) {
  Refuse(place + ": " + what + ": " + DescribeWriteFault(error), error);
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

/// The folder of all vendors, held against other installations while this lives.
class THeldFolder {
 public:
  explicit THeldFolder(const std::string& folder) : m_folder(folder) {
    m_file = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_file < 0) RefusePlace(folder, "cannot be opened", errno);
    if (::flock(m_file, LOCK_EX | LOCK_NB) != 0) {
      const int error = errno;
      ::close(m_file);
      if (error == EWOULDBLOCK) Refuse(folder + ": another installation is at work there");
      RefusePlace(folder, "cannot be locked", error);
    }
  }
  ~THeldFolder() { ::close(m_file); }
  THeldFolder(const THeldFolder&) = delete;
  THeldFolder& operator=(const THeldFolder&) = delete;

  /// Has the disk know the names in the folder.
  void Sync() const { ::fsync(m_file); }

  /// Removes what an installation of `name` that was cut off has left.
  void Tidy(const std::string& name) const {
    std::error_code error;
    const std::string start = '.' + name + ".tmp-";
    // What cannot be read or removed stays; it is in nobody's way.
    for (fs::directory_iterator next(m_folder, error), end; !error && next != end;
         next.increment(error)) {
      if (next->path().filename().string().compare(0, start.size(), start) == 0) {
        std::error_code ignored;
        fs::remove_all(next->path(), ignored);
      }
    }
  }

 private:
  std::string m_folder;
  int m_file;
};

/// A folder beside the vendors' that nobody reads, because of the dot in front of its name.
/// Whatever is in it when this ends goes.
class THiddenFolder {
 public:
  THiddenFolder(const std::string& providers, const std::string& name)
      : m_path(providers + "/." + name + ".tmp-XXXXXX") {
    if (::mkdtemp(m_path.data()) == nullptr) {
      RefusePlace(providers, "no folder can be made in it", errno);
    }
    ::chmod(m_path.c_str(), kFolderMode);
  }
  ~THiddenFolder() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
  }
  THiddenFolder(const THiddenFolder&) = delete;
  THiddenFolder& operator=(const THiddenFolder&) = delete;

  const std::string& GetPath() const { return m_path; }

 private:
  std::string m_path;
};

/// Copies files of one folder into another.
class TFolderCopy {
 public:
  TFolderCopy(const std::string& from, std::string to) : m_from(from), m_to(std::move(to)) {}

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
    return file;
  }

  const TVendorFolder m_from;
  const fs::path m_to;
  std::set<fs::path> m_folders;           ///< In which something was put.
  std::map<fs::path, fs::path> m_copied;  ///< By the place in the vendor's folder.
  std::vector<TVendorFile> m_links;
};

bool Exists(const std::string& path) {
  struct stat status = {};
  return ::lstat(path.c_str(), &status) == 0;
}

/// Puts `fresh` into the place of `target`; what was there is in the place of `fresh` then.
void Exchange(const std::string& fresh, const std::string& target) {
  if (::renameat2(AT_FDCWD, fresh.c_str(), AT_FDCWD, target.c_str(), RENAME_EXCHANGE) == 0) return;
  if (errno != EINVAL && errno != ENOSYS) RefusePlace(target, "cannot be replaced", errno);
  // A file system without exchange: for a moment there is neither.
  const std::string aside = fresh + ".old";
  if (::rename(target.c_str(), aside.c_str()) != 0) {
    RefusePlace(target, "cannot be replaced", errno);
  }
  if (::rename(fresh.c_str(), target.c_str()) != 0) {
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
                   const std::string& providers, const std::string& name, bool replace) {
  MakeFolder(providers);
  const THeldFolder held(providers);
  held.Tidy(name);
  const std::string target = providers + '/' + name;
  const bool isThere = Exists(target);
  if (isThere && !replace) Refuse(target + ": is there already; remove it first, or replace it");
  const THiddenFolder fresh(providers, name);
  TFolderCopy(folder, fresh.GetPath()).Copy(files);
  if (isThere) {
    Exchange(fresh.GetPath(), target);
  } else if (::rename(fresh.GetPath().c_str(), target.c_str()) != 0) {
    RefusePlace(target, "cannot be put into its place", errno);
  }
  held.Sync();
}

void RemoveFolder(const std::string& providers, const std::string& name) {
  const THeldFolder held(providers);
  held.Tidy(name);
  const std::string target = providers + '/' + name;
  const THiddenFolder away(providers, name);
  const std::string place = away.GetPath() + '/' + name;
  if (::rename(target.c_str(), place.c_str()) != 0) {
    RefusePlace(target, "cannot be removed", errno);
  }
  held.Sync();
}

}  // namespace NZEPQEL20::setup
