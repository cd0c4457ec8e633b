// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>

#include "host/CrashHandler.h"

namespace host {

/// From now on, an exception that leaves a thread ends the process with kNotFinished, after one
/// line on standard error with what it says: no abort, so no core file. The method call of a test
/// that announces its duration is on a thread of the runner's, which lets exceptions go. The line
/// names the provider's function that `getOwnCall` tells of: nothing catches what leaves a library
/// while it is being loaded, for example.
void InstallTerminateHandler(TGetOwnCall getOwnCall) noexcept;

/// While it lives, an exit() of this process, which only a provider's library would call, ends it
/// with kNotFinished after one line on standard error: not with a status that passes for a test's.
class TExitGuard {
 public:
  TExitGuard() noexcept;
  ~TExitGuard();
  TExitGuard(const TExitGuard&) = delete;
  TExitGuard& operator=(const TExitGuard&) = delete;
};

/// What standard output still has to say, for the reason given.
using TLastWords = std::function<std::string(const std::string& reason)>;

/// While it lives, the end that InstallTerminateHandler() speaks of is preceded by last words; what
/// they throw is let go.
/// Threads: one such object at a time. The words are called on another thread, and once they are,
/// the end of this object is not reached.
class TLastWordsHold {
 public:
  explicit TLastWordsHold(TLastWords words);
  ~TLastWordsHold();
  TLastWordsHold(const TLastWordsHold&) = delete;
  TLastWordsHold& operator=(const TLastWordsHold&) = delete;

 private:
  TLastWords m_words;
};

}  // namespace host
