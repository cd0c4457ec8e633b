// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <iosfwd>

#include "host/ExitStatus.h"
#include "host/IDiagnostics.h"
#include "host/IReport.h"
#include "host/TCommandLine.h"

namespace host {

/// What the commands use of the process that they run in.
struct TSurroundings {
  std::ostream& out;
  std::ostream& err;
  std::function<bool()> isInterrupted;
  std::function<bool()> isOutputGood;  ///< Whether all that was written to `out` arrived.
  std::function<std::chrono::system_clock::time_point()> wallClock;
  std::function<std::chrono::steady_clock::time_point()> steadyClock;
  std::function<void()> beginTests = [] {};  ///< Called once, before the first test is started.
};

/// Carries out the command of `options`, writes what it found to standard output and everything
/// else to standard error.
/// Errors: TUsageError before any test has run; what `diagnostics` throws.
EExitStatus RunCommand(const TOptions& options, IDiagnostics& diagnostics,
                       const TSurroundings& surroundings);

}  // namespace host
