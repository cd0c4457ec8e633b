// SPDX-License-Identifier: Apache-2.0
#include "host/TerminateHandler.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>

#include "host/ExitStatus.h"
#include "host/Text.h"

namespace host {
namespace {

constexpr char kNotKnown[] = "; the test's outcome is not known\n";

std::string GetReason() {
  const std::exception_ptr current = std::current_exception();
  if (!current) return "ended without a reason";
  try {
    std::rethrow_exception(current);
  } catch (const std::exception& e) {
    return SafeText(e.what(), ELines::kOne);
  } catch (...) {
    return "failed for a reason that it did not give";
  }
}

// Only what takes no waiting: the main thread may hold the stream, and the reader may be stuck.
void FlushOutput() {
  pollfd output{STDOUT_FILENO, POLLOUT, 0};
  if (::poll(&output, 1, 0) != 1 || (output.revents & POLLOUT) == 0) return;
  if (::ftrylockfile(stdout) != 0) return;
  static_cast<void>(::fflush_unlocked(stdout));
  ::funlockfile(stdout);
}

// In one piece where the system lets it: the main thread still writes.
void Say(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

[[noreturn]] void EndProcess() noexcept {
  FlushOutput();
  try {
    Say("diagsrun: " + GetReason() + kNotKnown);
  } catch (...) {
    Say("diagsrun: out of memory");
    Say(kNotKnown);
  }
  ::_exit(static_cast<int>(EExitStatus::kNotFinished));
}

}  // namespace

void InstallTerminateHandler() noexcept {
  std::set_terminate(&EndProcess);
}

}  // namespace host
