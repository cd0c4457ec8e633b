// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/TProviderStore.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/cmpi/VendorFiles.h"
#include "platform/contract/TQELException.h"
#include "platform/setup/FolderInstall.h"
#include "platform/setup/InstalledFiles.h"
#include "platform/setup/PackageFiles.h"
#include "platform/setup/ProviderCheck.h"
#include "platform/setup/THeldFolder.h"

namespace NZEPQEL20 {
namespace {

namespace fs = std::filesystem;

constexpr char kBundled[] = "hardware";

[[noreturn]] void Refuse(TQELStatusCode code, const std::string& text) {
  throw TQELException(code, text);
}

/// The vendors' folders, by name.
std::vector<fs::path> FindFolders(const std::string& providers) {
  std::vector<fs::path> folders;
  std::error_code error;
  fs::directory_iterator next(providers, error);
  while (!error && next != fs::directory_iterator()) {
    const bool isShown = next->path().filename().string().front() != '.';
    if (isShown && next->is_directory(error)) folders.push_back(next->path());
    next.increment(error);
  }
  if (error && error != std::errc::no_such_file_or_directory) {
    Refuse(TQELStatusCode::kFailed, providers + ": cannot be read: " + error.message());
  }
  std::sort(folders.begin(), folders.end());
  return folders;
}

std::string GetProviders(const std::string& root) {
  return root + "/providers";
}

}  // namespace

TProviderStore::TProviderStore(const std::string& root, std::string nameSpace)
    : m_root(setup::CheckRoot(root)), m_nameSpace(std::move(nameSpace)) {}

std::vector<TProviderPackage> TProviderStore::List() const {
  setup::THeldFolder::Tidy(GetProviders(m_root));
  std::vector<TProviderPackage> packages;
  for (const fs::path& folder : FindFolders(GetProviders(m_root))) {
    packages.push_back(setup::ReadFolder(folder.string()));
  }
  return packages;
}

TProviderPackage TProviderStore::Read(const std::string& path) const {
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  if (error) Refuse(TQELStatusCode::kNotFound, path + ": cannot be read: " + error.message());
  const bool isFolder = fs::is_directory(real, error);
  const bool isNamed = IsRegistrationName(real.string()) || IsMofName(real.string());
  if (!isFolder && !isNamed) {
    Refuse(TQELStatusCode::kFailed,
           path +
               ": is neither a folder nor a registration (*.registration, *.reg, *.mof); name "
               "the vendor's folder; see rule R1");
  }
  TProviderPackage package =
      isFolder ? setup::ReadFolder(real.string()) : setup::ReadFile(real.string());
  if (package.registrations.empty()) {
    Refuse(TQELStatusCode::kNotFound,
           path + ": holds no registration; add a .registration or .reg file; see rule R1");
  }
  return package;
}

std::vector<TProviderFinding> TProviderStore::Check(const TProviderPackage& package) const {
  return setup::CheckProvider(m_root, package, List(), m_nameSpace);
}

void TProviderStore::Add(const TProviderPackage& package, const std::string& name,
                         bool replace) const {
  const std::string fault = setup::FindNameFault(name);
  if (!fault.empty()) {
    Refuse(TQELStatusCode::kInvalidArgument,
           "name \"" + name + "\" " + fault + "; give the folder another name");
  }
  if (name == kBundled && !replace) {
    Refuse(TQELStatusCode::kInvalidArgument,
           "name \"" + name + "\" is that of the bundled provider; give the folder another name");
  }
  setup::InstallFolder(package.folder, setup::CollectFiles(package), package.states,
                       GetProviders(m_root), name, replace);
}

void TProviderStore::Remove(const std::string& name, bool force) const {
  const std::vector<fs::path> folders = FindFolders(GetProviders(m_root));
  std::string names;
  for (const fs::path& folder : folders) {
    if (folder.filename() == name) {
      if (name == kBundled && !force) {
        Refuse(TQELStatusCode::kInvalidArgument,
               name +
                   ": is the bundled provider; without it the tests of the processor, memory, "
                   "disks and network are gone");
      }
      setup::RemoveFolder(GetProviders(m_root), name);
      return;
    }
    names += (names.empty() ? "" : ", ") + folder.filename().string();
  }
  Refuse(TQELStatusCode::kNotFound, "no provider \"" + name + "\" is installed; installed " +
                                        (names.empty() ? "is none" : "are " + names));
}

}  // namespace NZEPQEL20
