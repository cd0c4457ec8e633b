// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/cmpi/TRegistrations.h"
#include "platform/setup/TProviderStore.h"

namespace NZEPQEL20::setup {

/// What the registrations of a package say.
TRegistrations ReadRegistrations(const TProviderPackage& package);

/// Everything wrong with a vendor's folder that is, or is to be, installed below `root` beside
/// `installed`, for discovery in `nameSpace`; errors first, each once.
std::vector<TProviderFinding> CheckProvider(const std::string& root,
                                            const TProviderPackage& package,
                                            const std::vector<TProviderPackage>& installed,
                                            const std::string& nameSpace);

}  // namespace NZEPQEL20::setup
