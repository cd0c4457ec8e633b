// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

namespace NZEPQEL20::setup {

/// While this lives, `action` is done before each file or folder is put on the disk: a file is
/// copied then, and not in its place yet.
/// Threads: one at a time in a process.
class TSyncHook {
 public:
  explicit TSyncHook(std::function<void()> action);
  ~TSyncHook();
  TSyncHook(const TSyncHook&) = delete;
  TSyncHook& operator=(const TSyncHook&) = delete;
};

}  // namespace NZEPQEL20::setup
