// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/ExitStatus.h"
#include "host/IDiagnostics.h"
#include "host/IReport.h"
#include "host/TCommandLine.h"
#include "host/TSurroundings.h"

namespace host {

/// Carries out the command of `options`, writes what it found to standard output and everything
/// else to standard error.
/// Errors: TUsageError before any test has run; what `diagnostics` throws.
EExitStatus RunCommand(const TOptions& options, IDiagnostics& diagnostics,
                       const TSurroundings& surroundings);

}  // namespace host
