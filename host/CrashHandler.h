// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/setup/ProviderCalls.h"

namespace host {

/// Tells the call to a provider that the thread is in; may be called in a handler of signals.
using TGetOwnCall = NZEPQEL20::TProviderCallNames (*)() noexcept;

/// From now on, a crash of this process (SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT) is one line on
/// standard error before the process ends by that signal: which provider's function was at work, or
/// that none was. A signal that somebody handles already is left to them, and children that are
/// forked say nothing. The calling thread gets a stack for the case that its own is used up.
void InstallCrashHandler(TGetOwnCall getOwnCall) noexcept;

}  // namespace host
