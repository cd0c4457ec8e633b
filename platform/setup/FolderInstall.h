// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/setup/TVendorFolder.h"

namespace NZEPQEL20::setup {

/// Puts a copy of `files` (all below `folder`) into `<providers>/<name>`, with the places that they
/// have below `folder`; `states` says what each of them has to be still. Everything is there at
/// once or not at all, and what the place held before goes last. Errors: TQELException naming the
/// file and the reason: the place is taken and `replace` is not set, a link out of the folder, a
/// file that has changed, no room, no right to write.
void InstallFolder(const std::string& folder, const std::vector<std::string>& files,
                   const TFileStates& states, const std::string& providers, const std::string& name,
                   bool replace);

/// Removes `<providers>/<name>`; it is out of sight at once.
/// Errors: TQELException naming the folder and the reason.
void RemoveFolder(const std::string& providers, const std::string& name);

/// Whether `path` is that of something in `folder`; both plain, without "." and "..".
bool IsBelow(const std::string& path, const std::string& folder);

/// Why `name` cannot be a vendor's folder; empty when it can.
std::string FindNameFault(const std::string& name);

}  // namespace NZEPQEL20::setup
