// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/model/ICIMOperations.h"

namespace NZEPQEL20::setup {

/// Asks every job of every namespace that has not ended to be killed, and answers with how many
/// took the request. Goes on past whatever fails. Never throws.
unsigned int KillJobs(ICIMOperations& operations) noexcept;

}  // namespace NZEPQEL20::setup
