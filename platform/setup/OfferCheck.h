// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/schema/TClassRepository.h"
#include "platform/setup/TProviderStore.h"

namespace NZEPQEL20::setup {

/// Why discovery in `nameSpace` would not find the tests of a package: warnings, since it may have
/// none, or be meant for another namespace. `classes` are those of the package and of `installed`.
std::vector<TProviderFinding> CheckOffer(const TClassRepository& classes,
                                         const TProviderPackage& package,
                                         const std::vector<TProviderPackage>& installed,
                                         const std::string& nameSpace);

}  // namespace NZEPQEL20::setup
