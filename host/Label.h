// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace host {

/// Why `label` cannot be a test's label; empty when it can. A label reaches a shell, so quotes,
/// `\`, `$` and control characters are refused.
std::string FindLabelFault(const std::string& label);

/// The label of a test for which none was given: its service's name, or nothing when that name
/// cannot be a label.
std::string MakeDefaultLabel(const std::string& serviceName);

}  // namespace host
