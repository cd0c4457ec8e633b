// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <string>

namespace NZEPQEL20::cmpi {

/// The name of a user; the number in decimal digits where it has none that can be found.
std::string FindUserName(uid_t user);

/// The name of the user whose rights the process has. Looked up anew only when that is another one.
/// Threads: safe from several.
std::string GetEffectiveUserName();

}  // namespace NZEPQEL20::cmpi
