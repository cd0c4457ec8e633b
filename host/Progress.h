// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/TCommandLine.h"
#include "host/TOutputRedirect.h"

namespace host {

/// Where the runner's own output belongs: nothing but the document goes to standard output in
/// JSON mode, and without a terminal progress is only noise.
EOutputTarget ChooseProgressTarget(const TOptions& options, bool isOutTerminal, bool isErrTerminal);

}  // namespace host
