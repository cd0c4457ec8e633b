// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/PackageFiles.h"

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
#include "platform/setup/LibraryProbe.h"
#include "platform/setup/ProviderCheck.h"
#include "platform/setup/TVendorFolder.h"
#include "platform/setup/VendorSchema.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kMaxOther = std::uintmax_t{64} << 20U;
constexpr char kRule[] = "R20";

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

/// What the package's MOF files include.
std::vector<std::string> FindIncluded(const TProviderPackage& package) {
  std::vector<std::string> files = package.schema;
  std::copy_if(package.registrations.begin(), package.registrations.end(),
               std::back_inserter(files), IsMofName);
  return FindAllIncludes(files);
}

std::set<std::string> GetFiles(const TProviderPackage& package) {
  std::set<std::string> files;
  for (const auto* some :
       {&package.libraries, &package.schema, &package.registrations, &package.others}) {
    files.insert(some->begin(), some->end());
  }
  return files;
}

/// Takes those of `files` that the package does not have yet.
void AddOthers(const std::vector<std::string>& files, TProviderPackage& package) {
  std::set<std::string> known = GetFiles(package);
  std::copy_if(files.begin(), files.end(), std::back_inserter(package.others),
               [&known](const std::string& file) { return known.insert(file).second; });
}

/// Notes what the files are, unless that is known from before. What cannot be had is not noted.
void Note(const std::vector<std::string>& files, TProviderPackage& package) {
  try {
    const TVendorFolder folder(package.folder);
    for (const std::string& name : files) {
      if (package.states.count(name) > 0) continue;
      const TVendorFile file = folder.Find(name);
      if (file.fault.empty()) package.states.emplace(name, DescribeState(file.status));
    }
  } catch (const TQELException&) {
    // The folder is gone, or nobody may enter it. Nothing of it can be added, then.
    return;
  }
}

/// What keeps `file` from being copied; no text when nothing does.
TProviderFinding FindFault(const TVendorFile& file) {
  if (file.fault.empty()) return {};
  return {false, kRule, file.fault, file.remedy};
}

}  // namespace

std::vector<TProviderFinding> FindFileFaults(const TProviderPackage& package) {
  std::vector<TProviderFinding> faults;
  std::error_code error;
  if (package.isWhole) {
    for (const std::string& problem : ListVendorFiles(package.folder).problems) {
      faults.push_back({false, kRule, problem, "keep the folder small, flat and readable"});
    }
  }
  const TVendorFolder folder(package.folder);
  for (const std::string& file : GetFiles(package)) {
    TProviderFinding fault = FindFault(folder.Find(file));
    if (!fault.text.empty()) faults.push_back(std::move(fault));
  }
  for (const std::string& file : package.others) {
    const std::uintmax_t size = fs::file_size(file, error);
    if (error || size <= kMaxOther) continue;
    faults.push_back({false, kRule, file + ": is larger than 64 MiB, and no library",
                      "take it out of the folder"});
  }
  for (const std::string& file : FindIncluded(package)) {
    if (IsBelow(file, package.folder)) continue;
    faults.push_back({false, kRule,
                      file + ": is included, and lies outside the folder " + package.folder,
                      "put it into the folder"});
  }
  return faults;
}

std::vector<TProviderFinding> FindPrivateFiles(const TProviderPackage& package) {
  constexpr mode_t kEverybody = 0444;
  std::set<std::string> files;
  for (const auto* some : {&package.libraries, &package.schema, &package.registrations}) {
    files.insert(some->begin(), some->end());
  }
  for (std::string& file : FindIncluded(package)) files.insert(std::move(file));
  const TVendorFolder folder(package.folder);
  const auto isPrivate = [&folder](const std::string& name) {
    const TVendorFile file = folder.Find(name);
    return file.fault.empty() && (file.status.st_mode & kEverybody) != kEverybody;
  };
  const auto first = std::find_if(files.begin(), files.end(), isPrivate);
  if (first == files.end()) return {};
  const auto more = std::count_if(std::next(first), files.end(), isPrivate);
  return {{true, kRule,
           *first + (more == 0 ? "" : " and " + std::to_string(more) + " more") +
               " cannot be read by everybody, and neither can the installed copy",
           "make it readable (chmod a+r) when other users are to run the tests"}};
}

std::vector<std::string> CollectFiles(const TProviderPackage& package) {
  const std::vector<TProviderFinding> faults = FindFileFaults(package);
  if (!faults.empty()) {
    const TProviderFinding& first = faults.front();
    throw TQELException(TQELStatusCode::kFailed,
                        first.text + "; " + first.remedy + "; see rule " + first.rule);
  }
  std::set<std::string> files = GetFiles(package);
  for (std::string& file : FindIncluded(package)) files.insert(std::move(file));
  return {files.begin(), files.end()};
}

TProviderPackage ReadFolder(const std::string& folder) {
  TProviderPackage package;
  package.folder = folder;
  package.isWhole = true;
  package.name = fs::path(folder).filename().string();
  const std::vector<std::string> files = ListVendorFiles(package.folder).files;
  Note(files, package);
  std::copy_if(files.begin(), files.end(), std::back_inserter(package.libraries), IsLibraryName);
  std::copy_if(files.begin(), files.end(), std::back_inserter(package.schema), IsMofName);
  TRegistrations registrations;
  registrations.LoadFolder(package.folder, files);
  Sort(registrations, package);
  AddOthers(files, package);
  Note(FindIncluded(package), package);
  return package;
}

TProviderPackage ReadFile(const std::string& file) {
  const fs::path folder = fs::path(file).parent_path();
  TProviderPackage package;
  package.folder = folder.string();
  // The folder may be one that holds much else, such as /tmp.
  package.name = fs::path(file).stem().string();
  for (const std::string& other : ListVendorFiles(package.folder).files) {
    if (IsLibraryName(other)) package.libraries.push_back(other);
    if (IsMofName(other) && fs::path(other).parent_path() == folder) {
      package.schema.push_back(other);
    }
  }
  package.registrations = {file};
  for (const auto* some : {&package.libraries, &package.schema, &package.registrations}) {
    Note(*some, package);
  }
  const TRegistrations registrations = ReadRegistrations(package);
  // Registrations in MOF that lie beside are not asked for.
  TRegistrations beside;
  beside.LoadFolder(package.folder, package.schema);
  Sort(beside, package);
  package.services.clear();
  Sort(registrations, package);
  package.libraries = FindUsed(package.libraries, registrations);
  const std::vector<std::string> included = FindIncluded(package);
  Note(included, package);
  AddOthers(included, package);
  return package;
}

}  // namespace NZEPQEL20::setup
