// SPDX-License-Identifier: Apache-2.0
#include "host/CrashHandler.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>

#include "host/TBlockedSignals.h"

namespace host {
namespace {

struct TCrashSignal {
  int number;
  const char* digits;
  const char* meaning;
};
constexpr std::array<TCrashSignal, 5> kCrashSignals{{
    {SIGSEGV, "11", "Segmentation fault"},
    {SIGBUS, "7", "Bus error"},
    {SIGFPE, "8", "Floating point exception"},
    {SIGILL, "4", "Illegal instruction"},
    {SIGABRT, "6", "Aborted"},
}};
static_assert(SIGSEGV == 11 && SIGBUS == 7 && SIGFPE == 8 && SIGILL == 4 && SIGABRT == 6);

// The process whose crashes are told.
std::atomic<pid_t> watchedProcess{0};
static_assert(std::atomic<pid_t>::is_always_lock_free);
std::atomic<TGetOwnCall> getCrashedCall{nullptr};
static_assert(std::atomic<TGetOwnCall>::is_always_lock_free);
std::atomic_flag isCrashTold = ATOMIC_FLAG_INIT;

// A line that is put together without memory of the heap. Only the first crash writes one, so it
// need not lie on the small stack of the handler.
class TCrashLine {
 public:
  void Add(const char* text) {
    for (; *text != '\0' && m_size < m_text.size() - 1; ++text) m_text[m_size++] = *text;
  }

  // What a library or a folder is called, with nothing that a terminal could obey.
  void AddName(const char* name, std::size_t size) {
    for (std::size_t i = 0; i < size && m_size < m_text.size() - 1; ++i) {
      const bool isPlain = name[i] >= 0x20 && name[i] < 0x7F;
      m_text[m_size++] = isPlain ? name[i] : '?';
    }
  }
  void AddName(const char* name) { AddName(name, std::strlen(name)); }

  void Write() {
    m_text[m_size++] = '\n';
    for (std::size_t at = 0; at < m_size;) {
      const ssize_t written = ::write(STDERR_FILENO, m_text.data() + at, m_size - at);
      if (written < 0 && errno == EINTR) continue;
      if (written <= 0) return;
      at += static_cast<std::size_t>(written);
    }
  }

 private:
  std::array<char, 8192> m_text{};
  std::size_t m_size = 0;
};
TCrashLine crashLine;

const TCrashSignal& FindCrashSignal(int number) {
  for (const TCrashSignal& signal : kCrashSignals) {
    if (signal.number == number) return signal;
  }
  return kCrashSignals.back();
}

void AddSignal(int number) {
  const TCrashSignal& signal = FindCrashSignal(number);
  crashLine.Add(" (signal ");
  crashLine.Add(signal.digits);
  crashLine.Add(", ");
  crashLine.Add(signal.meaning);
  crashLine.Add(")");
}

// The name that the folder of the library was installed as stands behind the last "/providers/".
void AddRemoval(const char* library) {
  constexpr char kFolder[] = "/providers/";
  const char* name = nullptr;
  for (const char* at = std::strstr(library, kFolder); at != nullptr;
       at = std::strstr(at + 1, kFolder)) {
    name = at + sizeof kFolder - 1;
  }
  const char* const end = name == nullptr ? nullptr : std::strchr(name, '/');
  if (end == nullptr) return;
  crashLine.Add("; `diagsrun provider remove ");
  crashLine.AddName(name, static_cast<std::size_t>(end - name));
  crashLine.Add("` takes it out");
}

void TellCrash(int signal) {
  const NZEPQEL20::TProviderCallNames call = getCrashedCall.load()();
  crashLine.Add("diagsrun: ");
  if (call.library == nullptr) {
    const bool isMain = ::syscall(SYS_gettid) == ::getpid();
    crashLine.Add(isMain ? "crashed outside of any call to a provider"
                         : "a thread crashed outside of any call to a provider");
    AddSignal(signal);
    if (!isMain) crashLine.Add("; a provider's library may have started it");
    crashLine.Add("; what was under way is not known");
  } else {
    crashLine.Add(call.provider == nullptr ? "library " : "provider ");
    if (call.provider != nullptr) {
      crashLine.AddName(call.provider);
      crashLine.Add(" of ");
    }
    crashLine.AddName(call.library);
    crashLine.Add(" crashed in ");
    crashLine.AddName(call.function);
    AddSignal(signal);
    crashLine.Add("; what was under way is not known");
    AddRemoval(call.library);
  }
  crashLine.Add("; see rule R7");
  crashLine.Write();
}

// Only what a handler of signals may do. All crash signals are blocked meanwhile, so that a fault
// in here ends the process at once.
extern "C" void HandleCrash(int signal) {
  if (::getpid() == watchedProcess) {
    // The thread that has crashed first ends the process for the others.
    while (isCrashTold.test_and_set()) ::pause();
    TellCrash(signal);
  }
  EndBySignal(signal);
}

void GiveStack() {
  constexpr std::size_t kStackSize = 65536;
  alignas(16) static std::array<char, kStackSize> stack;
  stack_t before{};
  // A sanitizer brings its own.
  if (::sigaltstack(nullptr, &before) != 0 || (before.ss_flags & SS_DISABLE) == 0) return;
  stack_t own{};
  own.ss_sp = stack.data();
  own.ss_size = stack.size();
  static_cast<void>(::sigaltstack(&own, nullptr));
}

}  // namespace

void InstallCrashHandler(TGetOwnCall getOwnCall) noexcept {
  getCrashedCall = getOwnCall;
  watchedProcess = ::getpid();
  GiveStack();
  struct sigaction action {};
  action.sa_handler = &HandleCrash;
  action.sa_flags = SA_ONSTACK;
  ::sigemptyset(&action.sa_mask);
  for (const TCrashSignal& signal : kCrashSignals) ::sigaddset(&action.sa_mask, signal.number);
  for (const TCrashSignal& signal : kCrashSignals) {
    struct sigaction before {};
    if (::sigaction(signal.number, nullptr, &before) != 0) continue;
    const bool isFree = (before.sa_flags & SA_SIGINFO) == 0 && before.sa_handler == SIG_DFL;
    if (isFree) static_cast<void>(::sigaction(signal.number, &action, nullptr));
  }
}

}  // namespace host
