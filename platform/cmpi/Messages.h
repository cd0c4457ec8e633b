// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdarg>
#include <string>

#include "platform/cmpi/abi/cmpi.h"

namespace NZEPQEL20::cmpi {

/// `text` with `$0` to `$9` replaced by `pairs` pairs of a type and a value from `arguments`.
/// Errors: none; CMPI_RC_ERR_TYPE_MISMATCH in `code`, and the text as it is, for a type that no
/// message takes; CMPI_RC_ERR_INVALID_PARAMETER for more than ten pairs.
std::string FormatMessage(const std::string& text, CMPICount pairs, std::va_list arguments,
                          CMPIrc& code);

}  // namespace NZEPQEL20::cmpi
