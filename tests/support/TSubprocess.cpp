// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TSubprocess.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

namespace programs {
namespace {

struct TEnds {
  int mine = -1;
  int its = -1;
};

void Need(int result, const char* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
}

TEnds MakePipe() {
  std::array<int, 2> ends{};
  Need(::pipe2(ends.data(), O_CLOEXEC), "pipe");
  return {ends[0], ends[1]};
}

TEnds MakeTerminal() {
  TEnds ends;
  Need(::openpty(&ends.mine, &ends.its, nullptr, nullptr, nullptr), "openpty");
  ::fcntl(ends.mine, F_SETFD, FD_CLOEXEC);
  ::fcntl(ends.its, F_SETFD, FD_CLOEXEC);
  return ends;
}

// Appends what is there; false at the end of the stream. A terminal whose other side is gone
// answers with an error instead.
bool Append(int descriptor, std::string& text) {
  std::array<char, 4096> buffer{};
  const ssize_t size = ::read(descriptor, buffer.data(), buffer.size());
  if (size <= 0) return size < 0 && errno == EINTR;
  text.append(buffer.data(), static_cast<std::size_t>(size));
  return true;
}

// State and parent as /proc shows them; no parent for a process that is gone.
struct TStat {
  char state = 'X';
  pid_t parent = 0;
};

TStat ReadStat(const std::string& pid) {
  std::ifstream file("/proc/" + pid + "/stat");
  // A process that goes between opening and reading fails the read; a formatted one does not throw.
  std::ostringstream content;
  content << file.rdbuf();
  const std::string line = content.str();
  // The name stands in parentheses and may hold anything.
  const std::size_t end = line.rfind(')');
  TStat stat;
  if (end == std::string::npos) return stat;
  std::istringstream rest(line.substr(end + 1));
  rest >> stat.state >> stat.parent;
  return stat;
}

std::vector<pid_t> FindChildren(pid_t pid) {
  std::vector<pid_t> children;
  std::error_code error;
  for (std::filesystem::directory_iterator entry("/proc", error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    if (ReadStat(name).parent == pid) children.push_back(std::stoi(name));
  }
  return children;
}

void Close(int& descriptor) {
  if (descriptor >= 0) ::close(descriptor);
  descriptor = -1;
}

}  // namespace

TSubprocess::TSubprocess(const TProgram& program) {
  TEnds out = program.hasTerminal ? MakeTerminal() : MakePipe();
  TEnds err = MakePipe();
  TEnds in = program.hasInput ? MakePipe() : TEnds();
  // Of this pipe the ends are the other way round: the program reads.
  m_inFd = in.its;
  m_outFd = out.mine;
  m_errFd = err.mine;
  if (program.isOutputClosed) Close(m_outFd);
  m_pid = ::fork();
  Need(m_pid, "fork");
  if (m_pid == 0) StartChild(program, in.mine, out.its, err.its);
  Close(in.mine);
  Close(out.its);
  Close(err.its);
}

TSubprocess::~TSubprocess() {
  if (m_pid > 0) {
    ::kill(m_pid, SIGKILL);
    ::waitpid(m_pid, nullptr, 0);
  }
  Close(m_inFd);
  Close(m_outFd);
  Close(m_errFd);
}

void TSubprocess::CloseInput() {
  Close(m_inFd);
}

void TSubprocess::StartChild(const TProgram& program, int inEnd, int outEnd, int errEnd) {
  if (inEnd >= 0) ::dup2(inEnd, STDIN_FILENO);
  ::dup2(outEnd, STDOUT_FILENO);
  ::dup2(errEnd, STDERR_FILENO);
  for (const auto& [name, value] : program.environment) ::setenv(name.c_str(), value.c_str(), 1);
  std::vector<char*> arguments;
  for (const std::string& argument : program.arguments) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  ::execv(arguments[0], arguments.data());
  ::_exit(127);
}

void TSubprocess::Signal(int signal) const {
  ::kill(m_pid, signal);
}

// Reads what comes next from either output; false when both are at their ends or time is up.
bool TSubprocess::ReadSome(std::chrono::steady_clock::time_point deadline) {
  std::array<pollfd, 2> waiting{{{m_outFd, POLLIN, 0}, {m_errFd, POLLIN, 0}}};
  if (m_outFd < 0 && m_errFd < 0) return false;
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
      deadline - std::chrono::steady_clock::now());
  if (left.count() <= 0) return false;
  if (::poll(waiting.data(), waiting.size(), static_cast<int>(left.count())) <= 0) return false;
  if (waiting[0].revents != 0 && !Append(m_outFd, m_out)) Close(m_outFd);
  if (waiting[1].revents != 0 && !Append(m_errFd, m_err)) Close(m_errFd);
  return true;
}

bool TSubprocess::WaitForOutput(const std::string& text) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (m_out.find(text) == std::string::npos) {
    if (!ReadSome(deadline)) return false;
  }
  return true;
}

int TSubprocess::Wait() {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (ReadSome(deadline)) {
  }
  const bool isLate = std::chrono::steady_clock::now() >= deadline;
  if (isLate) ::kill(m_pid, SIGKILL);
  int status = 0;
  const pid_t ended = ::waitpid(m_pid, &status, 0);
  m_pid = -1;
  if (isLate || ended < 0) return -1;
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

TFinished RunToEnd(const TProgram& program) {
  TSubprocess process(program);
  const int status = process.Wait();
  return {status, process.GetOut(), process.GetErr()};
}

std::vector<pid_t> FindDescendants(pid_t pid) {
  std::vector<pid_t> found = {pid};
  for (std::size_t i = 0; i < found.size(); ++i) {
    for (const pid_t child : FindChildren(found[i])) found.push_back(child);
  }
  found.erase(found.begin());
  return found;
}

bool IsRunning(pid_t pid) {
  const TStat stat = ReadStat(std::to_string(pid));
  return stat.parent != 0 && stat.state != 'Z' && stat.state != 'X';
}

}  // namespace programs
