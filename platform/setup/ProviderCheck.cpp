// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/ProviderCheck.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "platform/cmpi/OneLine.h"
#include "platform/cmpi/TProviders.h"
#include "platform/cmpi/VendorFiles.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/setup/ClassCheck.h"
#include "platform/setup/LibraryProbe.h"
#include "platform/setup/OfferCheck.h"
#include "platform/setup/PackageFiles.h"

namespace NZEPQEL20::setup {
namespace {

using TFindings = std::vector<TProviderFinding>;

void Append(TFindings& findings, TFindings more) {
  std::move(more.begin(), more.end(), std::back_inserter(findings));
}

TFindings CheckRegistrations(const TProviderPackage& package, const TRegistrations& registrations) {
  TFindings findings;
  for (const TRegistrationProblem& problem : registrations.GetFindings()) {
    findings.push_back({problem.isWarning, problem.rule, problem.text, problem.remedy});
  }
  if (package.registrations.empty()) {
    findings.push_back({false, "R1", package.folder + ": holds no registration",
                        "add a .registration or .reg file"});
  } else if (registrations.GetEntries().empty() && findings.empty()) {
    findings.push_back({false, "R1", package.registrations.front() + ": registers no class",
                        "name the classes that the library serves"});
  }
  return findings;
}

/// Whether the two are one library under names that differ in their version: links, or what a
/// packer has made of them.
bool IsSameLibrary(const std::string& left, const std::string& right) {
  const auto getPlain = [](const std::string& file) {
    const std::string name = file.substr(file.rfind('/') + 1);
    return name.substr(0, name.find(".so"));
  };
  return getPlain(left) == getPlain(right) && IsSameFile(left, right);
}

TFindings CheckUnusedLibraries(const TProviderPackage& package,
                               const TRegistrations& registrations) {
  TFindings findings;
  const std::vector<std::string> used = FindUsed(package.libraries, registrations);
  for (const std::string& library : package.libraries) {
    const auto isThis = [&library](const std::string& other) {
      return IsSameLibrary(other, library);
    };
    if (std::any_of(used.begin(), used.end(), isThis)) continue;
    findings.push_back({true, "R18",
                        library + ": no registration names it, and no library is linked with it",
                        "register what it serves, unless a library opens it by itself"});
  }
  return findings;
}

bool IsSameService(const TProviderService& left, const TProviderService& right) {
  return IsSameName(left.className, right.className) &&
         (left.nameSpace == "*" || right.nameSpace == "*" ||
          cmpi::IsSameNamespace(left.nameSpace, right.nameSpace));
}

/// One finding for each other folder, however many classes both serve: it may be another version of
/// the same.
TFindings CheckOthers(const TProviderPackage& package,
                      const std::vector<TProviderPackage>& installed) {
  TFindings findings;
  for (const TProviderPackage& other : installed) {
    if (other.name == package.name || other.folder == package.folder) continue;
    const auto isTwice = [&other](const TProviderService& service) {
      return std::any_of(
          other.services.begin(), other.services.end(),
          [&](const TProviderService& served) { return IsSameService(service, served); });
    };
    const auto& services = package.services;
    const auto first = std::find_if(services.begin(), services.end(), isTwice);
    if (first == services.end()) continue;
    const auto more = std::count_if(first + 1, services.end(), isTwice);
    const std::string others = more == 0 ? " is" : " and " + std::to_string(more) + " more are";
    findings.push_back({true, "R21",
                        "class " + first->className + " in " + first->nameSpace + others +
                            " served by " + other.folder + ", too",
                        "remove one of the two"});
  }
  return findings;
}

/// Drops the warnings of what is not registered when an error says why: a registration that is at
/// fault, or one for a library that is not there.
TFindings DropFollowers(TFindings findings) {
  const std::set<std::string> causes = {"R2", "R11", "R12", "R13"};
  const auto isCause = [&causes](const TProviderFinding& finding) {
    return !finding.isWarning && causes.count(finding.rule) > 0;
  };
  if (std::none_of(findings.begin(), findings.end(), isCause)) return findings;
  const auto isFollower = [](const TProviderFinding& finding) {
    return finding.isWarning && finding.rule == "R18";
  };
  findings.erase(std::remove_if(findings.begin(), findings.end(), isFollower), findings.end());
  return findings;
}

/// Errors first, each finding once.
TFindings Arrange(TFindings findings) {
  std::set<std::string> seen;
  TFindings arranged;
  for (TProviderFinding& finding : findings) {
    finding.text = ToOneLine(std::move(finding.text));
    if (seen.insert(finding.rule + finding.text).second) arranged.push_back(std::move(finding));
  }
  std::stable_partition(arranged.begin(), arranged.end(),
                        [](const TProviderFinding& finding) { return !finding.isWarning; });
  return arranged;
}

}  // namespace

TRegistrations ReadRegistrations(const TProviderPackage& package) {
  std::vector<std::string> files = package.libraries;
  files.insert(files.end(), package.registrations.begin(), package.registrations.end());
  TRegistrations registrations;
  registrations.LoadFolder(package.folder, files);
  return registrations;
}

std::vector<TProviderFinding> CheckProvider(const std::string& root,
                                            const TProviderPackage& package,
                                            const std::vector<TProviderPackage>& installed,
                                            const std::string& nameSpace) {
  TFindings findings;
  // What is beside the files of one registration may be anything.
  if (!package.isWhole) {
    for (const std::string& problem : ListVendorFiles(package.folder).problems) {
      findings.push_back({true, "R1", problem, "keep the folder small and readable"});
    }
  }
  Append(findings, FindFileFaults(package));
  Append(findings, FindPrivateFiles(package));
  const TRegistrations registrations = ReadRegistrations(package);
  Append(findings, CheckRegistrations(package, registrations));
  const TPackageClasses loaded = LoadPackageClasses(root, package);
  Append(findings, CheckMof(loaded, package.folder, registrations));
  Append(findings, CheckInstances(*loaded.classes, package));
  Append(findings, CheckLeftOut(loaded.leftOut, package, installed));
  Append(findings, CheckClasses(*loaded.classes, registrations));
  Append(findings, ProbeLibraries(loaded.classes, registrations, nameSpace));
  Append(findings, CheckUnusedLibraries(package, registrations));
  Append(findings, CheckOthers(package, installed));
  Append(findings, CheckOffer(*loaded.classes, package, installed, nameSpace));
  return Arrange(DropFollowers(std::move(findings)));
}

}  // namespace NZEPQEL20::setup
