// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "platform/model/ICIMOperations.h"

namespace NZEPQEL20::setup {

/// Asks every job of every namespace that has not ended to be killed, and answers with how many
/// took the request. Goes on past whatever fails. Never throws.
unsigned int KillJobs(ICIMOperations& operations) noexcept;

/// The same for those of `jobs` that have not ended, fetching each first: on a server there are
/// jobs of others.
unsigned int KillJobs(ICIMOperations& operations, const std::vector<TCIMReference>& jobs) noexcept;

}  // namespace NZEPQEL20::setup
