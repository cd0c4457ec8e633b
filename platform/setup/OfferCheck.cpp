// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/OfferCheck.h"

#include <algorithm>
#include <iterator>
#include <set>

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

/// Whether its instances are enumerated, or found by way of the objects that it joins.
bool IsFound(const TProviderService& service) {
  return std::any_of(service.types.begin(), service.types.end(), [](const std::string& type) {
    return type == "instance" || type == "association";
  });
}

bool IsIn(const TProviderService& service, const std::string& nameSpace) {
  return service.nameSpace == "*" || cmpi::IsSameNamespace(service.nameSpace, nameSpace);
}

/// Whether another folder joins tests to devices; it may do so for those of this one.
bool HasLinkElsewhere(const TClassRepository& classes, const TProviderPackage& package,
                      const std::vector<TProviderPackage>& installed) {
  return std::any_of(installed.begin(), installed.end(), [&](const TProviderPackage& other) {
    return other.name != package.name && other.folder != package.folder &&
           !FindKind(classes, other.services, kLink).empty();
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

}  // namespace

std::vector<TProviderFinding> CheckOffer(const TClassRepository& classes,
                                         const TProviderPackage& package,
                                         const std::vector<TProviderPackage>& installed,
                                         const std::string& nameSpace) {
  const TServices links = FindKind(classes, package.services, kLink);
  const TServices tests = FindKind(classes, package.services, kTest);
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

}  // namespace NZEPQEL20::setup
