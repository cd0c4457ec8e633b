// SPDX-License-Identifier: Apache-2.0
#include "host/TerminateHandler.h"

#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "host/ExitStatus.h"
#include "host/TOutputRedirect.h"
#include "host/Text.h"

namespace host {
namespace {

std::mutex wordsMutex;
const TLastWords* lastWords = nullptr;

constexpr char kNotKnown[] = "; the test's outcome is not known\n";

std::atomic<TGetOwnCall> ownCall{nullptr};

/// The provider's function that this thread is in; empty when it is in none.
std::string DescribeOwnCall() {
  const TGetOwnCall get = ownCall;
  const NZEPQEL20::TProviderCallNames call =
      get == nullptr ? NZEPQEL20::TProviderCallNames{} : get();
  if (call.library == nullptr) return {};
  const char* const provider = call.provider == nullptr ? "" : call.provider;
  return DescribeProvider(provider, call.library) + " (" + call.function + ')';
}

std::string GetWords() {
  const std::exception_ptr current = std::current_exception();
  if (!current) return "ended without a reason";
  try {
    std::rethrow_exception(current);
  } catch (const std::exception& e) {
    return e.what();
  } catch (...) {
    return "failed for a reason that it did not give";
  }
}

std::string GetReason() {
  const std::string called = DescribeOwnCall();
  if (called.empty()) return GetWords();
  return called + " let an exception out that nothing can catch: " + GetWords();
}

// Only what takes no waiting: the main thread may hold the stream, and the reader may be stuck.
void FlushOutput() {
  pollfd output{STDOUT_FILENO, POLLOUT, 0};
  if (::poll(&output, 1, 0) != 1 || (output.revents & POLLOUT) == 0) return;
  if (::ftrylockfile(stdout) != 0) return;
  static_cast<void>(::fflush_unlocked(stdout));
  ::funlockfile(stdout);
}

// In one piece where the system lets it: the main thread still writes.
void Write(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(descriptor, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

// The mutex is kept for good: whoever has set the words waits with what they use for the end.
void SayLastWords(std::string (*getReason)()) {
  if (!wordsMutex.try_lock() || lastWords == nullptr) return;
  Write(GetOutputDescriptor(), (*lastWords)(getReason()));
}

[[noreturn]] void EndProcess(std::string (*getReason)(), const char* end) noexcept {
  FlushOutput();
  try {
    SayLastWords(getReason);
  } catch (...) {
    // The line below is said in any case.
  }
  try {
    Write(STDERR_FILENO, "diagsrun: " + SafeText(getReason(), ELines::kOne) + end);
  } catch (...) {
    Write(STDERR_FILENO, "diagsrun: out of memory");
    Write(STDERR_FILENO, kNotKnown);
  }
  ::_exit(static_cast<int>(EExitStatus::kNotFinished));
}

// The process in which exit() must not be called; none when it may.
std::atomic<pid_t> guarded{0};

// Children that a provider forks end as they like.
void OnExit() {
  if (::getpid() != guarded) return;
  const auto getReason = [] {
    const std::string called = DescribeOwnCall();
    return (called.empty() ? "a provider's library" : called) + " ended the process";
  };
  EndProcess(getReason, "; what was under way is not known; see rule R7\n");
}

}  // namespace

void InstallTerminateHandler(TGetOwnCall getOwnCall) noexcept {
  ownCall = getOwnCall;
  std::set_terminate([] { EndProcess(&GetReason, kNotKnown); });
}

TExitGuard::TExitGuard() noexcept {
  static const bool kIsInstalled = std::atexit(&OnExit) == 0;
  if (kIsInstalled) guarded = ::getpid();
}

TExitGuard::~TExitGuard() {
  guarded = 0;
}

TLastWordsHold::TLastWordsHold(TLastWords words) : m_words(std::move(words)) {
  const std::lock_guard<std::mutex> lock(wordsMutex);
  lastWords = &m_words;
}

TLastWordsHold::~TLastWordsHold() {
  const std::lock_guard<std::mutex> lock(wordsMutex);
  lastWords = nullptr;
}

}  // namespace host
