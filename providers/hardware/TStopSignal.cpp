// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TStopSignal.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace hardware {
namespace {

using TClock = std::chrono::steady_clock;

}  // namespace

TStopSignal::TStopSignal() : m_event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!m_event.IsOpen()) throw std::system_error(errno, std::generic_category(), "eventfd");
}

void TStopSignal::Request(EStop stop) noexcept {
  EStop now = m_stop.load();
  while (now < stop && !m_stop.compare_exchange_weak(now, stop)) {
  }
  if (stop != EStop::kNone) ::eventfd_write(m_event.Get(), 1);
}

bool TStopSignal::WaitFor(std::chrono::milliseconds time) const {
  const TClock::time_point end = TClock::now() + time;
  while (Get() == EStop::kNone) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - TClock::now());
    if (left.count() <= 0) return false;
    struct pollfd event {};
    event.fd = m_event.Get();
    event.events = POLLIN;
    ::poll(&event, 1, static_cast<int>(std::min<long long>(left.count(), 60000)));
  }
  return true;
}

}  // namespace hardware
