// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace host {

/// `text`, which tells of a failure of a CIM server, a provider or an installation, with what would
/// help: the options of the command, or what is to be mended. As it is when nothing is known that
/// would, or when it has that already. The rule that it ends with stays at the end.
std::string AddRemedy(const std::string& text);

}  // namespace host
