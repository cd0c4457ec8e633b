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
  std::vector<TProviderFinding> findings;  ///< What is wrong with the MOF of the folder.
  std::vector<TLeftOutClass> leftOut;      ///< See TClassRepository::GetLeftOut().
};

/// Loads the schema of the installation `root`, with the MOF of all vendors, and the MOF of the
/// folder: what is not installed yet in the place that it would have among them.
TPackageClasses LoadPackageClasses(const std::string& root, const TProviderPackage& package);

/// The rule for provider authors that an error in a MOF file is about.
inline constexpr char kMofRule[] = "R17";

/// What is wrong with the classes that are registered: not declared, a superclass missing, no key.
std::vector<TProviderFinding> CheckClasses(const TClassRepository& classes,
                                           const TRegistrations& registrations);

/// What the folder declares otherwise than the schema or another vendor: an error when that vendor
/// (one of `installed`) registers the class, else a warning. One finding of each kind.
std::vector<TProviderFinding> CheckLeftOut(const std::vector<TLeftOutClass>& leftOut,
                                           const TProviderPackage& package,
                                           const std::vector<TProviderPackage>& installed);

}  // namespace NZEPQEL20::setup
