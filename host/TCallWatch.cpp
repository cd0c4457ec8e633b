// SPDX-License-Identifier: Apache-2.0
#include "host/TCallWatch.h"

#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <initializer_list>
#include <system_error>
#include <thread>
#include <utility>

#include "host/Text.h"

namespace host {
namespace {

using NZEPQEL20::TProviderCallUnderWay;

std::string DescribeCalled(const TProviderCallUnderWay& call) {
  return DescribeProvider(call.provider, call.library);
}

// In one piece where the system lets it: the other threads write, too.
void WriteLine(const std::string& line) {
  const std::string text = "diagsrun: " + SafeText(line, ELines::kOne) + "\n";
  for (std::size_t at = 0; at < text.size();) {
    const ssize_t written = ::write(STDERR_FILENO, text.data() + at, text.size() - at);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    at += static_cast<std::size_t>(written);
  }
}

// The report is out. What else there is must not wait for a provider that holds the stream.
[[noreturn]] void LeaveProcess(EExitStatus status) {
  if (::ftrylockfile(stdout) == 0) static_cast<void>(::fflush_unlocked(stdout));
  std::_Exit(static_cast<int>(status));
}

void LetEndingSignalsThrough() {
  sigset_t set;
  ::sigemptyset(&set);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::sigaddset(&set, signal);
  ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

}  // namespace

void TCallWatch::Begin(EPhase phase) {
  m_phase = phase;
  m_seconds.clear();
}

void TCallWatch::BeginTests() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  Begin(EPhase::kTesting);
}

void TCallWatch::BeginEnd(EExitStatus status, const std::string& reason) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  Begin(EPhase::kEnding);
  m_status = status;
  m_reason = reason;
}

void TCallWatch::Stop() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  Begin(EPhase::kStopped);
}

bool TCallWatch::Look() {
  m_ways.waitSecond();
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_phase == EPhase::kStopped) return false;
  if (m_phase == EPhase::kTesting) return true;
  const std::vector<TProviderCallUnderWay> calls = m_ways.getCalls();
  TellSlow(calls);
  if (m_phase == EPhase::kEnding && ++m_endSeconds >= kEndPatience && !calls.empty()) Leave(calls);
  return true;
}

void TCallWatch::TellSlow(const std::vector<TProviderCallUnderWay>& calls) {
  std::map<std::uint64_t, unsigned int> seconds;
  for (const TProviderCallUnderWay& call : calls) {
    const auto known = m_seconds.find(call.number);
    const unsigned int now = known == m_seconds.end() ? 0 : known->second + 1;
    seconds[call.number] = now;
    if (now != kPatience) continue;
    m_ways.say("waiting for " + DescribeCalled(call) + " (" + call.function + ") since " +
               std::to_string(kPatience) + " s; Ctrl-C leaves");
    if (m_phase == EPhase::kEnding) LetEndingSignalsThrough();
  }
  m_seconds = std::move(seconds);
}

void TCallWatch::Leave(const std::vector<TProviderCallUnderWay>& calls) {
  if (!m_reason.empty()) m_ways.say(m_reason);
  for (const TProviderCallUnderWay& call : calls) {
    m_ways.say(DescribeCalled(call) + " has not come back from " + call.function + " within " +
               std::to_string(kEndPatience) +
               " s after the end of the command; it is left; see "
               "rule R9");
  }
  m_ways.leave(m_status);
}

TCallWatchThread::TCallWatchThread(TCallWatchWays ways)
    : m_watch(std::make_shared<TCallWatch>(std::move(ways))) {
  sigset_t all;
  sigset_t before;
  ::sigfillset(&all);
  ::pthread_sigmask(SIG_SETMASK, &all, &before);
  try {
    std::thread([watch = m_watch] {
      try {
        while (watch->Look()) {
        }
      } catch (const std::exception&) {
        // Out of memory: nothing is watched any more.
      }
    }).detach();
  } catch (const std::system_error&) {
    // The command itself does not need the thread.
  }
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TCallWatchThread::~TCallWatchThread() {
  m_watch->Stop();
}

TCallWatchWays GetCallWatchWays(std::function<std::vector<TProviderCallUnderWay>()> getCalls) {
  const auto waitSecond = [] {
    const timespec second{1, 0};
    ::nanosleep(&second, nullptr);
  };
  return {std::move(getCalls), waitSecond, &WriteLine, &LeaveProcess};
}

}  // namespace host
