// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/model/ICIMOperations.h"

namespace NZEPQEL20::setup {

/// Whether a job may be ended: there are jobs of others.
using TIsOurs = std::function<bool(const TCIMReference& job)>;

/// Asks every job of every namespace that has not ended and that `isOurs` to be killed, and answers
/// with how many took the request. Goes on past whatever fails. Never throws.
unsigned int KillJobs(ICIMOperations& operations, const TIsOurs& isOurs) noexcept;

/// Calls a method of a job; answers with its result.
using TInvoke = std::function<TCIMValue(const TCIMReference& job, const std::string& method,
                                        TKeyMap& parameters)>;

/// The same for those of `jobs` that have not ended, fetching each first. `invoke` makes the
/// request.
unsigned int KillJobs(ICIMOperations& operations, const std::vector<TCIMReference>& jobs,
                      const TInvoke& invoke) noexcept;

}  // namespace NZEPQEL20::setup
