// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TChildProcess.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstring>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

#include "providers/hardware/Text.h"

namespace hardware {
namespace {

[[noreturn]] void ThrowErrno(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// Descriptors 0 to 2 are to be replaced in the child; a host that closed its own must not get
// one of them here.
TFileDescriptor MoveUp(TFileDescriptor low) {
  TFileDescriptor high(::fcntl(low.Get(), F_DUPFD_CLOEXEC, 3));
  if (!high.IsOpen()) ThrowErrno("dup");
  return high;
}

TFileDescriptor OpenNull() {
  TFileDescriptor null(::open("/dev/null", O_RDWR | O_CLOEXEC));
  if (!null.IsOpen()) ThrowErrno("/dev/null");
  return MoveUp(std::move(null));
}

struct TPipe {
  TFileDescriptor read;
  TFileDescriptor write;
};

TPipe MakePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) ThrowErrno("pipe");
  TPipe low;
  low.read = TFileDescriptor(ends[0]);
  low.write = TFileDescriptor(ends[1]);
  TPipe high;
  high.read = MoveUp(std::move(low.read));
  high.write = MoveUp(std::move(low.write));
  return high;
}

// The caller's environment, but in plain language, and without what makes memtester skip tests.
std::vector<std::string> MakeEnvironment() {
  static constexpr std::array<std::string_view, 4> kDropped = {
      "LC_", "LANG=", "LANGUAGE=", "MEMTESTER_TEST_MASK="};
  std::vector<std::string> environment = {"LC_ALL=C"};
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    bool isDropped = false;
    for (const std::string_view start : kDropped) isDropped |= StartsWith(*entry, start);
    if (!isDropped) environment.emplace_back(*entry);
  }
  return environment;
}

std::vector<char*> PointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// All that the child needs, made before the fork: afterwards it may not allocate.
struct TLaunch {
  char* const* arguments;
  char* const* environment;
  int null;
  int output;
  int errors;
  int status;
  pid_t parent;
};

// Runs between fork and exec in a copy of a process with threads: async-signal-safe calls only.
[[noreturn]] void BecomeProgram(const TLaunch& launch) noexcept {
  ::setpgid(0, 0);
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != launch.parent) ::_exit(127);  // It died before the line above.
  struct sigaction plain {};
  plain.sa_handler = SIG_DFL;
  for (int signal = 1; signal < NSIG; ++signal) ::sigaction(signal, &plain, nullptr);
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  ::dup2(launch.null, STDIN_FILENO);
  ::dup2(launch.output, STDOUT_FILENO);
  ::dup2(launch.errors, STDERR_FILENO);
  // Programs leave scratch files in their working directory.
  if (::chdir("/tmp") != 0 && ::chdir("/") != 0) ::_exit(127);
  ::close_range(3, UINT_MAX, CLOSE_RANGE_CLOEXEC);  // Whatever the host left inheritable.
  ::execve(launch.arguments[0], launch.arguments, launch.environment);
  const int reason = errno;
  const ssize_t written = ::write(launch.status, &reason, sizeof reason);
  ::_exit(written == sizeof reason ? 127 : 126);
}

// Forks with all signals blocked, so that no handler of the host runs in the child.
pid_t Fork(const TLaunch& launch) {
  sigset_t all;
  sigset_t before;
  ::sigfillset(&all);
  ::pthread_sigmask(SIG_SETMASK, &all, &before);
  const pid_t pid = ::fork();
  if (pid == 0) BecomeProgram(launch);
  const int reason = errno;
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  errno = reason;
  return pid;
}

// Reads the reason for which exec failed; the pipe ends empty when it did not.
int ReadExecError(int status) {
  int reason = 0;
  ssize_t count = 0;
  do {
    count = ::read(status, &reason, sizeof reason);
  } while (count < 0 && errno == EINTR);
  return count == sizeof reason ? reason : 0;
}

void MakeNonBlocking(const TFileDescriptor& file) {
  ::fcntl(file.Get(), F_SETFL, O_NONBLOCK);
}

// Whether the system keeps no status of a child for this process.
bool IgnoresChildren() noexcept {
  struct sigaction action {};
  ::sigaction(SIGCHLD, nullptr, &action);
  const auto flags = static_cast<unsigned int>(action.sa_flags);
  if ((flags & unsigned{SA_NOCLDWAIT}) != 0) return true;
  return (flags & unsigned{SA_SIGINFO}) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

TChildProcess::TChildProcess(const std::vector<std::string>& arguments) {
  std::vector<std::string> ownArguments = arguments;
  std::vector<std::string> environment = MakeEnvironment();
  const std::vector<char*> argumentPointers = PointersTo(ownArguments);
  const std::vector<char*> environmentPointers = PointersTo(environment);
  const TFileDescriptor null = OpenNull();
  TPipe output = MakePipe();
  TPipe errors = MakePipe();
  TPipe status = MakePipe();
  TLaunch launch{};
  launch.arguments = argumentPointers.data();
  launch.environment = environmentPointers.data();
  launch.null = null.Get();
  launch.output = output.write.Get();
  launch.errors = errors.write.Get();
  launch.status = status.write.Get();
  launch.parent = ::getpid();
  m_isIgnored = IgnoresChildren();
  m_pid = Fork(launch);
  if (m_pid < 0) ThrowErrno("fork");
  ::setpgid(m_pid, m_pid);  // Both sides do it: whichever comes first, the group exists.
  status.write.Close();
  const int reason = ReadExecError(status.read.Get());
  if (reason != 0) {
    ::waitpid(m_pid, nullptr, 0);
    throw std::system_error(reason, std::generic_category(), arguments.front());
  }
  m_output = std::move(output.read);
  m_errors = std::move(errors.read);
  MakeNonBlocking(m_output);
  MakeNonBlocking(m_errors);
}

TChildProcess::~TChildProcess() {
  using namespace std::chrono_literals;
  // A program in an uninterruptible call of the kernel ends when that call does; the host is not
  // held up for longer than five seconds by it.
  for (int i = 0; m_pid > 0 && i < 500; ++i) {
    SignalGroup(SIGKILL);
    if (!TryReap()) std::this_thread::sleep_for(10ms);
  }
}

void TChildProcess::SignalGroup(int signal) const noexcept {
  if (m_pid > 0) ::kill(-m_pid, signal);
}

std::optional<TChildProcess::TExit> TChildProcess::TryReap() noexcept {
  siginfo_t info{};
  const auto pid = static_cast<id_t>(m_pid);
  // Look first: as long as the program is not reaped, its group's number belongs to nobody else.
  const int found = ::waitid(P_PID, pid, &info, WEXITED | WNOHANG | WNOWAIT);
  TExit exit;
  if (found != 0 && errno == ECHILD) {
    // The host ignores SIGCHLD or waits for every child: the status is gone.
    exit.isLost = true;
    SignalGroup(SIGKILL);
  } else if (found != 0 || info.si_pid == 0) {
    return std::nullopt;
  } else {
    SignalGroup(SIGKILL);
    exit.isLost = ::waitpid(m_pid, nullptr, 0) != m_pid;
    (info.si_code == CLD_EXITED ? exit.status : exit.signal) = info.si_status;
  }
  exit.isIgnored = exit.isLost && (m_isIgnored || IgnoresChildren());
  m_pid = -1;
  return exit;
}

}  // namespace hardware
