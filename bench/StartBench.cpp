// SPDX-License-Identifier: Apache-2.0
// A whole `diagsrun list` against a `diagsrun --version`: what reading the schema, loading the
// providers and asking for the tests adds to the start of a process.
#include <cstdlib>

#include "bench/Programs.h"
#include "bench/Ratio.h"

namespace {

int Run(const char* argument) {
  return bench::RunProgram({DIAGSRUN_PROGRAM, argument});
}

void BM_ListAgainstVersion(benchmark::State& state) {
  setenv("DIAGSRUNNER_ROOT", DIAGSRUN_ROOT, 1);
  constexpr int kNothingFound = 2;
  const int found = Run("list");
  if ((found != 0 && found != kNothingFound) || Run("--version") != 0) {
    state.SkipWithError("diagsrun cannot be run");
  }
  bench::MeasureRatio(
      state, [] { Run("list"); }, [] { Run("--version"); },
      [] { return bench::GetProcessorSeconds(RUSAGE_CHILDREN); });
}
BENCHMARK(BM_ListAgainstVersion)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
