// SPDX-License-Identifier: Apache-2.0
#include "host/TBlockedSignals.h"

#include <pthread.h>
#include <unistd.h>

#include <initializer_list>

namespace host {

TBlockedSignals::TBlockedSignals() {
  ::sigemptyset(&m_set);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    ::sigaction(signal, nullptr, &action);
    if (action.sa_handler != SIG_IGN) ::sigaddset(&m_set, signal);
  }
  ::pthread_sigmask(SIG_BLOCK, &m_set, &m_before);
}

TBlockedSignals::~TBlockedSignals() {
  ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

void EndBySignal(int signal) noexcept {
  static_cast<void>(::signal(signal, SIG_DFL));
  sigset_t set;
  ::sigemptyset(&set);
  ::sigaddset(&set, signal);
  ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
  static_cast<void>(::raise(signal));
  // Only where a debugger took the signal away.
  ::_exit(128 + signal);
}

}  // namespace host
