// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace NZEPQEL20 {

/// The name of a CIM status (DSP0200), for example "CIM_ERR_NOT_FOUND" for 6; "CIM status N" for a
/// number that the standard does not name.
std::string GetCIMStatusName(unsigned int status);

/// The same where only a name of the standard will do: null for other numbers.
const char* FindCIMStatusName(unsigned int status);

}  // namespace NZEPQEL20
