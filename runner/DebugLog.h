// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

/// Traces `message` (severity 3) through the core logger; does nothing while there is none.
void DebugLog(const std::string& message);

/// The same for a message in parts, which are joined only when somebody listens: a discovery
/// traces several lines for each of thousands of tests.
void DebugLog(std::initializer_list<std::string_view> parts);
