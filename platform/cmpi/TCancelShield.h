// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <pthread.h>

namespace NZEPQEL20::cmpi {

/// Keeps the calling thread from being cancelled for as long as it lives: cancelling unwinds the
/// stack, which may neither be stopped by a border nor leave half done what is behind it. Whoever
/// is cancelled meanwhile ends at the first cancellation point of the provider's own code.
/// Threads: made and destroyed on one. Within it there may be others.
class TCancelShield {
 public:
  TCancelShield() noexcept { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_before); }
  /// What the thread was set to before holds again, whatever it was set to within.
  ~TCancelShield() { pthread_setcancelstate(m_before, nullptr); }
  TCancelShield(const TCancelShield&) = delete;
  TCancelShield& operator=(const TCancelShield&) = delete;

 private:
  int m_before = PTHREAD_CANCEL_ENABLE;
};

}  // namespace NZEPQEL20::cmpi
