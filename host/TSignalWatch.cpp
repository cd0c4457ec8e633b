// SPDX-License-Identifier: Apache-2.0
#include "host/TSignalWatch.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <system_error>

#include "host/ExitStatus.h"

namespace host {
namespace {

constexpr std::chrono::seconds kKillPeriod{1};
constexpr std::chrono::seconds kLastKillTime{2};

int NeedDescriptor(int descriptor, const char* what) {
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), what);
  return descriptor;
}

// Straight to the descriptor: the streams belong to the other threads.
void Say(const char* text) {
  if (::write(STDERR_FILENO, text, std::strlen(text)) < 0) return;
}

}  // namespace

TSignalWatch::TSignalWatch(const TBlockedSignals& signals, std::function<void()> kill)
    : m_kill(std::move(kill)) {
  m_signals = NeedDescriptor(::signalfd(-1, &signals.GetSet(), SFD_CLOEXEC | SFD_NONBLOCK),
                             "watching for signals");
  m_stop = NeedDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "watching for signals");
  m_killer = std::thread([this] { KillRepeatedly(); });
  m_watcher = std::thread([this] { Watch(); });
}

TSignalWatch::~TSignalWatch() {
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isStopping = true;
  }
  m_changed.notify_all();
  // The watcher goes on until the last kill is over: a second signal must still end the process.
  m_killer.join();
  const std::uint64_t one = 1;
  while (::write(m_stop, &one, sizeof one) < 0 && errno == EINTR) {
  }
  m_watcher.join();
  ::close(m_stop);
  ::close(m_signals);
}

void TSignalWatch::Watch() {
  std::array<pollfd, 2> waiting{{{m_signals, POLLIN, 0}, {m_stop, POLLIN, 0}}};
  for (;;) {
    if (::poll(waiting.data(), waiting.size(), -1) < 0) continue;
    signalfd_siginfo info{};
    if (::read(m_signals, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
      HandleSignal(static_cast<int>(info.ssi_signo));
    }
    if (waiting[1].revents != 0) return;
  }
}

void TSignalWatch::BeginTests() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_hasBegun = true;
}

// Under the lock, so that no test begins meanwhile.
void TSignalWatch::LeaveUnlessBegun() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_hasBegun) return;
  Say("diagsrun: interrupted before any test was started\n");
  ::_exit(static_cast<int>(EExitStatus::kNotFinished));
}

void TSignalWatch::HandleSignal(int signal) {
  LeaveUnlessBegun();
  if (m_isInterrupted.exchange(true)) {
    WaitForOneMoreKill();
    EndBySignal(signal);
  }
  Say("diagsrun: interrupted: ending the running test; once more to leave at once\n");
  const std::lock_guard<std::mutex> lock(m_mutex);
  ++m_wanted;
  m_changed.notify_all();
}

void TSignalWatch::WaitForOneMoreKill() {
  std::unique_lock<std::mutex> lock(m_mutex);
  const unsigned int wanted = ++m_wanted;
  m_changed.notify_all();
  m_changed.wait_for(lock, kLastKillTime, [&] { return m_done >= wanted || m_isStopping; });
}

void TSignalWatch::KillRepeatedly() {
  std::unique_lock<std::mutex> lock(m_mutex);
  m_changed.wait(lock, [&] { return m_wanted > 0 || m_isStopping; });
  while (!m_isStopping) {
    const unsigned int served = m_wanted;
    lock.unlock();
    m_kill();
    lock.lock();
    m_done = served;
    m_changed.notify_all();
    m_changed.wait_for(lock, kKillPeriod, [&] { return m_wanted > served || m_isStopping; });
  }
}

}  // namespace host
