// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TChildSignalWatch.h"

#include <mutex>
#include <set>
#include <string>

#include "platform/model/CoreLog.h"

namespace NZEPQEL20::cmpi {

namespace {

bool IsIgnored(const struct sigaction& action) {
  const auto flags = static_cast<unsigned int>(action.sa_flags);
  if ((flags & unsigned{SA_NOCLDWAIT}) != 0) return true;
  return (flags & unsigned{SA_SIGINFO}) == 0 && action.sa_handler == SIG_IGN;
}

/// The libraries that were told of: they stay loaded, and so does what they do.
struct TTold {
  std::mutex mutex;
  std::set<std::string> libraries;
};

void Tell(const std::string& library) {
  // Never destroyed: provider threads may outlive the end of main().
  static auto* const kTold = new TTold;
  {
    const std::lock_guard<std::mutex> lock(kTold->mutex);
    if (!kTold->libraries.insert(library).second) return;
  }
  LogToCore(
      ILogger::kWarning,
      "provider library " + library +
          ": SIGCHLD was ignored after a call, so that nobody would learn how a child process "
          "ends; what was there before is back; see rule R25");
}

}  // namespace

TChildSignalWatch::TChildSignalWatch(const char* library) noexcept : m_library(library) {
  ::sigaction(SIGCHLD, nullptr, &m_before);
}

TChildSignalWatch::~TChildSignalWatch() {
  struct sigaction now = {};
  ::sigaction(SIGCHLD, nullptr, &now);
  if (!IsIgnored(now) || IsIgnored(m_before)) return;
  ::sigaction(SIGCHLD, &m_before, nullptr);
  try {
    Tell(m_library == nullptr ? "(unknown)" : m_library);
  } catch (...) {
    // Out of memory: the signal is as it was, and that is what matters.
    return;
  }
}

}  // namespace NZEPQEL20::cmpi
