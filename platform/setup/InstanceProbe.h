// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "platform/cmpi/TProviders.h"
#include "platform/setup/TProviderStore.h"

namespace NZEPQEL20::setup {

/// The rule for provider authors about enumerations.
inline constexpr char kEnumerationRule[] = "R24";

/// "enumerating class C in root/x by provider P": what ProbeInstances() is about to do.
std::string DescribeEnumeration(const TRegistration& entry, const std::string& nameSpace);

/// Has the provider enumerate the instances of its class once, or their names where it has those
/// only. A failure that it answers with is a finding; one that has no such function has none.
std::optional<TProviderFinding> ProbeInstances(const cmpi::TProviders& providers,
                                               const cmpi::TProviders::TService& service,
                                               const std::string& nameSpace);

}  // namespace NZEPQEL20::setup
