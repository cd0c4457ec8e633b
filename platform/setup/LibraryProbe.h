// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "platform/cmpi/TRegistrations.h"
#include "platform/schema/TClassRepository.h"
#include "platform/setup/TProviderStore.h"

namespace NZEPQEL20::setup {

/// What a provider may need to find its hardware; rule R19 says so.
inline constexpr std::chrono::seconds kProbeLimit(10);

/// What is wrong with the libraries of a vendor's folder, as loading them, making their functions,
/// enumerating each instance class once and cleaning up show. All of it happens in child processes;
/// each step has `limit`. What is registered for any namespace is enumerated in `nameSpace`.
std::vector<TProviderFinding> ProbeLibraries(const std::shared_ptr<const TClassRepository>& classes,
                                             const TRegistrations& registrations,
                                             const std::string& nameSpace,
                                             std::chrono::milliseconds limit = kProbeLimit);

/// The libraries among `libraries` that are loaded because of `registrations`: those that are
/// named, and those that one of them needs.
std::vector<std::string> FindUsed(const std::vector<std::string>& libraries,
                                  const TRegistrations& registrations);

}  // namespace NZEPQEL20::setup
