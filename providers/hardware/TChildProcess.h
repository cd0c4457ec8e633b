// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "providers/hardware/TFileDescriptor.h"

namespace hardware {

/// A program that runs in a process group of its own, with nothing on its standard input, a plain
/// "C" language environment, and a pipe on each of its two outputs.
///
/// The group does not outlive this object, and the program does not outlive the thread that
/// started it.
/// Threads: one.
class TChildProcess {
 public:
  /// How a program ended. When its status went elsewhere, both are 0 and isLost is set: somebody
  /// else in this process took it, or with isIgnored nobody could.
  struct TExit {
    int status = 0;  ///< What it returned; only when signal is 0.
    int signal = 0;  ///< What ended it; 0: it ended by itself.
    bool isLost = false;
    bool isIgnored = false;  ///< The process ignores SIGCHLD, or did when the program started.
  };

  /// Starts the program `arguments[0]`, an absolute path.
  ///
  /// Errors: std::system_error with the system's reason when it cannot be started, also when the
  ///         new process cannot become the program.
  explicit TChildProcess(const std::vector<std::string>& arguments);

  /// Kills what is left of the group and reaps the program.
  ~TChildProcess();
  TChildProcess(const TChildProcess&) = delete;
  TChildProcess& operator=(const TChildProcess&) = delete;

  /// Read end of standard output, not blocking.
  TFileDescriptor& GetOutput() { return m_output; }
  /// Read end of standard error, not blocking.
  TFileDescriptor& GetErrors() { return m_errors; }

  /// Sends `signal` to every process of the group.
  void SignalGroup(int signal) const noexcept;

  /// Returns how the program ended once it has; kills what else is in its group and reaps it
  /// then. Does not wait.
  std::optional<TExit> TryReap() noexcept;

 private:
  pid_t m_pid = -1;
  bool m_isIgnored = false;
  TFileDescriptor m_output;
  TFileDescriptor m_errors;
};

}  // namespace hardware
