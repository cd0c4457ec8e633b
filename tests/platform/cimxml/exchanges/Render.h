// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/model/ICIMOperations.h"

namespace diagstest {

/// Asks `operations` for what the lines say, and tells what came of it as text: one line per thing,
/// or "error" with the platform's status, the CIM status and the reason. `server` in texts becomes
/// "@SERVER".
///
/// The first line is the operation with its arguments; the lines that follow are "Name type value",
/// the properties of an instance or the arguments of a method.
std::string Perform(NZEPQEL20::ICIMOperations& operations, const std::string& server,
                    const std::vector<std::string>& lines);

/// "type value"; "type[]" for an array, NULL for no value.
std::string RenderValue(const NZEPQEL20::TCIMValue& value);

}  // namespace diagstest
