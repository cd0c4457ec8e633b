// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/TProviderStore.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/cmpi/TRegistrations.h"
#include "platform/cmpi/VendorFiles.h"
#include "platform/contract/TQELException.h"
#include "platform/setup/FolderInstall.h"
#include "platform/setup/InstalledFiles.h"
#include "platform/setup/ProviderCheck.h"

namespace NZEPQEL20 {
namespace {

namespace fs = std::filesystem;

constexpr char kBundled[] = "hardware";

[[noreturn]] void Refuse(TQELStatusCode code, const std::string& text) {
  throw TQELException(code, text);
}

TProviderService MakeService(const TRegistration& entry) {
  TProviderService service = {entry.className, entry.nameSpace, entry.providerName, "", {}};
  std::error_code error;
  if (fs::exists(entry.library, error)) service.library = entry.library;
  if (entry.isInstance) service.types.emplace_back("instance");
  if (entry.isAssociation) service.types.emplace_back("association");
  if (entry.isMethod) service.types.emplace_back("method");
  return service;
}

void TakeFiles(TProviderPackage& package) {
  for (const std::string& file : ListVendorFiles(package.folder).files) {
    if (IsLibraryName(file)) package.libraries.push_back(file);
    if (IsMofName(file)) package.schema.push_back(file);
    if (IsRegistrationName(file)) package.registrations.push_back(file);
  }
}

void TakeServices(TProviderPackage& package) {
  TRegistrations registrations;
  for (const std::string& file : package.registrations) registrations.Load(file);
  for (const TRegistration& entry : registrations.GetEntries()) {
    package.services.push_back(MakeService(entry));
  }
}

TProviderPackage ReadFolder(const fs::path& folder) {
  TProviderPackage package;
  package.folder = folder.string();
  package.name = folder.filename().string();
  TakeFiles(package);
  TakeServices(package);
  return package;
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

TProviderStore::TProviderStore(const std::string& root) : m_root(setup::CheckRoot(root)) {}

std::vector<TProviderPackage> TProviderStore::List() const {
  std::vector<TProviderPackage> packages;
  for (const fs::path& folder : FindFolders(GetProviders(m_root))) {
    packages.push_back(ReadFolder(folder));
  }
  return packages;
}

TProviderPackage TProviderStore::Read(const std::string& path) const {
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  if (error) Refuse(TQELStatusCode::kNotFound, path + ": cannot be read: " + error.message());
  const bool isFile = fs::is_regular_file(real, error);
  TProviderPackage package = ReadFolder(isFile ? real.parent_path() : real);
  if (isFile) {
    package.registrations = {real.string()};
    package.services.clear();
    TakeServices(package);
  }
  if (package.registrations.empty()) {
    Refuse(TQELStatusCode::kNotFound, path + ": holds no registration; see rule R1");
  }
  return package;
}

std::vector<TProviderFinding> TProviderStore::Check(const TProviderPackage& package) const {
  return setup::CheckProvider(m_root, package);
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
  setup::InstallFolder(package.folder, ListVendorFiles(package.folder).files, GetProviders(m_root),
                       name, replace);
}

void TProviderStore::Remove(const std::string& name) const {
  const std::vector<fs::path> folders = FindFolders(GetProviders(m_root));
  std::string names;
  for (const fs::path& folder : folders) {
    if (folder.filename() == name) {
      setup::RemoveFolder(GetProviders(m_root), name);
      return;
    }
    names += (names.empty() ? "" : ", ") + folder.filename().string();
  }
  Refuse(TQELStatusCode::kNotFound, "no provider \"" + name + "\" is installed; there is " +
                                        (names.empty() ? std::string("none") : names));
}

}  // namespace NZEPQEL20
