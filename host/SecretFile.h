// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

#include "host/TSecret.h"

namespace host {

/// Largest file that ReadSecretFile() takes.
constexpr std::size_t kLargestSecretFile = std::size_t{64} << 10U;

/// Reads a file that is nobody else's business. What is looked at is what has been opened, so
/// nothing can be put in its place in between; of a symbolic link it is the file that it leads to.
/// Errors: TUsageError naming the file and what mends it, when it is no regular file, belongs to
/// somebody other than the effective user or root, gives its group or others any right, is too
/// large, or cannot be read. A file that would block is refused like any other.
TSecret ReadSecretFile(const std::string& name);

}  // namespace host
