// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/TProviderStore.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <set>
#include <system_error>

#include "platform/cmpi/TRegistrations.h"
#include "platform/cmpi/VendorFiles.h"
#include "platform/contract/TQELException.h"
#include "platform/setup/FolderInstall.h"
#include "platform/setup/InstalledFiles.h"
#include "platform/setup/LibraryProbe.h"
#include "platform/setup/ProviderCheck.h"
#include "platform/setup/VendorSchema.h"

namespace NZEPQEL20 {
namespace {

namespace fs = std::filesystem;

constexpr char kBundled[] = "hardware";
constexpr std::uintmax_t kMaxOther = std::uintmax_t{64} << 20U;

[[noreturn]] void Refuse(TQELStatusCode code, const std::string& text) {
  throw TQELException(code, text);
}

TProviderService MakeService(const TRegistration& entry) {
  TProviderService service = {entry.className, entry.nameSpace, entry.providerName, "", {}};
  if (entry.hasLibrary) service.library = entry.library;
  if (entry.isInstance) service.types.emplace_back("instance");
  if (entry.isAssociation) service.types.emplace_back("association");
  if (entry.isMethod) service.types.emplace_back("method");
  if (entry.isProperty) service.types.emplace_back("property");
  if (entry.isIndication) service.types.emplace_back("indication");
  return service;
}

bool IsAmong(const std::vector<std::string>& files, const std::string& file) {
  return std::find(files.begin(), files.end(), file) != files.end();
}

/// Registrations are those files that prove to be some; MOF that declares classes, too, is both.
void Sort(const TRegistrations& registrations, TProviderPackage& package) {
  package.registrations = registrations.GetFiles();
  const std::vector<std::string>& pure = registrations.GetPureFiles();
  const auto isPure = [&pure](const std::string& file) { return IsAmong(pure, file); };
  std::vector<std::string>& schema = package.schema;
  schema.erase(std::remove_if(schema.begin(), schema.end(), isPure), schema.end());
  for (const TRegistration& entry : registrations.GetEntries()) {
    package.services.push_back(MakeService(entry));
  }
}

bool IsKnown(const TProviderPackage& package, const std::string& file) {
  return IsAmong(package.libraries, file) || IsAmong(package.schema, file) ||
         IsAmong(package.registrations, file) || IsAmong(package.others, file);
}

/// What the package's MOF files include.
std::vector<std::string> FindIncluded(const TProviderPackage& package) {
  std::vector<std::string> files = package.schema;
  std::copy_if(package.registrations.begin(), package.registrations.end(),
               std::back_inserter(files), IsMofName);
  return setup::FindAllIncludes(files);
}

/// Everything that an installed package needs, each file once.
std::vector<std::string> CollectFiles(const TProviderPackage& package) {
  for (const std::string& file : package.others) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    if (!error && size > kMaxOther) {
      Refuse(TQELStatusCode::kFailed,
             file +
                 ": is larger than 64 MiB, and no library; take it out of the folder; see rule "
                 "R20");
    }
  }
  std::set<std::string> files;
  for (const auto* some :
       {&package.libraries, &package.schema, &package.registrations, &package.others}) {
    files.insert(some->begin(), some->end());
  }
  const std::string start = package.folder + '/';
  for (const std::string& file : FindIncluded(package)) {
    if (file.compare(0, start.size(), start) != 0) {
      Refuse(TQELStatusCode::kFailed, file + ": is included, and lies outside the folder " +
                                          package.folder +
                                          "; put it into the folder; see rule R20");
    }
    files.insert(file);
  }
  return {files.begin(), files.end()};
}

TProviderPackage ReadFolder(const fs::path& folder) {
  TProviderPackage package;
  package.folder = folder.string();
  package.name = folder.filename().string();
  const std::vector<std::string> files = ListVendorFiles(package.folder).files;
  std::copy_if(files.begin(), files.end(), std::back_inserter(package.libraries), IsLibraryName);
  std::copy_if(files.begin(), files.end(), std::back_inserter(package.schema), IsMofName);
  TRegistrations registrations;
  registrations.LoadFolder(package.folder, files);
  Sort(registrations, package);
  std::copy_if(files.begin(), files.end(), std::back_inserter(package.others),
               [&package](const std::string& file) { return !IsKnown(package, file); });
  return package;
}

/// The package of one registration file: what it names, and the MOF files beside it.
TProviderPackage ReadFile(const fs::path& file) {
  TProviderPackage package;
  package.folder = file.parent_path().string();
  package.name = file.parent_path().filename().string();
  for (const std::string& other : ListVendorFiles(package.folder).files) {
    if (IsLibraryName(other)) package.libraries.push_back(other);
    if (IsMofName(other) && fs::path(other).parent_path() == file.parent_path()) {
      package.schema.push_back(other);
    }
  }
  package.registrations = {file.string()};
  const TRegistrations registrations = setup::ReadRegistrations(package);
  // Registrations in MOF that lie beside are not asked for.
  TRegistrations beside;
  beside.LoadFolder(package.folder, package.schema);
  Sort(beside, package);
  package.services.clear();
  Sort(registrations, package);
  package.libraries = setup::FindUsed(package.libraries, registrations);
  for (const std::string& included : FindIncluded(package)) {
    if (!IsKnown(package, included)) package.others.push_back(included);
  }
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
  const bool isFolder = fs::is_directory(real, error);
  const bool isNamed = IsRegistrationName(real.string()) || IsMofName(real.string());
  if (!isFolder && !isNamed) {
    Refuse(TQELStatusCode::kFailed,
           path +
               ": is neither a folder nor a registration (*.registration, *.reg, *.mof); name "
               "the vendor's folder; see rule R1");
  }
  TProviderPackage package = isFolder ? ReadFolder(real) : ReadFile(real);
  if (package.registrations.empty()) {
    Refuse(TQELStatusCode::kNotFound,
           path + ": holds no registration; add a .registration or .reg file; see rule R1");
  }
  return package;
}

std::vector<TProviderFinding> TProviderStore::Check(const TProviderPackage& package) const {
  return setup::CheckProvider(m_root, package, List());
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
  setup::InstallFolder(package.folder, CollectFiles(package), GetProviders(m_root), name, replace);
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
  Refuse(TQELStatusCode::kNotFound, "no provider \"" + name + "\" is installed; installed " +
                                        (names.empty() ? "is none" : "are " + names));
}

}  // namespace NZEPQEL20
