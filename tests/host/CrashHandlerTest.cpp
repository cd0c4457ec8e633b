// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <ostream>
#include <thread>

#include "host/CrashHandler.h"

namespace host {
namespace {

using NZEPQEL20::TProviderCallNames;

TProviderCallNames NoCall() noexcept {
  return {nullptr, nullptr, nullptr};
}
TProviderCallNames InstalledCall() noexcept {
  return {"Acme", "/root/providers/acme/lib/libacme.so", "enumerateInstances"};
}
TProviderCallNames OddCall() noexcept {
  return {"A\x1b[2J\xC3\xA4", "/lib/libacme.so", "cleanup"};
}
TProviderCallNames LoadingCall() noexcept {
  return {nullptr, "/lib/libacme.so", "dlopen"};
}

struct TCrashRow {
  const char* name;
  int signal;
  TGetOwnCall call;
  const char* line;
};
void PrintTo(const TCrashRow& row, std::ostream* out) {
  *out << row.name;
}

class CrashHandlerTest : public ::testing::TestWithParam<TCrashRow> {
 protected:
  void SetUp() override {
#ifdef DIAGSRUNNER_SANITIZED
    GTEST_SKIP() << "the sanitizer takes these signals";
#endif
    GTEST_FLAG_SET(death_test_style, "threadsafe");
  }
};

TEST_P(CrashHandlerTest, SaysOneLineAndEndsByTheSignal) {
  const auto crash = [] {
    InstallCrashHandler(GetParam().call);
    static_cast<void>(std::raise(GetParam().signal));
  };
  EXPECT_EXIT(crash(), ::testing::KilledBySignal(GetParam().signal), GetParam().line);
}
INSTANTIATE_TEST_SUITE_P(
    All, CrashHandlerTest,
    ::testing::Values(
        TCrashRow{"Installed", SIGSEGV, &InstalledCall,
                  "^diagsrun: provider Acme of /root/providers/acme/lib/libacme.so crashed in "
                  "enumerateInstances .signal 11, Segmentation fault.; what was under way is not "
                  "known; `diagsrun provider remove acme` takes it out; see rule R7\n$"},
        TCrashRow{"OddName", SIGABRT, &OddCall,
                  "^diagsrun: provider A.?.2J.?.? of /lib/libacme.so crashed in cleanup .signal 6, "
                  "Aborted.; what was under way is not known; see rule R7\n$"},
        TCrashRow{"Loading", SIGBUS, &LoadingCall,
                  "^diagsrun: library /lib/libacme.so crashed in dlopen .signal 7, Bus error.; "
                  "what was under way is not known; see rule R7\n$"},
        TCrashRow{"NoCall", SIGFPE, &NoCall,
                  "^diagsrun: crashed outside of any call to a provider .signal 8, Floating point "
                  "exception.; what was under way is not known; see rule R7\n$"},
        TCrashRow{"Illegal", SIGILL, &NoCall,
                  "^diagsrun: crashed outside .*.signal 4, Illegal instruction.; .*\n$"}),
    [](const auto& row) { return row.param.name; });

class CrashTest : public CrashHandlerTest {};

TEST_F(CrashTest, OneOutsideOfCallsOnAnotherThreadSaysSo) {
  const auto crash = [] {
    InstallCrashHandler(&NoCall);
    std::thread([] { static_cast<void>(std::raise(SIGSEGV)); }).join();
  };
  EXPECT_EXIT(crash(), ::testing::KilledBySignal(SIGSEGV),
              "^diagsrun: a thread crashed outside of any call to a provider .signal 11, "
              "Segmentation fault.; a provider's library may have started it; what was under way "
              "is not known; see rule R7\n$");
}

TEST_F(CrashTest, SeveralThreadsThatCrashSayOneLine) {
  const auto crash = [] {
    InstallCrashHandler(&NoCall);
    const auto raise = [] { static_cast<void>(std::raise(SIGABRT)); };
    std::thread first(raise);
    std::thread second(raise);
    first.join();
    second.join();
  };
  EXPECT_EXIT(crash(), ::testing::KilledBySignal(SIGABRT), "^diagsrun: [^\n]*\n$");
}

TEST_F(CrashTest, AChildThatCrashesSaysNothing) {
  const auto fork = [] {
    InstallCrashHandler(&NoCall);
    const pid_t child = ::fork();
    if (child == 0) static_cast<void>(std::raise(SIGSEGV));
    int status = 0;
    ::waitpid(child, &status, 0);
    ::_exit(WIFSIGNALED(status) ? WTERMSIG(status) : 0);
  };
  EXPECT_EXIT(fork(), ::testing::ExitedWithCode(SIGSEGV), "^$");
}

TEST_F(CrashTest, ASignalThatSomebodyHandlesIsLeftToThem) {
  const auto raise = [] {
    static_cast<void>(std::signal(SIGFPE, [](int) { ::_exit(9); }));
    InstallCrashHandler(&NoCall);
    static_cast<void>(std::raise(SIGFPE));
  };
  EXPECT_EXIT(raise(), ::testing::ExitedWithCode(9), "^$");
}

}  // namespace
}  // namespace host
