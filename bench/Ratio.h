// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <vector>

namespace bench {

/// Runs `measured` and `reference` in turn for as long as `state` wants and reports the median
/// of measured time over reference time, pair by pair, as the counter "ratio": a machine that
/// speeds up or slows down does so for both. Time is the process's own on a processor, so what
/// else the machine does counts for neither.
template <typename TMeasured, typename TReference>
void MeasureRatio(benchmark::State& state, const TMeasured& measured, const TReference& reference) {
  const auto getSeconds = [] {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
  };
  const auto time = [&getSeconds](const auto& call) {
    const double start = getSeconds();
    call();
    return getSeconds() - start;
  };
  std::vector<double> ratios;
  double measuredSeconds = 0;
  for ([[maybe_unused]] auto round : state) {
    const double seconds = time(measured);
    ratios.push_back(seconds / time(reference));
    measuredSeconds += seconds;
    state.SetIterationTime(seconds);
  }
  if (ratios.empty()) return;
  std::nth_element(ratios.begin(), ratios.begin() + static_cast<std::ptrdiff_t>(ratios.size() / 2),
                   ratios.end());
  state.counters["ratio"] = ratios[ratios.size() / 2];
  state.counters["seconds"] = measuredSeconds / static_cast<double>(ratios.size());
}

}  // namespace bench
