// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace NZEPQEL20::services {

/// The first line of the DMI attribute in `file`, without the blanks around it; empty when there
/// is no such file or it cannot be read.
std::string ReadBiosVersion(const std::string& file);

}  // namespace NZEPQEL20::services
