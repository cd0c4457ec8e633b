// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/IProviderStore.h"
#include "host/TCommandLine.h"
#include "host/TSurroundings.h"

namespace host {

/// Carries out the command about providers in `options`.
/// Errors: TUsageError for a name or path that stands for nothing, before anything is checked or
/// changed; what `store` throws.
EExitStatus RunProviderCommand(const TOptions& options, IProviderStore& store,
                               const TSurroundings& surroundings);

}  // namespace host
