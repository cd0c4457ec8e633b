// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <cstdint>
#include <ctime>
#include <iostream>

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

// Share of `totalSeconds` that has passed, in single precision.
float GetPercent(double elapsedSeconds, std::int32_t totalSeconds) {
  return 100.0F * (static_cast<float>(elapsedSeconds) / static_cast<float>(totalSeconds));
}

// Towards zero; what no whole number can hold (a total of 0) counts as no percentage.
std::int32_t Truncate(float percent) {
  constexpr float kLimit = 2147483648.0F;
  if (!(percent > -kLimit && percent < kLimit)) return kNone;
  return static_cast<std::int32_t>(percent);
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
    const std::int64_t steps = (std::int64_t{100} - m_last) / 10;
    for (std::int64_t i = 0; i < steps; ++i) {
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
