// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/contract/ILogger.h"

namespace NZEPQEL20 {

/// Hands a line to the process's logger; does nothing while there is none.
/// Threads: safe from several.
void LogToCore(ILogger::EQELLogSeverity severity, const std::string& text);

}  // namespace NZEPQEL20
