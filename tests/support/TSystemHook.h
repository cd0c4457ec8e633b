// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>

/// While it lives, `action` is done in front of each call of one function of the system, in the
/// programs that link this.
/// Threads: one hook for a function at a time in a process; the calls may come from any.
class TSystemHook {
 public:
  enum ECall { kFsync, kChmod, kReaddir, kGetrandom };
  /// Answers with the error that the call is to fail with, as errno; 0 lets it go on.
  using TAction = std::function<int()>;

  TSystemHook(ECall call, TAction action);
  ~TSystemHook();
  TSystemHook(const TSystemHook&) = delete;
  TSystemHook& operator=(const TSystemHook&) = delete;

  /// An action that fails the call which comes behind `good` others, and those after it.
  static TAction FailAfter(std::size_t good, int error);

 private:
  const ECall m_call;
};
