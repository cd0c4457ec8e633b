// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/setup/TVendorFolder.h"

namespace NZEPQEL20::setup {

/// The system's reason for a failure to write below the installation root, with what would help.
std::string DescribeWriteFault(int error);

/// Throws TQELException: `place`, below the installation root, `what` and why.
[[noreturn]] void RefusePlace(const std::string& place, const std::string& what, int error);

/// Copies a vendor's file to a new one and has it on the disk. The copy has the original's
/// permissions but those of others to write it, and no set-user-ID or set-group-ID.
/// Errors: TQELException naming the file at fault and the system's reason, or that the vendor's is
/// not what was found any more when it is opened, or when it has been copied.
void CopyFile(const TVendorFile& from, const std::string& to);

}  // namespace NZEPQEL20::setup
