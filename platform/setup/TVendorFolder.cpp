// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/TVendorFolder.h"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <climits>
#include <deque>
#include <sstream>
#include <system_error>
#include <utility>

#include "platform/contract/TQELException.h"
#include "platform/schema/TFileStamp.h"
#include "platform/setup/FolderInstall.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;

// As many as the kernel follows.
constexpr unsigned int kMaxLinks = 40;
constexpr int kLook = O_PATH | O_NOFOLLOW | O_CLOEXEC;

std::string Describe(int error) {
  return std::generic_category().message(error);
}

[[noreturn]] void Refuse(const std::string& file, const std::string& what, int error) {
  const bool isDenied = error == EACCES || error == EPERM;
  throw TQELException(isDenied ? TQELStatusCode::kAccessDenied : TQELStatusCode::kFailed,
                      file + ": " + what + ": " + Describe(error));
}

/// The way to one file, folder by folder. Each folder on it stays open, so that ".." is the one
/// that was come from, wherever it has been moved to.
class TWalk {
 public:
  TWalk(const std::string& root, int folder, TVendorFile& found)
      : m_root(root), m_folder(folder), m_found(found) {}

  void Go(const fs::path& place) {
    m_open.assign(place.begin(), place.end());
    while (!m_open.empty() && m_found.fault.empty()) {
      const std::string name = m_open.front().string();
      m_open.pop_front();
      if (name.empty() || name == ".") continue;
      if (name == "..") {
        Leave();
      } else {
        Enter(name);
      }
    }
    if (m_found.fault.empty() && !m_hasEnd) NoRegularFile();
  }

 private:
  struct TStep {
    std::string name;
    TDescriptor folder;
  };

  int GetFolder() const { return m_steps.empty() ? m_folder : m_steps.back().folder.Get(); }

  void Leave() {
    if (m_steps.empty()) return Outside("..");
    m_steps.pop_back();
  }

  void Enter(const std::string& name) {
    TDescriptor next(::openat(GetFolder(), name.c_str(), kLook));
    struct stat status = {};
    if (next.Get() < 0 || ::fstat(next.Get(), &status) != 0) return Fail(errno);
    if (S_ISLNK(status.st_mode)) {
      Follow(next.Get());
    } else if (S_ISDIR(status.st_mode)) {
      m_steps.push_back({name, std::move(next)});
    } else if (!m_open.empty()) {
      Fail(ENOTDIR);
    } else {
      End(name, status);
    }
  }

  void Follow(int link) {
    if (m_open.empty()) m_found.isLink = true;
    if (++m_links > kMaxLinks) return Fail(ELOOP);
    std::array<char, PATH_MAX> text;
    const ssize_t size = ::readlinkat(link, "", text.data(), text.size());
    if (size < 0) return Fail(errno);
    fs::path target = std::string(text.data(), static_cast<std::size_t>(size));
    if (target.is_absolute()) {
      target = FindInside(target);
      if (target.empty()) return Outside(std::string(text.data(), static_cast<std::size_t>(size)));
      m_steps.clear();
    }
    m_open.insert(m_open.begin(), target.begin(), target.end());
  }

  /// An absolute link's target as seen from the folder; empty when it lies elsewhere.
  fs::path FindInside(const fs::path& target) const {
    if (IsBelow(target.string(), m_root)) return target.lexically_relative(m_root);
    // The folder may have other names. Whatever comes of this is walked from the folder, too.
    std::error_code error;
    const fs::path real = fs::weakly_canonical(target, error);
    if (error || (real != m_root && !IsBelow(real.string(), m_root))) return {};
    return real.lexically_relative(m_root);
  }

  void End(const std::string& name, const struct stat& status) {
    if (!S_ISREG(status.st_mode)) return NoRegularFile();
    m_hasEnd = true;
    m_found.status = status;
    for (const TStep& step : m_steps) m_found.real /= step.name;
    m_found.real /= name;
    m_found.parent = TDescriptor(::fcntl(GetFolder(), F_DUPFD_CLOEXEC, 0));
    if (m_found.parent.Get() < 0) Fail(errno);
  }

  void Fail(int error) {
    m_found.fault = m_found.name + ": cannot be copied: " + Describe(error);
    m_found.remedy = "mend the link, or take it out of the folder";
  }

  void Outside(const std::string& target) {
    // Only for the text: nothing is opened by this name.
    std::error_code error;
    const fs::path real = fs::canonical(m_found.name, error);
    m_found.fault = m_found.name + ": is a link to " + (error ? target : real.string()) +
                    ", outside the folder " + m_root;
    m_found.remedy = "put the file itself into the folder";
  }

  void NoRegularFile() {
    m_found.fault = m_found.name + ": is not a regular file";
    m_found.remedy = "take it out of the folder";
  }

  const std::string& m_root;
  const int m_folder;
  TVendorFile& m_found;
  std::deque<fs::path> m_open;  ///< The names that are still to go.
  std::vector<TStep> m_steps;
  unsigned int m_links = 0;
  bool m_hasEnd = false;
};

}  // namespace

std::string DescribeState(const struct stat& status) {
  TFileStamp stamp;
  stamp.Take(status);
  std::ostringstream text;
  text << stamp.device << ' ' << stamp.inode << ' ' << stamp.size << ' ' << stamp.modified << ' '
       << stamp.changed;
  return text.str();
}

void RefuseChanged(const std::string& file) {
  throw TQELException(TQELStatusCode::kFailed,
                      file +
                          ": changed while it was being checked; leave the folder alone and try "
                          "again; see rule R20");
}

TVendorFolder::TVendorFolder(const std::string& path)
    : m_path(path), m_folder(::open(path.c_str(), kLook | O_DIRECTORY)) {
  if (m_folder.Get() < 0) Refuse(path, "cannot be read", errno);
}

TVendorFile TVendorFolder::Find(const std::string& file) const {
  TVendorFile found;
  found.name = file;
  if (IsBelow(file, m_path)) {
    TWalk(m_path, m_folder.Get(), found).Go(fs::path(file).lexically_relative(m_path));
  } else {
    found.fault = file + ": lies outside the folder " + m_path;
    found.remedy = "put it into the folder";
  }
  return found;
}

TDescriptor TVendorFolder::Open(const TVendorFile& file) {
  // Without waiting: by now the name may be that of a pipe without a writer.
  const std::string name = file.real.filename().string();
  TDescriptor opened(::openat(file.parent.Get(), name.c_str(),
                              O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (opened.Get() < 0) Refuse(file.name, "cannot be read", errno);
  CheckUnchanged(file, opened.Get());
  return opened;
}

void TVendorFolder::CheckUnchanged(const TVendorFile& file, int opened) {
  struct stat status = {};
  if (::fstat(opened, &status) != 0) Refuse(file.name, "cannot be read", errno);
  if (DescribeState(status) != DescribeState(file.status)) RefuseChanged(file.name);
}

}  // namespace NZEPQEL20::setup
