// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <vector>

namespace bench {

inline double GetSeconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

/// Processor seconds used so far by this process (RUSAGE_SELF) or by its finished children
/// (RUSAGE_CHILDREN). What else the machine does counts for neither.
inline double GetProcessorSeconds(int who) {
  rusage usage{};
  getrusage(who, &usage);
  return GetSeconds(usage.ru_utime) + GetSeconds(usage.ru_stime);
}

/// The same without what the system did for them.
inline double GetUserSeconds(int who) {
  rusage usage{};
  getrusage(who, &usage);
  return GetSeconds(usage.ru_utime);
}

/// Runs `measured` and `reference` in turn for as long as `state` wants and reports the median
/// of measured time over reference time, pair by pair, as the counter "ratio": a machine that
/// speeds up or slows down does so for both. `clock` gives the seconds that count.
template <typename TMeasured, typename TReference>
void MeasureRatio(
    benchmark::State& state, const TMeasured& measured, const TReference& reference,
    double (*clock)() = [] { return GetProcessorSeconds(RUSAGE_SELF); }) {
  const auto time = [clock](const auto& call) {
    const double start = clock();
    call();
    return std::max(clock() - start, 1e-6);
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
  const auto middle = ratios.begin() + static_cast<std::ptrdiff_t>(ratios.size() / 2);
  std::nth_element(ratios.begin(), middle, ratios.end());
  state.counters["ratio"] = *middle;
  state.counters["seconds"] = measuredSeconds / static_cast<double>(ratios.size());
}

}  // namespace bench
