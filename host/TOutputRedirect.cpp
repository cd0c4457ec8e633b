// SPDX-License-Identifier: Apache-2.0
#include "host/TOutputRedirect.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <iostream>
#include <system_error>

namespace host {
namespace {

std::atomic<int> outputDescriptor{STDOUT_FILENO};
std::atomic<bool> isOutputLost{false};

constexpr char kLost[] =
    "diagsrun: standard output: its descriptor was closed or changed, which only a provider's "
    "library would do; what goes there is lost; see rule R7\n";

[[noreturn]] void Fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

void FlushAll() {
  std::cout.flush();
  static_cast<void>(std::fflush(stdout));
}

}  // namespace

TOutputRedirect::TOutputRedirect(EOutputTarget target) {
  if (target == EOutputTarget::kUnchanged) return;
  FlushAll();
  m_wasGood = IsOutputGood();
  m_saved = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (m_saved < 0) Fail("standard output");
  struct stat place {};
  if (::fstat(m_saved, &place) == 0) {
    m_device = place.st_dev;
    m_file = place.st_ino;
  }
  const int sink = target == EOutputTarget::kStandardError
                       ? ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)
                       : ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  const bool isDone = sink >= 0 && ::dup2(sink, STDOUT_FILENO) >= 0;
  const int error = errno;
  if (sink >= 0) ::close(sink);
  if (isDone) {
    outputDescriptor = m_saved;
    return;
  }
  ::close(m_saved);
  errno = error;
  Fail("standard output");
}

TOutputRedirect::~TOutputRedirect() {
  if (m_saved < 0) return;
  FlushAll();
  outputDescriptor = STDOUT_FILENO;
  if (!IsSavedUnchanged()) {
    LoseOutput();
    return;
  }
  ::dup2(m_saved, STDOUT_FILENO);
  ::close(m_saved);
  // A fault of the other target says nothing about standard output.
  if (!m_wasGood) return;
  std::cout.clear();
  std::clearerr(stdout);
}

bool TOutputRedirect::IsSavedUnchanged() const {
  struct stat place {};
  return ::fstat(m_saved, &place) == 0 && place.st_dev == m_device && place.st_ino == m_file;
}

// Whoever has the descriptor now keeps it. Where the others' words went is no place for results.
void TOutputRedirect::LoseOutput() const {
  const int sink = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (sink >= 0) {
    ::dup2(sink, STDOUT_FILENO);
    ::close(sink);
  } else {
    ::close(STDOUT_FILENO);
  }
  if (isOutputLost.exchange(true)) return;
  if (::write(STDERR_FILENO, kLost, std::strlen(kLost)) < 0) return;
}

bool IsOutputGood() {
  if (isOutputLost) return false;
  FlushAll();
  // A line-buffered stream keeps a failure to itself that happened when it passed a line on.
  return std::cout.good() && std::ferror(stdout) == 0;
}

bool IsReaderGone() {
  pollfd output = {GetOutputDescriptor(), 0, 0};
  return ::poll(&output, 1, 0) > 0 && (output.revents & POLLERR) != 0;
}

int GetOutputDescriptor() {
  return outputDescriptor;
}

void OpenStandardDescriptors() {
  // The wrong way round on purpose: /dev/null in the right mode would swallow the results.
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(descriptor, F_GETFD) >= 0) continue;
    const int mode = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    const int opened = ::open("/dev/null", mode);
    if (opened >= 0 && opened != descriptor) {
      ::dup2(opened, descriptor);
      ::close(opened);
    }
  }
}

}  // namespace host
