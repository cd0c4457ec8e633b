// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/cmpi/abi/cmpi.h"

namespace NZEPQEL20::cmpi {

/// `text` in a code page as UTF-8. The system's own is UTF-8; UTF-16 has the byte order of the
/// machine unless a byte order mark says otherwise, and ends with a zero unit.
/// Errors: TBrokerFault: CMPI_RC_ERR_NOT_IN_CODEPAGE for what the code page does not have,
/// CMPI_RC_ERR_INVALID_PARAMETER for a code page that does not exist and for NULL.
std::string FromCodePage(const char* text, CMPICodepageID page);

/// UTF-8 `text` in a code page, with the zero at its end.
/// Errors: as FromCodePage().
std::vector<char> ToCodePage(const std::string& text, CMPICodepageID page);

}  // namespace NZEPQEL20::cmpi
