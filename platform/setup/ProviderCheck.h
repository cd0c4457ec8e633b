// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/setup/TProviderStore.h"

namespace NZEPQEL20::setup {

/// Everything wrong with a vendor's folder that is, or is to be, installed below `root`; errors
/// first.
std::vector<TProviderFinding> CheckProvider(const std::string& root,
                                            const TProviderPackage& package);

}  // namespace NZEPQEL20::setup
