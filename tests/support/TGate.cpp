// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TGate.h"

#include <chrono>

namespace scripted {

namespace {
constexpr std::chrono::seconds kPatience{20};
}

void TGate::Pass() {
  std::unique_lock<std::mutex> lock(m_mutex);
  m_isReached = true;
  m_changed.notify_all();
  m_changed.wait_for(lock, kPatience, [this] { return m_isOpen; });
}

bool TGate::WaitUntilReached() {
  std::unique_lock<std::mutex> lock(m_mutex);
  return m_changed.wait_for(lock, kPatience, [this] { return m_isReached; });
}

void TGate::Open() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_isOpen = true;
  m_changed.notify_all();
}

}  // namespace scripted
