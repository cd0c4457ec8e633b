// SPDX-License-Identifier: Apache-2.0
//
// Provider libraries that have the process ignore SIGCHLD.
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "platform/cmpi/TCMPIOperations.h"
#include "platform/cmpi/TChildSignalWatch.h"
#include "tests/platform/cmpi/operations/TKeptLog.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20 {
namespace {

using cmpi::TChildSignalWatch;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

void Handle(int) {}

struct sigaction Action(void (*handler)(int), int flags = 0) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  return action;
}

void Set(const struct sigaction& action) {
  ::sigaction(SIGCHLD, &action, nullptr);
}

struct sigaction Get() {
  struct sigaction action = {};
  ::sigaction(SIGCHLD, nullptr, &action);
  return action;
}

/// Each test finds and leaves the signal as it is by default.
class ChildSignalTest : public testing::Test {
 protected:
  ChildSignalTest() { Set(Action(SIG_DFL)); }
  ~ChildSignalTest() override {
    m_operations.reset();
    Set(Action(SIG_DFL));
  }

  void Open(const std::string& provider, const std::string& library) {
    const std::string file = "lib" + library + ".so";
    // A copy: what it does when it is loaded is wanted in each round of the tests.
    std::filesystem::copy_file(WORKSHOP_DIR "/" + file, m_folder.GetPath(file));
    auto classes = std::make_shared<TClassRepository>();
    ASSERT_THAT(classes->Load(WORKSHOP_DIR "/misfit.mof"), IsEmpty());
    TRegistrations registrations;
    registrations.Load(m_folder.Write(
        "m.registration", "M_Thing root/x " + provider + ' ' + library + " instance\n"));
    m_operations = std::make_unique<TCMPIOperations>(classes, registrations);
  }
  void Ask() {
    m_operations->GetInstance(TCIMReference("root/x", "M_Thing", {{"Id", TCIMValue("T1")}}));
  }

  const TTemporaryFolder m_folder;
  TKeptLog m_log{"SIGCHLD"};
  std::unique_ptr<TCMPIOperations> m_operations;
};

/// What a child process returned; -1 when nobody can tell.
int RunChild() {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(7);
  int status = 0;
  return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

struct TCase {
  const char* name;
  const char* provider;
  const char* library;
};

void PrintTo(const TCase& row, std::ostream* out) {
  *out << row.name;
}

class IgnoringLibraryTest : public ChildSignalTest, public testing::WithParamInterface<TCase> {};

TEST_P(IgnoringLibraryTest, CostsNobodyTheStatusOfAChildAndIsToldOnce) {
  Open(GetParam().provider, GetParam().library);
  Ask();
  EXPECT_EQ(RunChild(), 7);
  Ask();
  EXPECT_EQ(RunChild(), 7);
  EXPECT_THAT(m_log.lines,
              ElementsAre(AllOf(HasSubstr(m_folder.GetPath()), HasSubstr(GetParam().library),
                                HasSubstr("SIGCHLD"), HasSubstr("rule R25"))));
}

INSTANTIATE_TEST_SUITE_P(All, IgnoringLibraryTest,
                         testing::Values(TCase{"InACall", "Misfit_Ignoring", "misfit"},
                                         TCase{"WithoutWaiting", "Misfit_NoWait", "misfit"},
                                         TCase{"InItsFactory", "Misfit_Maker", "misfit"},
                                         TCase{"WhenLoaded", "Misfit_0", "misfitatload"}),
                         [](const auto& row) { return row.param.name; });

TEST_F(ChildSignalTest, ALibraryThatLeavesTheSignalAloneIsNotTold) {
  Open("Misfit_0", "misfit");
  Ask();
  EXPECT_THAT(m_log.lines, IsEmpty());
}

TEST_F(ChildSignalTest, WhatWasThereBeforeIsWhatIsPutBack) {
  Set(Action(Handle, SA_RESTART));
  {
    // Each library is told of once: its name is of this round alone.
    const std::string library = m_folder.GetPath("before.so");
    const TChildSignalWatch watch(library.c_str());
    Set(Action(SIG_IGN));
  }
  EXPECT_EQ(Get().sa_handler, &Handle);
  EXPECT_NE(Get().sa_flags & SA_RESTART, 0);
  EXPECT_EQ(m_log.lines.size(), 1U);
}

TEST_F(ChildSignalTest, AHandlerOfTheLibrarysOwnStays) {
  {
    const TChildSignalWatch watch("/lib/handler.so");
    Set(Action(Handle));
  }
  EXPECT_EQ(Get().sa_handler, &Handle);
  EXPECT_THAT(m_log.lines, IsEmpty());
}

TEST_F(ChildSignalTest, AHostThatIgnoresTheSignalGoesOnDoingSo) {
  Set(Action(SIG_IGN));
  {
    const TChildSignalWatch watch("/lib/host.so");
    Set(Action(SIG_DFL, SA_NOCLDWAIT));
  }
  EXPECT_EQ(Get().sa_flags & SA_NOCLDWAIT, SA_NOCLDWAIT);
  EXPECT_THAT(m_log.lines, IsEmpty());
}

}  // namespace
}  // namespace NZEPQEL20
