// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TToolFinder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>

namespace hardware {
namespace {

std::string ReadPathVariable() {
  const char* const path = std::getenv("PATH");
  return path != nullptr ? path : "/usr/bin:/bin";
}

}  // namespace

TToolFinder::TToolFinder(const std::string& path) {
  std::istringstream folders(path + ":/usr/sbin:/sbin");
  std::string folder;
  while (std::getline(folders, folder, ':')) {
    // A relative folder would mean another program in every working directory.
    if (!folder.empty() && folder.front() == '/') m_folders.push_back(folder);
  }
}

TToolFinder::TToolFinder() : TToolFinder(ReadPathVariable()) {}

std::string TToolFinder::Find(const std::string& name) const {
  for (const std::string& folder : m_folders) {
    std::string file = folder;
    file.append("/").append(name);
    struct stat status {};
    if (::stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
        ::access(file.c_str(), X_OK) == 0) {
      return file;
    }
  }
  return {};
}

}  // namespace hardware
