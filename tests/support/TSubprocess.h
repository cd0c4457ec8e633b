// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace programs {

/// How a program is to be started.
struct TProgram {
  std::vector<std::string> arguments;              ///< The first one is the program's path.
  std::map<std::string, std::string> environment;  ///< Added to the test's own.
  bool hasTerminal = false;     ///< Standard output is a terminal instead of a pipe.
  bool isOutputClosed = false;  ///< Nobody reads standard output.
  bool hasInput = false;        ///< Standard input is a pipe, open until CloseInput().
};

/// A program under test. Its outputs are kept apart; at the end it is killed if it still runs.
class TSubprocess {
 public:
  static constexpr std::chrono::seconds kPatience{30};

  /// Errors: std::system_error when it cannot be started.
  explicit TSubprocess(const TProgram& program);
  ~TSubprocess();
  TSubprocess(const TSubprocess&) = delete;
  TSubprocess& operator=(const TSubprocess&) = delete;

  void Signal(int signal) const;
  /// The program reads the end of its input from now on.
  void CloseInput();
  /// Reads until standard output contains `text`; false when the program or the patience ends
  /// first.
  bool WaitForOutput(const std::string& text);
  /// Waits for the end. Answers with the exit status, 128 and the signal's number for a program
  /// that died of one, or -1 when patience ended; then the program was killed.
  int Wait();

  pid_t GetPid() const { return m_pid; }
  const std::string& GetOut() const { return m_out; }
  const std::string& GetErr() const { return m_err; }

 private:
  void StartChild(const TProgram& program, int inEnd, int outEnd, int errEnd);
  bool ReadSome(std::chrono::steady_clock::time_point deadline);

  pid_t m_pid = -1;
  int m_inFd = -1;
  int m_outFd = -1;
  int m_errFd = -1;
  std::string m_out;
  std::string m_err;
};

/// Runs a program to its end.
struct TFinished {
  int status;
  std::string out;
  std::string err;
};
TFinished RunToEnd(const TProgram& program);

/// The processes that `pid` has started, and those that they have started.
std::vector<pid_t> FindDescendants(pid_t pid);

/// Whether the process still runs; one that is only waiting to be reaped does not.
bool IsRunning(pid_t pid);

}  // namespace programs
