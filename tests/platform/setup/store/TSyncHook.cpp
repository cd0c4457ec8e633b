// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/setup/store/TSyncHook.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <utility>

namespace NZEPQEL20::setup {
namespace {

std::function<void()>& GetAction() {
  static std::function<void()> action;
  return action;
}

}  // namespace

TSyncHook::TSyncHook(std::function<void()> action) {
  GetAction() = std::move(action);
}

TSyncHook::~TSyncHook() {
  GetAction() = nullptr;
}

}  // namespace NZEPQEL20::setup

// In the place of the system's, for this program.
extern "C" int fsync(int file) {
  const auto& action = NZEPQEL20::setup::GetAction();
  if (action) action();
  return static_cast<int>(::syscall(SYS_fsync, file));
}
