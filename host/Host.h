// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace host {

/// The whole of `diagsrun`: reads the arguments, sets the platform up, carries the command out and
/// answers with the exit status. Never throws; a failure is one line on standard error.
int RunHost(int argc, char** argv) noexcept;

}  // namespace host
