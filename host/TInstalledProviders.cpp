// SPDX-License-Identifier: Apache-2.0
#include "host/TInstalledProviders.h"

#include "platform/contract/TOSSpecific.h"

namespace host {

TInstalledProviders::TInstalledProviders(const std::string& root, const std::string& nameSpace)
    : m_root(root.empty() ? NZEPQEL20::TOSSpecific::GetQELRootPath() : root),
      m_store(m_root, nameSpace) {}

std::string TInstalledProviders::GetFolder() {
  return m_root + "/providers";
}

std::vector<NZEPQEL20::TProviderPackage> TInstalledProviders::List() {
  return m_store.List();
}

NZEPQEL20::TProviderPackage TInstalledProviders::Read(const std::string& path) {
  return m_store.Read(path);
}

std::vector<NZEPQEL20::TProviderFinding> TInstalledProviders::Check(
    const NZEPQEL20::TProviderPackage& package) {
  return m_store.Check(package);
}

void TInstalledProviders::Add(const NZEPQEL20::TProviderPackage& package, const std::string& name,
                              bool isReplacing) {
  m_store.Add(package, name, isReplacing);
}

void TInstalledProviders::Remove(const std::string& name, bool isForced) {
  m_store.Remove(name, isForced);
}

}  // namespace host
