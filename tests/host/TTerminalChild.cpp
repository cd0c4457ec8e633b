// SPDX-License-Identifier: Apache-2.0
#include "tests/host/TTerminalChild.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <system_error>

namespace host {
namespace {

constexpr std::chrono::seconds kPatience{30};

void NeedCall(bool isGood, const char* what) {
  if (!isGood) throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

TTerminalChild::TTerminalChild(const std::function<std::string()>& function) {
  std::array<int, 2> ends{};
  NeedCall(::pipe2(ends.data(), O_CLOEXEC) == 0, "pipe");
  m_pid = ::forkpty(&m_terminal, nullptr, nullptr, nullptr);
  NeedCall(m_pid >= 0, "forkpty");
  if (m_pid == 0) {
    const std::string result = function();
    const ssize_t written = ::write(ends[1], result.data(), result.size());
    ::_exit(written == static_cast<ssize_t>(result.size()) ? 0 : 1);
  }
  ::close(ends[1]);
  m_results = ends[0];
}

TTerminalChild::~TTerminalChild() {
  if (m_pid > 0) {
    ::kill(m_pid, SIGKILL);
    ::waitpid(m_pid, nullptr, 0);
  }
  HangUp();
  ::close(m_results);
}

void TTerminalChild::Type(const std::string& text) const {
  NeedCall(::write(m_terminal, text.data(), text.size()) == static_cast<ssize_t>(text.size()),
           "type");
}

// False at the end of the terminal, which shows as an error.
bool TTerminalChild::ReadScreen(int milliseconds) {
  pollfd waiting{m_terminal, POLLIN, 0};
  if (::poll(&waiting, 1, milliseconds) <= 0) return true;
  std::array<char, 1024> buffer{};
  const ssize_t size = ::read(m_terminal, buffer.data(), buffer.size());
  if (size <= 0) return false;
  m_screen.append(buffer.data(), static_cast<std::size_t>(size));
  return true;
}

bool TTerminalChild::WaitForScreen(const std::string& text) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  for (;;) {
    const std::size_t found = m_screen.find(text, m_seen);
    if (found != std::string::npos) {
      m_seen = found + text.size();
      return true;
    }
    if (std::chrono::steady_clock::now() >= deadline || !ReadScreen(100)) return false;
  }
}

bool TTerminalChild::HasEcho() const {
  termios settings{};
  NeedCall(::tcgetattr(m_terminal, &settings) == 0, "tcgetattr");
  return (settings.c_lflag & static_cast<tcflag_t>(ECHO)) != 0;
}

void TTerminalChild::HangUp() {
  if (m_terminal >= 0) ::close(m_terminal);
  m_terminal = -1;
}

int TTerminalChild::Wait() {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  int status = 0;
  pid_t ended = 0;
  while ((ended = ::waitpid(m_pid, &status, WNOHANG)) == 0) {
    if (std::chrono::steady_clock::now() >= deadline) return -1;
    // Nothing more comes from a terminal that was hung up.
    if (m_terminal < 0 || !ReadScreen(10)) ::usleep(1000);
  }
  m_pid = -1;
  while (m_terminal >= 0 && ReadScreen(0) && m_screen.size() < 1U << 20U) {
    pollfd waiting{m_terminal, POLLIN, 0};
    if (::poll(&waiting, 1, 0) <= 0) break;
  }
  std::array<char, 4096> buffer{};
  const ssize_t size = ::read(m_results, buffer.data(), buffer.size());
  if (size > 0) m_result.assign(buffer.data(), static_cast<std::size_t>(size));
  if (ended < 0) return -1;
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace host
