// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/ClassCheck.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/setup/FolderInstall.h"
#include "platform/setup/InstalledFiles.h"
#include "platform/setup/InstalledSchema.h"
#include "platform/setup/NameList.h"
#include "platform/setup/VendorSchema.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;

/// Whether the file is one of the folder; the installation's own are not its fault.
bool IsOfFolder(const std::string& path, const std::string& folder) {
  return IsBelow(fs::path(path).lexically_normal().string(), folder);
}

bool HasKey(const TCIMClassDeclaration& declaration) {
  return std::any_of(declaration.properties.begin(), declaration.properties.end(),
                     [](const TCIMPropertyDeclaration& property) { return property.isKey; });
}

/// The superclass that nobody declares, somewhere above; empty when all are there.
std::string FindMissingSuperclass(const TClassRepository& classes,
                                  const TCIMClassDeclaration& declaration) {
  std::string above = declaration.superclass;
  for (unsigned int depth = 0; depth < TClassRepository::kMaxInheritance && !above.empty();
       ++depth) {
    const auto next = classes.Find(above);
    if (next == nullptr) return above;
    above = next->superclass;
  }
  return {};
}

/// The vendors' folders in the order in which they are read, with the package in the place of what
/// is installed under its name, or where that would be.
std::vector<std::string> PlaceFolder(const TInstalledFiles& installed,
                                     const TProviderPackage& package) {
  std::vector<std::string> folders;
  for (const std::string& folder : installed.providerFolders) {
    if (fs::path(folder).filename() != package.name) folders.push_back(folder);
  }
  const auto place =
      std::find_if(folders.begin(), folders.end(), [&package](const std::string& folder) {
        return fs::path(folder).filename().string() > package.name;
      });
  folders.insert(place, package.folder);
  return folders;
}

/// What the schema and the vendors would have together, were the package installed.
TSchemaInputs GatherInputs(const std::string& root, const TProviderPackage& package) {
  const TInstalledFiles installed = FindInstalledFiles(root);
  TSchemaInputs inputs;
  inputs.files = installed.schema;
  inputs.folders = {root + "/schema"};
  for (const std::string& folder : PlaceFolder(installed, package)) {
    inputs.folders.push_back(folder);
    if (folder == package.folder) {
      const std::vector<std::string> own = OrderByIncludes(package.schema);
      inputs.files.insert(inputs.files.end(), own.begin(), own.end());
      continue;
    }
    std::copy_if(installed.providerSchema.begin(), installed.providerSchema.end(),
                 std::back_inserter(inputs.files),
                 [&folder](const std::string& file) { return IsBelow(file, folder); });
  }
  return inputs;
}

bool Registers(const TProviderPackage& vendor, const std::string& className) {
  return std::any_of(vendor.services.begin(), vendor.services.end(),
                     [&className](const TProviderService& service) {
                       return IsSameName(service.className, className);
                     });
}

/// The vendor, other than the one of the package, that registers the class; null when there is
/// none.
const TProviderPackage* FindVendor(const std::vector<TProviderPackage>& installed,
                                   const TProviderPackage& package, const std::string& className) {
  const auto found =
      std::find_if(installed.begin(), installed.end(), [&](const TProviderPackage& vendor) {
        return vendor.name != package.name && vendor.folder != package.folder &&
               Registers(vendor, className);
      });
  return found == installed.end() ? nullptr : &*found;
}

bool NeedsKey(const TRegistration& entry) {
  return entry.isInstance || entry.isAssociation || entry.isMethod || entry.isProperty;
}

/// Whether a class is one of the DMTF's, and not a vendor's.
bool IsStandard(const std::string& className) {
  return IsSameName(className.substr(0, 4), "CIM_");
}

/// Whether every class that is registered is there with all that it inherits.
bool HasAllClasses(const TClassRepository& classes, const TRegistrations& registrations) {
  const auto& entries = registrations.GetEntries();
  return std::all_of(entries.begin(), entries.end(), [&classes](const TRegistration& entry) {
    return classes.IsComplete(entry.className);
  });
}

/// The classes of declared instances that are none of a registration.
std::set<std::string> FindOwnInstances(const TClassRepository& classes) {
  std::set<std::string> names;
  for (const TCIMInstanceData& instance : classes.GetInstances()) {
    const std::string& name = instance.path.GetClassName();
    if (!IsSameName(name.substr(0, 3), "PG_")) names.insert(name);
  }
  return names;
}

/// How a fault of one class, or of several, is told.
struct TFaultWords {
  bool isWarning;
  const char* rule;
  const char* one;
  const char* many;
  const char* remedyOfOne;
  const char* remedyOfMany;
};

/// Registered classes that the same is wrong with: a file or superclass that is missing is one
/// cause, and one line for each registration file.
class TClassFaults {
 public:
  explicit TClassFaults(const TFaultWords& words) : m_words(words) {}

  void Add(const TRegistration& entry, const std::string& cause = {}) {
    m_groups[{entry.file, cause}].push_back(&entry);
  }

  void Tell(std::vector<TProviderFinding>& findings) const {
    for (const auto& [key, entries] : m_groups) {
      std::string text = entries.front()->source + ": " + Name(entries);
      text += entries.size() == 1 ? m_words.one : m_words.many;
      text += key.second;
      findings.push_back({m_words.isWarning, m_words.rule, std::move(text),
                          entries.size() == 1 ? m_words.remedyOfOne : m_words.remedyOfMany});
    }
  }

 private:
  using TGroup = std::vector<const TRegistration*>;

  static std::string Name(const TGroup& entries) {
    std::vector<std::string> names;
    for (const TRegistration* entry : entries) names.push_back(entry->className);
    return (names.size() == 1 ? "class " : "classes ") + ListNames(names);
  }

  const TFaultWords m_words;
  std::map<std::pair<std::string, std::string>, TGroup> m_groups;  ///< By file and cause.
};

std::string CountMore(std::size_t count) {
  return count < 2 ? "" : " (and " + std::to_string(count - 1) + " more classes)";
}

}  // namespace

TPackageClasses LoadPackageClasses(const std::string& root, const TProviderPackage& package) {
  // An installed one as the run time has it: with the other vendors', and from the cache.
  const bool isInstalled = IsBelow(package.folder, root + "/providers");
  TLoadedSchema schema =
      isInstalled ? LoadInstalledSchema(root).schema : LoadSchema(GatherInputs(root, package), {});
  return {std::move(schema.classes), std::move(schema.problems), std::move(schema.leftOut)};
}

std::vector<TProviderFinding> CheckMof(const TPackageClasses& loaded, const std::string& folder,
                                       const TRegistrations& registrations) {
  constexpr std::size_t kShown = 20;
  constexpr char kMend[] = "mend the MOF";
  const bool isHarmless = HasAllClasses(*loaded.classes, registrations);
  std::vector<TProviderFinding> findings;
  // A file that is something else would have hundreds.
  std::map<std::string, std::size_t> counts;
  for (const TMofError& error : loaded.errors) {
    if (error.isWarning || !IsOfFolder(error.file, folder)) continue;
    if (++counts[error.file] > kShown) continue;
    findings.push_back({isHarmless, kMofRule, error.ToString(), kMend});
  }
  for (const auto& [file, count] : counts) {
    if (count <= kShown) continue;
    findings.push_back({isHarmless, kMofRule,
                        file + ": and " + std::to_string(count - kShown) + " more errors", kMend});
  }
  return findings;
}

std::vector<TProviderFinding> CheckInstances(const TClassRepository& classes,
                                             const TProviderPackage& package) {
  // Nearly no folder has any, and then its files need not be read once more.
  if (FindOwnInstances(classes).empty()) return {};
  TClassRepository own;
  for (const std::string& file : package.schema) own.Load(file);
  const std::set<std::string> names = FindOwnInstances(own);
  if (names.empty()) return {};
  return {{true, kMofRule,
           package.folder + ": the MOF has instances of " + ListNames(names) +
               ", and nobody is shown them",
           "have a provider give them, and register it for their classes"}};
}

std::vector<TProviderFinding> CheckClasses(const TClassRepository& classes,
                                           const TRegistrations& registrations) {
  constexpr char kAdd[] = "add the MOF file that declares it";
  TClassFaults undeclared({false, "R3", " is not declared", " are not declared", kAdd,
                           "add the MOF files that declare them"});
  constexpr char kSchema[] =
      "unpack the DMTF's CIM schema into a folder below schema/ (docs/schema.md)";
  TClassFaults standard({true, "R3", " is not declared", " are not declared", kSchema, kSchema});
  TClassFaults orphans({true, "R3", ": its superclass ", ": their superclass ", kAdd, kAdd});
  TClassFaults keyless({false, "R16", " has no key, and inherits none",
                        " have no key, and inherit none",
                        "mark the properties that tell its instances apart with [Key]",
                        "mark the properties that tell their instances apart with [Key]"});
  std::set<std::string> seen;
  for (const TRegistration& entry : registrations.GetEntries()) {
    if (!seen.insert(entry.className).second) continue;
    const auto declaration = classes.Find(entry.className);
    if (declaration == nullptr) {
      // It is served all the same, as far as it can be without its declaration.
      (IsStandard(entry.className) ? standard : undeclared).Add(entry);
      continue;
    }
    const std::string missing = FindMissingSuperclass(classes, *declaration);
    // What is missing may have the key.
    if (!missing.empty()) {
      orphans.Add(entry, missing + " is not declared");
    } else if (NeedsKey(entry) && !HasKey(*declaration)) {
      keyless.Add(entry);
    }
  }
  std::vector<TProviderFinding> findings;
  for (const TClassFaults* faults : {&undeclared, &standard, &orphans, &keyless})
    faults->Tell(findings);
  return findings;
}

std::vector<TProviderFinding> CheckLeftOut(const std::vector<TLeftOutClass>& leftOut,
                                           const TProviderPackage& package,
                                           const std::vector<TProviderPackage>& installed) {
  constexpr char kRemedy[] = "derive from the class that is there, or give yours another name";
  std::vector<const TLeftOutClass*> own;
  std::vector<const TLeftOutClass*> anothers;
  for (const TLeftOutClass& entry : leftOut) {
    const bool isOwn = IsOfFolder(entry.file, package.folder);
    if (!isOwn && !IsOfFolder(entry.holder, package.folder)) continue;
    const bool isAnothers = FindVendor(installed, package, entry.name) != nullptr;
    // Ahead of the others in the alphabet, a folder could take a class from who serves it.
    if (isAnothers && (isOwn || !Registers(package, entry.name))) {
      anothers.push_back(&entry);
    } else if (isOwn) {
      own.push_back(&entry);
    }
  }
  std::vector<TProviderFinding> findings;
  if (!anothers.empty()) {
    const TLeftOutClass& first = *anothers.front();
    const bool isOwn = IsOfFolder(first.file, package.folder);
    findings.push_back({false, "R22",
                        (isOwn ? first.file : first.holder) + ": class " + first.name +
                            CountMore(anothers.size()) + " differs from the one in " +
                            (isOwn ? first.holder : first.file) + ", and " +
                            FindVendor(installed, package, first.name)->folder + " registers it",
                        kRemedy});
  }
  if (!own.empty()) {
    const TLeftOutClass& first = *own.front();
    findings.push_back({true, "R22",
                        first.file + ": class " + first.name + CountMore(own.size()) +
                            " differs from the one in " + first.holder +
                            ", which holds; it is left out",
                        kRemedy});
  }
  return findings;
}

}  // namespace NZEPQEL20::setup
