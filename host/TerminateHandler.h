// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace host {

/// From now on, an exception that leaves a thread ends the process with kNotFinished, after one
/// line on standard error with what it says: no abort, so no core file. The method call of a test
/// that announces its duration is on a thread of the runner's, which lets exceptions go.
void InstallTerminateHandler() noexcept;

}  // namespace host
