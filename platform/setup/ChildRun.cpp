// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/ChildRun.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "platform/contract/TQELException.h"

namespace NZEPQEL20::setup {
namespace {

using TClock = std::chrono::steady_clock;

// Between two records; the one behind the last says that the work was done.
constexpr char kEnd = '\x1E';
constexpr char kDone[] = "\x04";
// More than a well-behaved library could say; a hostile one may write what it likes.
constexpr std::size_t kMaxText = 1U << 20U;
constexpr int kPollMilliseconds = 20;

[[noreturn]] void Refuse(const char* what) {
  throw TQELException(TQELStatusCode::kFailed, std::string("no process for the check: ") + what +
                                                   ": " + std::generic_category().message(errno));
}

void WriteAll(int file, const std::string& text) {
  for (std::size_t at = 0; at < text.size();) {
    const ssize_t count = ::write(file, text.data() + at, text.size() - at);
    if (count <= 0 && errno != EINTR) return;
    if (count > 0) at += static_cast<std::size_t>(count);
  }
}

/// Cuts the process off from everything that is the parent's; `file` alone stays open.
void Isolate(pid_t parent, int file) {
  ::setsid();
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(1);
  const rlimit none = {0, 0};
  ::setrlimit(RLIMIT_CORE, &none);
  const int null = ::open("/dev/null", O_RDWR);
  for (int standard = 0; standard <= 2; ++standard) ::dup2(null, standard);
  if (file > 3) ::close_range(3, static_cast<unsigned int>(file) - 1, 0);
  ::close_range(static_cast<unsigned int>(std::max(file, 2)) + 1, ~0U, 0);
  struct sigaction plain = {};
  plain.sa_handler = SIG_DFL;
  for (int number = 1; number < NSIG; ++number) ::sigaction(number, &plain, nullptr);
  sigset_t all;
  ::sigemptyset(&all);
  ::sigprocmask(SIG_SETMASK, &all, nullptr);
}

[[noreturn]] void Work(const std::function<void(const TTell&)>& work, int file) {
  const auto tell = [file](const std::string& record) { WriteAll(file, record + kEnd); };
  try {
    work(tell);
    tell(kDone);
  } catch (...) {
    // Nobody is left to hear of it but by the missing last record.
    ::_exit(1);
  }
  ::_exit(0);
}

std::string DescribeEnding(const siginfo_t& info) {
  if (info.si_code == CLD_EXITED) {
    return "ended the process with exit status " + std::to_string(info.si_status);
  }
  const char* name = ::strsignal(info.si_status);
  return "ended by signal " + std::to_string(info.si_status) + " (" +
         (name != nullptr ? name : "?") + ")";
}

std::string DescribeTime(std::chrono::milliseconds time) {
  constexpr std::chrono::seconds kSecond(1);
  return time < kSecond ? std::to_string(time.count()) + " milliseconds"
                        : std::to_string(time / kSecond) + " seconds";
}

/// The parent's side.
class TWatch {
 public:
  TWatch(pid_t child, int file, std::chrono::milliseconds limit, std::size_t steps)
      : m_child(child),
        m_file(file),
        m_limit(limit),
        m_stepsLeft(steps),
        m_end(TClock::now() + limit) {}
  ~TWatch() {
    // Before it is waited for, so that its number cannot be another's; what it started goes, too.
    ::kill(-m_child, SIGKILL);
    ::kill(m_child, SIGKILL);
    while (::waitpid(m_child, nullptr, 0) < 0 && errno == EINTR) {
    }
    ::close(m_file);
  }
  TWatch(const TWatch&) = delete;
  TWatch& operator=(const TWatch&) = delete;

  TChildOutcome Follow() {
    TChildOutcome outcome;
    while (outcome.ending.empty() && !HasAll()) {
      // Whatever it wrote before it ended is there to read.
      const bool hasEnded = HasEnded(outcome.ending);
      Read();
      if (hasEnded) break;
      if (TClock::now() >= m_end) {
        outcome.ending = "did not come back within " + DescribeTime(m_limit);
        outcome.isLate = true;
      }
    }
    if (HasAll()) {
      outcome.ending.clear();
      outcome.isLate = false;
    }
    Split(outcome);
    return outcome;
  }

 private:
  bool HasAll() const {
    const std::string last = std::string(kDone) + kEnd;
    return m_text.size() >= last.size() &&
           m_text.compare(m_text.size() - last.size(), last.size(), last) == 0;
  }

  bool HasEnded(std::string& ending) const {
    siginfo_t info = {};
    const int result =
        ::waitid(P_PID, static_cast<id_t>(m_child), &info, WEXITED | WNOHANG | WNOWAIT);
    if (result == 0 && info.si_pid == 0) return false;
    ending = result == 0 ? DescribeEnding(info) : "ended";
    return true;
  }

  /// Looks for steps in what was read last. Whoever tells steps without end has the time of those
  /// that were announced, and no more.
  void BeginSteps() {
    for (std::size_t end = 0; (end = m_text.find(kEnd, m_looked)) != std::string::npos;) {
      if (m_text[m_looked] == kStepMark && m_stepsLeft > 1) {
        --m_stepsLeft;
        m_end = TClock::now() + m_limit;
      }
      m_looked = end + 1;
    }
  }

  /// Takes what is there, or waits a moment for it.
  void Read() {
    pollfd wait = {m_file, POLLIN, 0};
    ::poll(&wait, 1, kPollMilliseconds);
    std::array<char, 4096> piece;
    // Now and then the time has to be looked at, however much there is to read.
    for (std::size_t round = 0; round < kMaxText / piece.size(); ++round) {
      const ssize_t count = ::read(m_file, piece.data(), piece.size());
      if (count <= 0) break;
      m_text.append(piece.data(), static_cast<std::size_t>(count));
      if (m_text.size() > kMaxText) m_text.resize(kMaxText);
      BeginSteps();
      if (HasAll()) break;
    }
    if ((wait.revents & POLLHUP) != 0 && (wait.revents & POLLIN) == 0) {
      // Nobody writes any more; the process may still run.
      ::poll(nullptr, 0, kPollMilliseconds);
    }
  }

  void Split(TChildOutcome& outcome) const {
    for (std::size_t at = 0;;) {
      const std::size_t end = m_text.find(kEnd, at);
      if (end == std::string::npos) return;
      std::string record = m_text.substr(at, end - at);
      if (record != kDone) outcome.records.push_back(std::move(record));
      at = end + 1;
    }
  }

  const pid_t m_child;
  const int m_file;
  const std::chrono::milliseconds m_limit;
  std::size_t m_stepsLeft;  ///< With the present one.
  TClock::time_point m_end;
  std::string m_text;
  std::size_t m_looked = 0;  ///< The records before it have been looked at.
};

}  // namespace

TChildOutcome RunInChild(const std::function<void(const TTell&)>& work,
                         std::chrono::milliseconds limit, std::size_t steps) {
  std::array<int, 2> ends = {-1, -1};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) Refuse("pipe");
  const pid_t parent = ::getpid();
  const pid_t child = ::fork();
  if (child == 0) {
    Isolate(parent, ends[1]);
    Work(work, ends[1]);
  }
  ::close(ends[1]);
  if (child < 0) {
    ::close(ends[0]);
    Refuse("fork");
  }
  ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
  return TWatch(child, ends[0], limit, steps).Follow();
}

}  // namespace NZEPQEL20::setup
