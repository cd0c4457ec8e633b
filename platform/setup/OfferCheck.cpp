// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/OfferCheck.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "platform/cmpi/TProviders.h"
#include "platform/setup/NameList.h"

namespace NZEPQEL20::setup {
namespace {

using TServices = std::vector<TProviderService>;

// Joins a test to a device; discovery enumerates its instances.
constexpr char kLink[] = "CIM_AvailableDiagnosticService";
constexpr char kTest[] = "CIM_DiagnosticService";
constexpr char kTestRule[] = "T1";

TServices FindKind(const TClassRepository& classes, const TServices& services, const char* wanted) {
  TServices found;
  for (const TProviderService& service : services) {
    if (classes.IsA(service.className, wanted)) found.push_back(service);
  }
  return found;
}

bool HasType(const TProviderService& service, const char* wanted) {
  return std::find(service.types.begin(), service.types.end(), wanted) != service.types.end();
}

/// Whether its instances are enumerated, or found by way of the objects that it joins.
bool IsFound(const TProviderService& service) {
  return HasType(service, "instance") || HasType(service, "association");
}

bool IsIn(const TProviderService& service, const std::string& nameSpace) {
  return service.nameSpace == "*" || cmpi::IsSameNamespace(service.nameSpace, nameSpace);
}

/// Whether `other` is neither the folder itself nor what it is installed in place of.
bool IsAnother(const TProviderPackage& package, const TProviderPackage& other) {
  return other.name != package.name && other.folder != package.folder;
}

/// Whether another folder joins tests to devices; it may do so for those of this one.
bool HasLinkElsewhere(const TClassRepository& classes, const TProviderPackage& package,
                      const std::vector<TProviderPackage>& installed) {
  return std::any_of(installed.begin(), installed.end(), [&](const TProviderPackage& other) {
    return IsAnother(package, other) && !FindKind(classes, other.services, kLink).empty();
  });
}

TProviderFinding MakeNoLink(const TProviderPackage& package, const TProviderService& test) {
  return {true, kTestRule,
          package.folder + ": registers the test " + test.className + " and no subclass of " +
              kLink + ", so that no test of it is found",
          "register one as instance"};
}

TProviderFinding MakeNotFound(const TProviderPackage& package, const TServices& links) {
  std::set<std::string> names;
  for (const TProviderService& link : links) names.insert(link.className);
  return {true, kTestRule,
          package.folder + ": " + ListNames(names) +
              ": registered neither as instance nor as association, so that no test of it is found",
          "add the type instance to the registration"};
}

TProviderFinding MakeElsewhere(const TProviderPackage& package, const TServices& services,
                               const std::string& nameSpace) {
  std::set<std::string> spaces;
  for (const TProviderService& service : services) spaces.insert(service.nameSpace);
  return {true, kTestRule,
          package.folder + ": is registered in " + ListNames(spaces) +
              ", and `diagsrun list` looks in " + nameSpace,
          "`diagsrun --namespace " + *spaces.begin() + " list` looks there"};
}

/// Whether some folder serves `className`, or a class above it, as `type`.
bool IsServed(const TClassRepository& classes, const TProviderPackage& package,
              const std::vector<TProviderPackage>& installed, const std::string& className,
              const char* type) {
  const auto serves = [&](const TProviderService& service) {
    return HasType(service, type) && classes.IsA(className, service.className);
  };
  const auto isIn = [&](const TProviderPackage& folder) {
    return std::any_of(folder.services.begin(), folder.services.end(), serves);
  };
  return isIn(package) ||
         std::any_of(installed.begin(), installed.end(), [&](const TProviderPackage& other) {
           return IsAnother(package, other) && isIn(other);
         });
}

/// Tests that lack a type in the registration.
std::vector<TProviderFinding> CheckTypes(const TClassRepository& classes,
                                         const TProviderPackage& package, const TServices& tests,
                                         const std::vector<TProviderPackage>& installed) {
  std::vector<TProviderFinding> findings;
  constexpr std::pair<const char*, const char*> kNeeds[] = {
      {"instance", "none of their tests is found"},
      {"method", "none of their tests can be started"}};
  for (const auto& [type, loss] : kNeeds) {
    std::set<std::string> without;
    for (const TProviderService& test : tests) {
      if (!IsServed(classes, package, installed, test.className, type)) {
        without.insert(test.className);
      }
    }
    if (without.empty()) continue;
    findings.push_back({true, kTestRule,
                        package.folder + ": " + ListNames(without) + ": not registered as " + type +
                            ", so that " + loss,
                        std::string("add the type ") + type + " to the registration"});
  }
  return findings;
}

/// A kind of class that a test needs besides itself, to be registered as instance.
struct TCompanion {
  const char* kind;
  const char* rule;
  const char* loss;
};
constexpr TCompanion kCompanions[] = {
    {"CIM_ConcreteJob", "T6", "no test of it can be followed"},
    {"CIM_DiagnosticCompletionRecord", "T7", "no test of it gets a verdict"}};

/// What has to be registered beside tests so that they can be run to their end.
std::vector<TProviderFinding> CheckCompanions(const TClassRepository& classes,
                                              const TProviderPackage& package) {
  std::vector<TProviderFinding> findings;
  for (const TCompanion& companion : kCompanions) {
    const TServices found = FindKind(classes, package.services, companion.kind);
    const bool isThere =
        std::any_of(found.begin(), found.end(),
                    [](const TProviderService& service) { return HasType(service, "instance"); });
    if (isThere) continue;
    findings.push_back({true, companion.rule,
                        package.folder + ": registers tests and no subclass of " + companion.kind +
                            " as instance, so that " + companion.loss,
                        "register one as instance"});
  }
  return findings;
}

/// What keeps the tests from being found.
std::vector<TProviderFinding> CheckLinks(const TClassRepository& classes,
                                         const TProviderPackage& package, const TServices& tests,
                                         const std::vector<TProviderPackage>& installed,
                                         const std::string& nameSpace) {
  const TServices links = FindKind(classes, package.services, kLink);
  if (links.empty() && !tests.empty()) {
    if (HasLinkElsewhere(classes, package, installed)) return {};
    return {MakeNoLink(package, tests.front())};
  }
  TServices found;
  std::copy_if(links.begin(), links.end(), std::back_inserter(found), IsFound);
  if (!links.empty() && found.empty()) return {MakeNotFound(package, links)};
  // Without tests of its own it may still be meant for those who look where it is not.
  if (links.empty()) found = package.services;
  const bool isHere = std::any_of(
      found.begin(), found.end(),
      [&nameSpace](const TProviderService& service) { return IsIn(service, nameSpace); });
  if (found.empty() || isHere) return {};
  return {MakeElsewhere(package, found, nameSpace)};
}

}  // namespace

std::vector<TProviderFinding> CheckOffer(const TClassRepository& classes,
                                         const TProviderPackage& package,
                                         const std::vector<TProviderPackage>& installed,
                                         const std::string& nameSpace) {
  const TServices tests = FindKind(classes, package.services, kTest);
  std::vector<TProviderFinding> findings =
      CheckLinks(classes, package, tests, installed, nameSpace);
  if (!findings.empty() || tests.empty()) return findings;
  findings = CheckTypes(classes, package, tests, installed);
  for (TProviderFinding& finding : CheckCompanions(classes, package)) {
    findings.push_back(std::move(finding));
  }
  return findings;
}

}  // namespace NZEPQEL20::setup
