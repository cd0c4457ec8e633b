// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TOSSpecific.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <system_error>

#include "platform/contract/TQELException.h"
#include "platform/services/BiosVersion.h"
#include "platform/services/InstalledRoot.h"

namespace NZEPQEL20 {
namespace {

std::atomic<bool> isOEM{false};

// Function statics: a host may ask before this file's own statics have been made.
std::mutex& GetRootMutex() {
  static std::mutex mutex;
  return mutex;
}

std::string& GetChosenRoot() {
  static std::string root;
  return root;
}

std::string FindRoot() {
  {
    const std::lock_guard<std::mutex> lock(GetRootMutex());
    if (!GetChosenRoot().empty()) return GetChosenRoot();
  }
  const char* const fromEnvironment = std::getenv("DIAGSRUNNER_ROOT");
  if (fromEnvironment != nullptr && *fromEnvironment != '\0') return fromEnvironment;

  Dl_info self{};
  const bool isKnown = dladdr(reinterpret_cast<const void*>(&isOEM), &self) != 0;
  return services::FindInstalledRoot(isKnown ? self.dli_fname : "", DIAGSRUNNER_INSTALL_ROOT);
}

[[noreturn]] void RefuseFile(const std::string& path, int error) {
  throw TQELException(error == EACCES ? TQELStatusCode::kAccessDenied : TQELStatusCode::kFailed,
                      "Size of '" + path + "': " + std::generic_category().message(error));
}

}  // namespace

std::string TOSSpecific::GetBiosID() {
  return services::ReadBiosVersion("/sys/class/dmi/id/bios_version");
}

std::string TOSSpecific::GetQELRootPath() {
  std::string root = FindRoot();
  root.erase(root.find_last_not_of('/') + 1);
  return root;
}

// The path's type is fixed.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
std::uint64_t TOSSpecific::GetFileSize(std::string path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) return 0;
    RefuseFile(path, errno);
  }
  if (S_ISDIR(status.st_mode)) RefuseFile(path, EISDIR);
  // Opening a pipe would wait for a writer, and a device has no size.
  if (!S_ISREG(status.st_mode)) {
    throw TQELException(TQELStatusCode::kInvalidArgument,
                        "Size of '" + path + "': not a regular file");
  }
  return static_cast<std::uint64_t>(status.st_size);
}

bool TOSSpecific::isOEMBuild() {
  return isOEM;
}

void TOSSpecific::SetQELRootPath(const std::string& root) {
  const std::lock_guard<std::mutex> lock(GetRootMutex());
  GetChosenRoot() = root;
}

void TOSSpecific::SetOEMBuild(bool isOEMBuild) {
  isOEM = isOEMBuild;
}

}  // namespace NZEPQEL20
