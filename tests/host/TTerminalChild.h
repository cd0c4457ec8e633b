// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

namespace host {

/// A function that runs in a child of its own, at a terminal whose other side the test holds.
class TTerminalChild {
 public:
  /// Runs `function` in a session of its own; what it returns goes to the test through a pipe.
  /// Errors: std::system_error.
  explicit TTerminalChild(const std::function<std::string()>& function);
  /// Kills the child when it still runs.
  ~TTerminalChild();
  TTerminalChild(const TTerminalChild&) = delete;
  TTerminalChild& operator=(const TTerminalChild&) = delete;

  /// Types on the terminal; "\x03" is Ctrl-C, "\x04" ends the input.
  void Type(const std::string& text) const;
  /// Waits until the screen shows `text` behind what an earlier call has found; false when the
  /// terminal ends or 30 seconds are over.
  bool WaitForScreen(const std::string& text);
  /// Whether the terminal shows now what is typed.
  bool HasEcho() const;
  void HangUp();

  /// Waits for the end; answers with the exit status, or 128 and the signal's number.
  int Wait();
  /// What the function returned, and everything that the screen has shown. For after Wait().
  const std::string& GetResult() const { return m_result; }
  const std::string& GetScreen() const { return m_screen; }
  pid_t GetPid() const { return m_pid; }

 private:
  bool ReadScreen(int milliseconds);

  pid_t m_pid = -1;
  int m_terminal = -1;
  int m_results = -1;
  std::string m_screen;
  std::size_t m_seen = 0;
  std::string m_result;
};

}  // namespace host
