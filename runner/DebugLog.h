// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

/// Traces `message` (severity 3) through the core logger; does nothing while there is none.
void DebugLog(const std::string& message);
