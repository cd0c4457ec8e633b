// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <cstdint>
#include <ctime>
#include <iostream>
#include <limits>

#include "runner/DiagsRunner.h"

namespace {

// Stands for "no percentage yet".
constexpr std::int32_t kNone = -1;

void WriteBackspaces(int count) {
  for (int i = 0; i < count; ++i) std::cout << '\b';
  std::cout << std::flush;
}

void WriteFigure(std::int32_t figure) {
  std::cout << figure << '%' << std::flush;
}

// Share of `totalSeconds` that has passed, in single precision; below 0 when it cannot be told.
float GetPercent(double elapsedSeconds, std::int32_t totalSeconds) {
  if (totalSeconds == 0) return static_cast<float>(kNone);
  return 100.0F * (static_cast<float>(elapsedSeconds) / static_cast<float>(totalSeconds));
}

// Towards zero. A clock that was set back counts as no percentage: the count-up from far below
// would keep the host for hours.
std::int32_t Truncate(float percent) {
  constexpr float kLimit = 2147483648.0F;
  if (percent >= kLimit) return std::numeric_limits<std::int32_t>::max();
  return percent > static_cast<float>(kNone) ? static_cast<std::int32_t>(percent) : kNone;
}

// The figures of one run, each written over the one before.
class TEstimate {
 public:
  void Show(float percent) {
    const std::int32_t figure = Truncate(percent);
    if (figure >= 1 && figure > m_last) {
      if (figure <= 98) {
        WriteFigure(figure);
        WriteBackspaces(percent < 10.0F ? 2 : percent < 100.0F ? 3 : 4);
      } else if (!m_shown99) {
        WriteBackspaces(4);
        std::cout << "99%" << std::flush;
        m_shown99 = true;
      }
    }
    m_last = figure;
  }

  // The call was faster than announced: climb the rest at one step a second.
  void CountUp() {
    if (m_last == kNone || m_last > 95) return;
    const std::int32_t steps = (100 - m_last) / 10;
    for (std::int32_t i = 0; i < steps; ++i) {
      m_last += 10;
      WriteFigure(m_last);
      WriteBackspaces(m_last <= 9 ? 2 : m_last <= 99 ? 3 : 4);
      sleep(1);
    }
  }

 private:
  std::int32_t m_last = kNone;
  bool m_shown99 = false;
};

}  // namespace

void* DiagsRunner::ExecuteInThread(void* /*arg*/) {
  // What the call throws leaves this thread and ends the process: nobody could tell the waiting
  // thread otherwise.
  DiagsRunner& self = *fgDiagInstance;
  self.m_runInstance->InvokeMethod("RunDiagnostic", self.m_runArgs, {});
  self.m_threadDone.store(true, std::memory_order_release);
  return nullptr;
}

void DiagsRunner::printStatus(unsigned int minutes) {
  const auto totalSeconds = static_cast<std::int32_t>(minutes * 60U);
  const std::time_t start = std::time(nullptr);
  TEstimate estimate;
  while (!m_threadDone.load(std::memory_order_acquire)) {
    estimate.Show(GetPercent(std::difftime(std::time(nullptr), start), totalSeconds));
  }
  estimate.CountUp();
  WriteBackspaces(4);
  std::cout << "    " << std::flush;
}
