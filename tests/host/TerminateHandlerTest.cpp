// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "host/TerminateHandler.h"

namespace host {
namespace {

struct TEndRow {
  const char* name;
  std::function<void()> end;
  const char* line;
};
void PrintTo(const TEndRow& row, std::ostream* out) {
  *out << row.name;
}

class TerminateHandlerTest : public ::testing::TestWithParam<TEndRow> {};

TEST_P(TerminateHandlerTest, SaysOneLineAndExitsAsNotFinished) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto endInThread = [] {
    InstallTerminateHandler(nullptr);
    std::thread(GetParam().end).join();
  };
  EXPECT_EXIT(endInThread(), ::testing::ExitedWithCode(2), GetParam().line);
}
INSTANTIATE_TEST_SUITE_P(
    All, TerminateHandlerTest,
    ::testing::Values(TEndRow{"Exception", [] { throw std::runtime_error("gone"); },
                              "^diagsrun: gone; the test's outcome is not known\n$"},
                      TEndRow{"UnsafeText", [] { throw std::runtime_error("a\x1b[2J\nb"); },
                              "^diagsrun: a.x1b.2J.x0ab; the test's outcome is not known\n$"},
                      TEndRow{"NoMemory", [] { throw std::bad_alloc(); },
                              "^diagsrun: .*bad_alloc; the test's outcome is not known\n$"},
                      TEndRow{"SomethingElse", [] { throw 1; },
                              "^diagsrun: failed for a reason that it did not give; the test's "
                              "outcome is not known\n$"},
                      TEndRow{"NoException", [] { std::terminate(); },
                              "^diagsrun: ended without a reason; the test's outcome is not "
                              "known\n$"}),
    [](const auto& row) { return row.param.name; });

NZEPQEL20::TProviderCallNames GetLoading() noexcept {
  return {nullptr, "/x/libacme.so", "dlopen"};
}
NZEPQEL20::TProviderCallNames GetCalled() noexcept {
  return {"Acme", "/x/libacme.so", "getInstance"};
}

TEST(TerminateCallTest, NamesTheLibraryThatLetTheExceptionOut) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto end = [] {
    InstallTerminateHandler(&GetLoading);
    std::thread([] { throw std::runtime_error("gone"); }).join();
  };
  EXPECT_EXIT(end(), ::testing::ExitedWithCode(2),
              "^diagsrun: library /x/libacme.so \\(dlopen\\) let an exception out that nothing can "
              "catch: gone; the test's outcome is not known\n$");
}

TEST(ExitGuardTest, AnExitInAProvidersFunctionNamesIt) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto endGuarded = [] {
    InstallTerminateHandler(&GetCalled);
    const TExitGuard guard;
    std::exit(0);
  };
  EXPECT_EXIT(endGuarded(), ::testing::ExitedWithCode(2),
              "^diagsrun: provider Acme of /x/libacme.so \\(getInstance\\) ended the process; what "
              "was under way is not known; see rule R7\n$");
}

TEST(ExitGuardTest, AnExitWhileItLivesIsSaidAndIsNotThatOfAPass) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto endGuarded = [] {
    const TExitGuard guard;
    std::exit(0);
  };
  EXPECT_EXIT(endGuarded(), ::testing::ExitedWithCode(2),
              "^diagsrun: a provider's library ended the process; what was under way is not known; "
              "see rule R7\n$");
}

TEST(ExitGuardTest, AnExitAfterItsEndIsThatOfTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto end = [] {
    { const TExitGuard guard; }
    std::exit(3);
  };
  EXPECT_EXIT(end(), ::testing::ExitedWithCode(3), "^$");
}

TEST(ExitGuardTest, AChildProcessEndsAsItLikes) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto fork = [] {
    const TExitGuard guard;
    const pid_t child = ::fork();
    if (child == 0) std::exit(5);
    int status = 0;
    ::waitpid(child, &status, 0);
    ::_exit(WEXITSTATUS(status));
  };
  EXPECT_EXIT(fork(), ::testing::ExitedWithCode(5), "^$");
}

// A text that there is no memory for a copy of.
class THugeText : public std::exception {
 public:
  explicit THugeText(const std::vector<char>& text) : m_text(text) {}
  const char* what() const noexcept override { return m_text.data(); }

 private:
  const std::vector<char>& m_text;
};

TEST(TerminateHandlerMemoryTest, ATextThatNoMemoryIsLeftForStillEndsInOneLine) {
#ifdef DIAGSRUNNER_SANITIZED
  GTEST_SKIP() << "a sanitizer needs the memory that this takes away";
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizer needs the memory itself";
#else
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto endInThread = [] {
    InstallTerminateHandler(nullptr);
    constexpr std::size_t kHuge = std::size_t{64} << 20U;
    std::vector<char> text(kHuge, 'x');
    text.back() = '\0';
    std::thread([&text] {
      const rlimit none{1, 1};
      ::setrlimit(RLIMIT_AS, &none);
      throw THugeText(text);
    }).join();
  };
  EXPECT_EXIT(endInThread(), ::testing::ExitedWithCode(2),
              "^diagsrun: out of memory; the test's outcome is not known\n$");
#endif
}

TEST(LastWordsTest, ComeBeforeTheLine) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto end = [] {
    InstallTerminateHandler(nullptr);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    const TLastWordsHold hold(
        [](const std::string& reason) { return "because: " + reason + "\n"; });
    std::thread([] { throw std::runtime_error("gone"); }).join();
  };
  EXPECT_EXIT(end(), ::testing::ExitedWithCode(2), "because: gone\ndiagsrun: gone; ");
}

TEST(LastWordsTest, ThatFailAreLetGo) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto end = [] {
    InstallTerminateHandler(nullptr);
    const TLastWordsHold hold([](const std::string&) -> std::string { throw std::bad_alloc(); });
    std::thread([] { throw std::runtime_error("gone"); }).join();
  };
  EXPECT_EXIT(end(), ::testing::ExitedWithCode(2),
              "^diagsrun: gone; the test's outcome is not known");
}

TEST(LastWordsTest, AreNotSaidWhenTheHoldIsOver) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto end = [] {
    InstallTerminateHandler(nullptr);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    {
      const TLastWordsHold hold([](const std::string&) { return "never\n"; });
    }
    std::thread([] { throw std::runtime_error("gone"); }).join();
  };
  EXPECT_EXIT(end(), ::testing::ExitedWithCode(2), "diagsrun: gone; ");
  EXPECT_EXIT(end(), ::testing::ExitedWithCode(2), ::testing::Not(::testing::HasSubstr("never")));
}

// What was held back of standard output goes to where standard error does, so that it is seen.
void EndWithHeldOutput(bool isLocked) {
  InstallTerminateHandler(nullptr);
  ::dup2(STDERR_FILENO, STDOUT_FILENO);
  static_cast<void>(std::setvbuf(stdout, nullptr, _IOFBF, BUFSIZ));
  static_cast<void>(std::fputs("half ", stdout));
  if (isLocked) ::flockfile(stdout);
  std::thread([] { throw std::runtime_error("gone"); }).join();
}

TEST(TerminateHandlerOutputTest, WhatWasHeldBackOfStandardOutputIsWritten) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(EndWithHeldOutput(false), ::testing::ExitedWithCode(2), "half diagsrun: gone");
}

TEST(TerminateHandlerOutputTest, AStreamThatAnotherThreadHoldsIsNotWaitedFor) {
#ifdef DIAGSRUNNER_SANITIZED
  GTEST_SKIP() << "a sanitizer waits for the stream at the end of the process";
#endif
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(EndWithHeldOutput(true), ::testing::ExitedWithCode(2), "^diagsrun: gone");
}

}  // namespace
}  // namespace host
