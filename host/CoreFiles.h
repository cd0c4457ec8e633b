// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace host {

/// Keeps this process's memory out of core files, and out of reach of other processes of the same
/// user, as far as the system lets it. For a process that is about to learn a password.
void PreventCoreFiles() noexcept;

}  // namespace host
