// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/setup/TProviderStore.h"

namespace NZEPQEL20::setup {

/// The package of a vendor's folder, with everything in it.
TProviderPackage ReadFolder(const std::string& folder);

/// The package of one registration file (its path absolute): what it names, the MOF files beside
/// it, and what these include.
TProviderPackage ReadFile(const std::string& file);

/// Everything that an installed package needs, each file once.
/// Errors: TQELException with the first of FindFileFaults().
std::vector<std::string> CollectFiles(const TProviderPackage& package);

/// What keeps the package from being copied: files lead out of the folder, are not there, are no
/// regular files or too large; a whole folder has more in it than is looked at.
std::vector<TProviderFinding> FindFileFaults(const TProviderPackage& package);

/// A warning when there are libraries, MOF or registrations that not everybody can read.
std::vector<TProviderFinding> FindPrivateFiles(const TProviderPackage& package);

}  // namespace NZEPQEL20::setup
