// SPDX-License-Identifier: Apache-2.0
// A whole `diagsrun list` against a `diagsrun --version`: what reading the schema, loading the
// providers and asking for the tests adds to the start of a process.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "bench/Ratio.h"

namespace {

// Runs the command with its output thrown away; its exit status, or -1.
int Run(std::vector<std::string> words) {
  words.insert(words.begin(), DIAGSRUN_PROGRAM);
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  const int failure =
      posix_spawn(&child, DIAGSRUN_PROGRAM, &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  if (failure != 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

void BM_ListAgainstVersion(benchmark::State& state) {
  setenv("DIAGSRUNNER_ROOT", DIAGSRUN_ROOT, 1);
  constexpr int kNothingFound = 2;
  const int found = Run({"list"});
  if ((found != 0 && found != kNothingFound) || Run({"--version"}) != 0) {
    state.SkipWithError("diagsrun cannot be run");
  }
  bench::MeasureRatio(
      state, [] { Run({"list"}); }, [] { Run({"--version"}); }, RUSAGE_CHILDREN);
}
BENCHMARK(BM_ListAgainstVersion)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
