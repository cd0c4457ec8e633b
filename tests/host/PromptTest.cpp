// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <ostream>
#include <string>

#include "host/Prompt.h"
#include "host/TUsageError.h"
#include "tests/host/TTerminalChild.h"

namespace host {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

constexpr char kQuestion[] = "Password for me: ";

std::string Ask() {
  try {
    return "answer: " + AskSecret(kQuestion).Get();
  } catch (const TUsageError& e) {
    return std::string("error: ") + e.what();
  }
}

struct TTyped {
  const char* name;
  std::string typed;
  std::string result;
  bool isWhole = true;  // Else `result` is only how it starts.
};
void PrintTo(const TTyped& row, std::ostream* out) {
  *out << row.name;
}

class TypedTest : public ::testing::TestWithParam<TTyped> {};

TEST_P(TypedTest, IsReadAndNeverShown) {
  TTerminalChild child(&Ask);
  ASSERT_TRUE(child.WaitForScreen(kQuestion));
  EXPECT_FALSE(child.HasEcho());
  child.Type(GetParam().typed);
  EXPECT_EQ(child.Wait(), 0);
  const std::string start = child.GetResult().substr(0, GetParam().result.size());
  EXPECT_EQ(GetParam().isWhole ? child.GetResult() : start, GetParam().result);
  EXPECT_EQ(child.GetScreen(), std::string(kQuestion) + "\r\n");
  EXPECT_TRUE(child.HasEcho());
}
INSTANTIATE_TEST_SUITE_P(
    All, TypedTest,
    ::testing::Values(TTyped{"Word", "sesame\n", "answer: sesame"},
                      TTyped{"Return", "sesame\r", "answer: sesame"},
                      TTyped{"Nothing", "\n", "answer: "},
                      TTyped{"Blanks", " correct horse \n", "answer:  correct horse "},
                      TTyped{"Utf8", "p\xc3\xa4\xe2\x82\xac\n", "answer: p\xc3\xa4\xe2\x82\xac"},
                      TTyped{"Corrected",
                             "sesamx\x7f"
                             "e\n",
                             "answer: sesame"},
                      TTyped{"EndInTheMiddle",
                             "ses\x04"
                             "ame\n",
                             "answer: sesame"},
                      TTyped{"Longest", std::string(1024, 'x') + "\n",
                             "answer: " + std::string(1024, 'x')},
                      TTyped{"TooLong", std::string(1025, 'x') + "\n",
                             "error: password: is longer than 1024", false},
                      TTyped{"Tab", "se\tsame\n", "error: password: holds a control character"},
                      TTyped{"Escape", "\x1b[A\n", "error: password: holds a control character"},
                      TTyped{"End", "\x04", "error: password: the terminal's input ended", false}),
    [](const auto& row) { return row.param.name; });

TEST(PromptTest, ShowsAgainWhatIsTypedAfterCtrlC) {
  TTerminalChild child(&Ask);
  ASSERT_TRUE(child.WaitForScreen(kQuestion));
  child.Type("ses\x03");
  EXPECT_EQ(child.Wait(), 128 + SIGINT);
  EXPECT_TRUE(child.HasEcho());
  EXPECT_THAT(child.GetScreen(), Not(HasSubstr("ses")));
}

class PromptSignalTest : public ::testing::TestWithParam<int> {};

TEST_P(PromptSignalTest, EndsTheProcessAndLeavesTheTerminalAsItWas) {
  TTerminalChild child(&Ask);
  ASSERT_TRUE(child.WaitForScreen(kQuestion));
  ASSERT_EQ(::kill(child.GetPid(), GetParam()), 0);
  EXPECT_EQ(child.Wait(), 128 + GetParam());
  EXPECT_TRUE(child.HasEcho());
}
INSTANTIATE_TEST_SUITE_P(All, PromptSignalTest,
                         ::testing::Values(SIGINT, SIGTERM, SIGHUP, SIGQUIT));

TEST(PromptTest, KeepsIgnoringWhatTheCallerIgnored) {
  TTerminalChild child([] {
    static_cast<void>(::signal(SIGHUP, SIG_IGN));
    return Ask();
  });
  ASSERT_TRUE(child.WaitForScreen(kQuestion));
  ASSERT_EQ(::kill(child.GetPid(), SIGHUP), 0);
  child.Type("sesame\n");
  EXPECT_EQ(child.Wait(), 0);
  EXPECT_EQ(child.GetResult(), "answer: sesame");
}

TEST(PromptTest, EndsWhenTheTerminalHangsUp) {
  TTerminalChild child(&Ask);
  ASSERT_TRUE(child.WaitForScreen(kQuestion));
  child.HangUp();
  EXPECT_EQ(child.Wait(), 128 + SIGHUP);
}

// As under a shell: the one who asks is in a process group of its own, in the foreground.
std::string AskAsAJob() {
  static_cast<void>(::signal(SIGTTOU, SIG_IGN));
  const pid_t job = ::fork();
  if (job == 0) {
    ::setpgid(0, 0);
    ::tcsetpgrp(STDIN_FILENO, ::getpid());
    static_cast<void>(::signal(SIGTTOU, SIG_DFL));
    ::_exit(Ask() == "answer: sesame" ? 7 : 8);
  }
  int status = 0;
  if (::waitpid(job, &status, WUNTRACED) != job || !WIFSTOPPED(status)) return "never stopped";
  if (::write(STDOUT_FILENO, "stopped\n", 8) != 8) return "no output";
  char go = 0;
  ::tcsetpgrp(STDIN_FILENO, ::getpgrp());
  if (::read(STDIN_FILENO, &go, 1) != 1) return "no input";
  ::tcsetpgrp(STDIN_FILENO, job);
  ::kill(job, SIGCONT);
  ::waitpid(job, &status, 0);
  return WIFEXITED(status) ? "ended with " + std::to_string(WEXITSTATUS(status)) : "killed";
}

TEST(PromptTest, ThatIsStoppedGivesTheTerminalBackAndAsksAgainLater) {
  TTerminalChild child(&AskAsAJob);
  ASSERT_TRUE(child.WaitForScreen(kQuestion));
  EXPECT_FALSE(child.HasEcho());
  child.Type("ses\x1a");
  ASSERT_TRUE(child.WaitForScreen("stopped"));
  EXPECT_TRUE(child.HasEcho());
  child.Type("\n");
  ASSERT_TRUE(child.WaitForScreen(kQuestion));
  EXPECT_FALSE(child.HasEcho());
  child.Type("sesame\n");
  EXPECT_EQ(child.Wait(), 0);
  EXPECT_EQ(child.GetResult(), "ended with 7");
}

TEST(PromptTest, SaysWhenThereIsNoTerminal) {
  TTerminalChild child([] {
    // A grandchild in a session of its own has none.
    const pid_t orphan = ::fork();
    if (orphan == 0) {
      ::setsid();
      const std::string result = Ask();
      ::_exit(result.rfind("error: password: no terminal to ask: ", 0) == 0 ? 7 : 8);
    }
    int status = 0;
    ::waitpid(orphan, &status, 0);
    return std::to_string(WEXITSTATUS(status));
  });
  EXPECT_EQ(child.Wait(), 0);
  EXPECT_EQ(child.GetResult(), "7");
}

TEST(TerminalChildTest, ShowsTheScreenTheResultAndTheEnd) {
  TTerminalChild child([] {
    std::string line(3, ' ');
    if (::write(STDOUT_FILENO, "hello", 5) != 5 || ::read(STDIN_FILENO, line.data(), 3) != 3) {
      return std::string("broken");
    }
    return line;
  });
  ASSERT_TRUE(child.WaitForScreen("hello"));
  EXPECT_TRUE(child.HasEcho());
  child.Type("ab\n");
  EXPECT_EQ(child.Wait(), 0);
  EXPECT_EQ(child.GetResult(), "ab\n");
  EXPECT_EQ(child.GetScreen(), "helloab\r\n");
  EXPECT_FALSE(child.WaitForScreen("never"));
}

}  // namespace
}  // namespace host
