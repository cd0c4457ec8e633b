// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/cmpi/TRegistrations.h"
#include "platform/schema/TClassRepository.h"
#include "platform/setup/TProviderStore.h"

namespace NZEPQEL20::setup {

/// The classes that a vendor's folder has, together with those of the installation.
struct TPackageClasses {
  std::shared_ptr<const TClassRepository> classes;
  std::vector<TMofError> errors;       ///< What is wrong with the MOF of the folder.
  std::vector<TLeftOutClass> leftOut;  ///< See TClassRepository::GetLeftOut().
};

/// Loads the schema of the installation `root`, with the MOF of all vendors, and the MOF of the
/// folder: what is not installed yet in the place that it would have among them.
TPackageClasses LoadPackageClasses(const std::string& root, const TProviderPackage& package);

/// The rule for provider authors that an error in a MOF file is about.
inline constexpr char kMofRule[] = "R17";

/// The errors in the folder's MOF: warnings when they cost no class that is registered, and none
/// that such a class derives from.
std::vector<TProviderFinding> CheckMof(const TPackageClasses& loaded, const std::string& folder,
                                       const TRegistrations& registrations);

/// A warning when the folder's MOF declares instances other than those of a registration: they come
/// from providers here.
std::vector<TProviderFinding> CheckInstances(const TClassRepository& classes,
                                             const TProviderPackage& package);

/// What is wrong with the classes that are registered: not declared, a superclass missing, no key.
std::vector<TProviderFinding> CheckClasses(const TClassRepository& classes,
                                           const TRegistrations& registrations);

/// What the folder declares otherwise than the schema or another vendor: an error when that vendor
/// (one of `installed`) registers the class, else a warning. One finding of each kind.
std::vector<TProviderFinding> CheckLeftOut(const std::vector<TLeftOutClass>& leftOut,
                                           const TProviderPackage& package,
                                           const std::vector<TProviderPackage>& installed);

}  // namespace NZEPQEL20::setup
