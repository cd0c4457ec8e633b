// SPDX-License-Identifier: Apache-2.0
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "platform/contract/TOSSpecific.h"
#include "platform/contract/TQELException.h"
#include "tests/support/TFaultPlan.h"
#include "tests/support/TScriptedSystem.h"

namespace NZEPQEL20 {

using scripted::TFaultPlan;
using scripted::TScriptedSystem;

std::string TOSSpecific::GetBiosID() {
  return TFaultPlan::Get().Enter("bios", "") ? "" : TScriptedSystem::Get().m_biosID;
}

std::string TOSSpecific::GetQELRootPath() {
  return TFaultPlan::Get().Enter("root", "") ? "" : TScriptedSystem::Get().m_root;
}

std::uint64_t TOSSpecific::GetFileSize(std::string path) {
  TScriptedSystem& system = TScriptedSystem::Get();
  const std::string name = system.Shorten(path);
  if (TFaultPlan::Get().Enter("size", name)) {
    return 0;
  }
  const auto scriptedSize = system.m_fileSizes.find(name);
  if (scriptedSize != system.m_fileSizes.end()) {
    return scriptedSize->second;
  }
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) {
      return 0;
    }
    throw TQELException(TQELStatusCode::kFailed, path + ": " + std::strerror(errno));
  }
  if (S_ISDIR(status.st_mode)) {
    throw TQELException(TQELStatusCode::kFailed, path + ": is a directory");
  }
  return static_cast<std::uint64_t>(status.st_size);
}

bool TOSSpecific::isOEMBuild() {
  return !TFaultPlan::Get().Enter("oem", "") && TScriptedSystem::Get().m_isOEM;
}

void TOSSpecific::SetQELRootPath(const std::string& root) {
  TScriptedSystem::Get().m_root = root;
}

void TOSSpecific::SetOEMBuild(bool isOEM) {
  TScriptedSystem::Get().m_isOEM = isOEM;
}

}  // namespace NZEPQEL20
