// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "host/TSecret.h"

namespace host {

/// Writes `question` on the terminal of this process and reads one line from it that does not show
/// while it is typed. The terminal is as before at the end, also at the end by a signal; a process
/// that was stopped asks again when it goes on.
/// Errors: TUsageError when there is no terminal, it ends before the line does, or the line holds
/// control characters or more than 1024 bytes.
/// Threads: to be called before there is more than one.
TSecret AskSecret(const std::string& question);

}  // namespace host
