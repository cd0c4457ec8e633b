// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/THeldFolder.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <filesystem>
#include <system_error>
#include <vector>

#include "platform/contract/TQELException.h"
#include "platform/model/CoreLog.h"
#include "platform/setup/FileCopy.h"
#include "platform/setup/THiddenFolder.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;

/// The folders in `folder` that installations have made for themselves.
std::vector<fs::path> FindHidden(const fs::path& folder) {
  std::vector<fs::path> found;
  std::error_code error;
  for (fs::directory_iterator next(folder, error), end; !error && next != end;
       next.increment(error)) {
    const std::string name = next->path().filename().string();
    const bool isOurs =
        !THiddenFolder::FindVendor(name).empty() || !THiddenFolder::FindVendorAside(name).empty();
    std::error_code ignored;
    if (isOurs && fs::is_directory(next->symlink_status(ignored))) found.push_back(next->path());
  }
  return found;
}

/// What cannot be moved or removed stays; it is in nobody's way.
void TidyUp(const fs::path& folder) {
  for (const fs::path& hidden : FindHidden(folder)) {
    std::error_code ignored;
    const std::string vendor = THiddenFolder::FindVendorAside(hidden.filename().string());
    if (!vendor.empty() && !fs::exists(fs::symlink_status(folder / vendor, ignored))) {
      // Cut off between taking the old one away and putting the new one there.
      fs::rename(hidden, folder / vendor, ignored);
    } else {
      fs::remove_all(hidden, ignored);
    }
  }
}

}  // namespace

THeldFolder::THeldFolder(const std::string& folder)
    : m_folder(folder), m_file(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (m_file.Get() < 0) RefusePlace(folder, "cannot be opened", errno);
  if (::flock(m_file.Get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK) RefusePlace(folder, "cannot be locked", errno);
    throw TQELException(TQELStatusCode::kFailed, folder +
                                                     ": another installation is at work there; try "
                                                     "again when it has ended");
  }
  TidyUp(folder);
}

void THeldFolder::Sync() const {
  // EINVAL comes from file systems that have nothing to do for this.
  if (::fsync(m_file.Get()) == 0 || errno == EINVAL) return;
  LogToCore(ILogger::kWarning, m_folder + ": the disk may lose what was changed in it: " +
                                   std::generic_category().message(errno));
}

void THeldFolder::Tidy(const std::string& folder) noexcept {
  try {
    // Holding it would keep an installation out, so that is not done for nothing.
    if (!FindHidden(folder).empty()) THeldFolder{folder};
  } catch (const std::exception&) {
    // There will be a next time.
    return;
  }
}

}  // namespace NZEPQEL20::setup
