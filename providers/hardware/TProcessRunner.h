// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "providers/hardware/TStopSignal.h"

namespace hardware {

/// Ways in which a program's run ends.
enum class EProcessEnd {
  kExited,      ///< By itself.
  kSignalled,   ///< By a signal that this runner did not send.
  kNotStarted,  ///< It never ran.
  kLost,        ///< It ended, but nobody can tell how.
  kDeadline,    ///< Ended here for taking too long.
  kTerminated,  ///< Ended here on request, with time to put things in order.
  kKilled       ///< Ended here on request, at once.
};

/// What is known about a program's run.
struct TProcessOutcome {
  EProcessEnd end = EProcessEnd::kNotStarted;
  int exitStatus = 0;                     ///< Only for kExited.
  bool isIgnored = false;                 ///< Lost because the process ignores SIGCHLD.
  int signal = 0;                         ///< What ended it; 0: it ended by itself.
  std::string startError;                 ///< Why it never ran; only for kNotStarted.
  std::string output;                     ///< Standard output; see TProcessRunner.
  std::string errors;                     ///< Standard error; see TProcessRunner.
  std::vector<std::string> arguments;     ///< The command, program first.
  std::chrono::milliseconds duration{0};  ///< From start to end.
};

/// Runs programs to their end, whatever they do.
///
/// Of each output the first 16 KiB and at least the last 240 KiB are kept. When a run is ended
/// here, the whole process group gets SIGTERM, the time of grace, and then SIGKILL; what a program
/// leaves behind in its group when it ends by itself is killed as well.
/// Threads: any; each call keeps its program to itself.
class TProcessRunner {
 public:
  /// Receives what standard output holds so far and the time since the start, some times a second.
  using TWatcher =
      std::function<void(const std::string& output, std::chrono::milliseconds elapsed)>;

  explicit TProcessRunner(std::chrono::milliseconds grace = std::chrono::seconds(2))
      : m_grace(grace) {}

  /// Runs `arguments` (program first, absolute) for at most `deadline` plus the time of grace.
  /// Never throws on account of the program: the outcome tells.
  TProcessOutcome Run(const std::vector<std::string>& arguments, std::chrono::milliseconds deadline,
                      const TStopSignal& stop, const TWatcher& watcher = nullptr) const;

 private:
  std::chrono::milliseconds m_grace;
};

}  // namespace hardware
