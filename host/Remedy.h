// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace host {

/// `text`, which tells of a failure of a CIM server or of an installation, with the options of the
/// command behind it that would help; as it is when there are none, or when it names them already.
std::string AddRemedy(const std::string& text);

}  // namespace host
