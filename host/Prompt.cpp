// SPDX-License-Identifier: Apache-2.0
#include "host/Prompt.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <system_error>

#include "host/Credentials.h"
#include "host/TDescriptor.h"
#include "host/TUsageError.h"

namespace host {
namespace {

constexpr char kSubject[] = "password";

[[noreturn]] void RefuseWithReason(const char* what, int error) {
  throw TUsageError(kSubject, what + std::generic_category().message(error));
}

// Holds back the signals that would end or stop the process while the terminal does not echo; the
// mask comes back last, so they take effect when it does again.
class THeldSignals {
 public:
  THeldSignals() {
    ::sigemptyset(&m_set);
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGTSTP}) {
      struct sigaction action {};
      ::sigaction(signal, nullptr, &action);
      if (action.sa_handler != SIG_IGN) ::sigaddset(&m_set, signal);
    }
    ::sigprocmask(SIG_BLOCK, &m_set, &m_before);
  }
  ~THeldSignals() { ::sigprocmask(SIG_SETMASK, &m_before, nullptr); }
  THeldSignals(const THeldSignals&) = delete;
  THeldSignals& operator=(const THeldSignals&) = delete;

  const sigset_t& GetSet() const { return m_set; }

 private:
  sigset_t m_set{};
  sigset_t m_before{};
};

class TEchoOff {
 public:
  explicit TEchoOff(int terminal) : m_terminal(terminal) {
    if (::tcgetattr(m_terminal, &m_before) != 0) RefuseWithReason("no terminal to ask: ", errno);
    termios silent = m_before;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
    silent.c_lflag |= static_cast<tcflag_t>(ICANON | ISIG);
    if (::tcsetattr(m_terminal, TCSAFLUSH, &silent) != 0) {
      RefuseWithReason("the terminal cannot be kept from showing it: ", errno);
    }
  }
  ~TEchoOff() {
    // What was typed too much must not reach a shell, and the line end that was typed did not show.
    ::tcsetattr(m_terminal, TCSAFLUSH, &m_before);
    if (::write(m_terminal, "\n", 1) < 0) return;
  }
  TEchoOff(const TEchoOff&) = delete;
  TEchoOff& operator=(const TEchoOff&) = delete;

 private:
  int m_terminal;
  termios m_before{};
};

// One line from a terminal, as far as it has come.
class TLine {
 public:
  TLine() = default;
  ~TLine() { ::explicit_bzero(m_text.data(), m_text.size()); }
  TLine(const TLine&) = delete;
  TLine& operator=(const TLine&) = delete;

  // Reads what is there; true when the line is complete.
  bool ReadSome(int terminal);
  TSecret Finish() const;

 private:
  std::array<char, kLongestCredentialsLine + 1> m_text{};
  std::size_t m_size = 0;
};

bool TLine::ReadSome(int terminal) {
  const ssize_t got = ::read(terminal, m_text.data() + m_size, m_text.size() - m_size);
  if (got < 0 && errno == EINTR) return false;
  if (got < 0) RefuseWithReason("the terminal cannot be read: ", errno);
  if (got == 0) throw TUsageError(kSubject, "the terminal's input ended before it was entered");
  m_size += static_cast<std::size_t>(got);
  if (m_text[m_size - 1] == '\n') return true;
  if (m_size == m_text.size()) {
    throw TUsageError(kSubject,
                      "is longer than " + std::to_string(kLongestCredentialsLine) + " bytes");
  }
  return false;
}

TSecret TLine::Finish() const {
  const std::string_view line(m_text.data(), m_size - 1);
  const auto isControl = [](unsigned char byte) { return byte < 0x20 || byte == 0x7F; };
  if (std::any_of(line.begin(), line.end(), isControl)) {
    throw TUsageError(kSubject, "holds a control character");
  }
  return TSecret(line);
}

void Write(int terminal, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(terminal, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) RefuseWithReason("the terminal cannot be written to: ", errno);
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

// Reads the line, or answers with the signal that came first.
int ReadLine(int terminal, int signals, TLine& line) {
  std::array<pollfd, 2> waiting{{{signals, POLLIN, 0}, {terminal, POLLIN, 0}}};
  for (;;) {
    if (::poll(waiting.data(), waiting.size(), -1) < 0) continue;
    signalfd_siginfo info{};
    if (waiting[0].revents != 0 &&
        ::read(signals, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
      return static_cast<int>(info.ssi_signo);
    }
    if (waiting[1].revents != 0 && line.ReadSome(terminal)) return 0;
  }
}

// Asks once; answers with the signal that came instead of a line, or 0.
int AskOnce(const std::string& question, TSecret& answer) {
  const THeldSignals held;
  const TDescriptor signals(::signalfd(-1, &held.GetSet(), SFD_CLOEXEC | SFD_NONBLOCK));
  if (signals.Get() < 0) RefuseWithReason("", errno);
  const TDescriptor terminal(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC));
  if (terminal.Get() < 0) RefuseWithReason("no terminal to ask: ", errno);
  const TEchoOff silence(terminal.Get());
  Write(terminal.Get(), question);
  TLine line;
  const int signal = ReadLine(terminal.Get(), signals.Get(), line);
  if (signal == 0) answer = line.Finish();
  return signal;
}

}  // namespace

TSecret AskSecret(const std::string& question) {
  TSecret answer;
  while (const int signal = AskOnce(question, answer)) static_cast<void>(::raise(signal));
  return answer;
}

}  // namespace host
