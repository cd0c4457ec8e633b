// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/ClassCheck.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/setup/FolderInstall.h"
#include "platform/setup/InstalledFiles.h"
#include "platform/setup/InstalledSchema.h"
#include "platform/setup/VendorSchema.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;

/// Whether the error is about a file of the folder; the installation's own are not its fault.
bool IsOfFolder(const TMofError& error, const std::string& folder) {
  const std::string file = fs::path(error.file).lexically_normal().string();
  return file.compare(0, folder.size() + 1, folder + '/') == 0;
}

void Take(const std::vector<TMofError>& errors, const std::string& folder,
          std::vector<TProviderFinding>& findings) {
  for (const TMofError& error : errors) {
    if (error.isWarning || !IsOfFolder(error, folder)) continue;
    findings.push_back({false, kMofRule, error.ToString(), "mend the MOF"});
  }
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

/// As the run time has them: with the other vendors', and from the cache.
TPackageClasses LoadInstalledClasses(const std::string& root, const TProviderPackage& package) {
  TLoadedSchema schema = LoadInstalledSchema(root).schema;
  TPackageClasses loaded;
  Take(schema.problems, package.folder, loaded.findings);
  loaded.classes = std::move(schema.classes);
  return loaded;
}

}  // namespace

TPackageClasses LoadPackageClasses(const std::string& root, const TProviderPackage& package) {
  if (IsBelow(package.folder, root + "/providers")) return LoadInstalledClasses(root, package);
  auto classes = std::make_shared<TClassRepository>();
  TPackageClasses loaded;
  classes->AddSearchPath(root + "/schema");
  classes->AddSearchPath(package.folder);
  const TInstalledFiles installed = FindInstalledFiles(root);
  for (const std::string& file : installed.schema) classes->Load(file);
  // What is installed under the same name gives way to the folder.
  const std::string replaced = root + "/providers/" + package.name;
  for (const std::string& file : installed.providerSchema) {
    if (!IsBelow(file, replaced)) classes->Load(file);
  }
  for (const std::string& file : OrderByIncludes(package.schema)) {
    Take(classes->Load(file), package.folder, loaded.findings);
  }
  Take(classes->Check(), package.folder, loaded.findings);
  loaded.classes = std::move(classes);
  return loaded;
}

std::vector<TProviderFinding> CheckClasses(const TClassRepository& classes,
                                           const TRegistrations& registrations) {
  std::vector<TProviderFinding> findings;
  std::set<std::string> seen;
  for (const TRegistration& entry : registrations.GetEntries()) {
    if (!seen.insert(entry.className).second) continue;
    const std::string what = entry.source + ": class " + entry.className;
    const auto declaration = classes.Find(entry.className);
    if (declaration == nullptr) {
      findings.push_back(
          {false, "R3", what + " is not declared", "add the MOF file that declares it"});
      continue;
    }
    const std::string missing = FindMissingSuperclass(classes, *declaration);
    if (!missing.empty()) {
      findings.push_back({true, "R3", what + ": its superclass " + missing + " is not declared",
                          "add the MOF file that declares it"});
    }
    const bool needsKey =
        entry.isInstance || entry.isAssociation || entry.isMethod || entry.isProperty;
    // What is missing may have the key.
    if (needsKey && missing.empty() && !HasKey(*declaration)) {
      findings.push_back({false, "R16", what + " has no key, and inherits none",
                          "mark the properties that tell its instances apart with [Key]"});
    }
  }
  return findings;
}

}  // namespace NZEPQEL20::setup
