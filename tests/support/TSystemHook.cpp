// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TSystemHook.h"

#include <dirent.h>
#include <dlfcn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace {

TSystemHook::TAction& GetAction(TSystemHook::ECall call) {
  static std::array<TSystemHook::TAction, TSystemHook::kGetrandom + 1> actions;
  return actions[call];
}

/// Whether the call is to fail; errno is set then.
bool IsToFail(TSystemHook::ECall call) {
  const TSystemHook::TAction& action = GetAction(call);
  const int error = action ? action() : 0;
  if (error != 0) errno = error;
  return error != 0;
}

}  // namespace

TSystemHook::TSystemHook(ECall call, TAction action) : m_call(call) {
  GetAction(call) = std::move(action);
}

TSystemHook::~TSystemHook() {
  GetAction(m_call) = nullptr;
}

TSystemHook::TAction TSystemHook::FailAfter(std::size_t good, int error) {
  return [left = good, error]() mutable {
    if (left == 0) return error;
    --left;
    return 0;
  };
}

// In the place of the system's, for the program that links this and for the libraries that it
// loads.
#pragma GCC visibility push(default)
extern "C" {

int fsync(int file) {
  return IsToFail(TSystemHook::kFsync) ? -1 : static_cast<int>(::syscall(SYS_fsync, file));
}

int chmod(const char* path, mode_t mode) noexcept {
  return IsToFail(TSystemHook::kChmod) ? -1 : static_cast<int>(::syscall(SYS_chmod, path, mode));
}

ssize_t getrandom(void* bytes, std::size_t size, unsigned int flags) {
  return IsToFail(TSystemHook::kGetrandom) ? -1 : ::syscall(SYS_getrandom, bytes, size, flags);
}

dirent* readdir(DIR* folder) {
  using TRead = dirent* (*)(DIR*);
  static const auto theRead = reinterpret_cast<TRead>(::dlsym(RTLD_NEXT, "readdir"));
  return IsToFail(TSystemHook::kReaddir) ? nullptr : theRead(folder);
}
}
#pragma GCC visibility pop
