// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>

#include "platform/contract/TOSSpecific.h"
#include "platform/contract/TQELException.h"
#include "platform/contract/TRootObject.h"
#include "tests/support/TAllocationFault.h"
#include "tests/support/TDataRoot.h"
#include "tests/support/TFaultPlan.h"
#include "tests/support/TScriptedSystem.h"
#include "tests/support/TTranscript.h"

namespace scripted {
namespace {

using NZEPQEL20::ILogger;
using NZEPQEL20::TOSSpecific;
using NZEPQEL20::TQELException;
using NZEPQEL20::TRootObject;
using ::testing::Contains;
using ::testing::ElementsAre;

class ScriptedSystemTest : public ::testing::Test {
 protected:
  ScriptedSystemTest() {
    TFaultPlan::Get().Clear();
    m_system.Start();
    TTranscript::Get().Clear();
  }
  ~ScriptedSystemTest() override { m_system.Stop(); }

  TScriptedSystem& m_system = TScriptedSystem::Get();
};

TEST_F(ScriptedSystemTest, SleepsWithoutTakingTime) {
  EXPECT_EQ(::sleep(1000), 0U);
  EXPECT_THAT(TTranscript::Get().All(), ElementsAre("sleep 1000"));
}

TEST_F(ScriptedSystemTest, EndsASleeperWhoseBudgetIsSpent) {
  m_system.m_sleepBudget = 1;
  ::sleep(5);
  EXPECT_THROW(::sleep(5), TSleepBudgetSpent);
  EXPECT_THAT(TTranscript::Get().All(), ElementsAre("sleep 5", "budget spent"));
}

TEST_F(ScriptedSystemTest, AnswersTheTrueTimeWithoutAClockScript) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  EXPECT_NEAR(static_cast<double>(::time(nullptr)), static_cast<double>(now.tv_sec), 2.0);
}

TEST_F(ScriptedSystemTest, PlaysTheClockScriptWithItsHooksAndStaysAtItsEnd) {
  int hooks = 0;
  m_system.ScriptClock({100, 160}, {{1, [&hooks] { ++hooks; }}});
  std::time_t stored = 0;
  EXPECT_EQ(::time(&stored), 100);
  EXPECT_EQ(stored, 100);
  EXPECT_EQ(hooks, 0);
  EXPECT_EQ(::time(nullptr), 160);
  EXPECT_EQ(::time(nullptr), 160);
  EXPECT_EQ(hooks, 1);
  EXPECT_DOUBLE_EQ(::difftime(160, 100), 60.0);
}

TEST_F(ScriptedSystemTest, WritesShellCommandsDownAndRunsNone) {
  const TDataRoot root;
  const std::string file = root.GetPath() + "/touched";
  EXPECT_EQ(std::system(("touch " + file).c_str()), 0);
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_THAT(TTranscript::Get().All(), ElementsAre("system touch " + file));
}

TEST_F(ScriptedSystemTest, AnswersForTheMachineAndItsConfiguration) {
  m_system.m_biosID = "K01";
  m_system.m_root = "/somewhere";
  m_system.m_isOEM = true;
  EXPECT_EQ(TOSSpecific::GetBiosID(), "K01");
  EXPECT_EQ(TOSSpecific::GetQELRootPath(), "/somewhere");
  EXPECT_TRUE(TOSSpecific::isOEMBuild());
}

TEST_F(ScriptedSystemTest, ReportsTrueSizesUnlessScripted) {
  const TDataRoot root;
  m_system.m_root = root.GetPath();
  root.Write(kMatrix, "12345");
  EXPECT_EQ(TOSSpecific::GetFileSize(root.GetPath() + kMatrix), 5U);
  EXPECT_EQ(TOSSpecific::GetFileSize(root.GetPath() + kCatalogue), 0U);
  EXPECT_THROW(TOSSpecific::GetFileSize(root.GetPath()), TQELException);
  m_system.m_fileSizes[kMatrix] = 9;
  EXPECT_EQ(TOSSpecific::GetFileSize(root.GetPath() + kMatrix), 9U);
  EXPECT_THAT(TTranscript::Get().All(), Contains(std::string("size ") + kCatalogue));
}

TEST_F(ScriptedSystemTest, RecordsLogLinesWithTheirSeverity) {
  TRootObject::GetCoreLogger()->Log(ILogger::kTrace, "entering\n");
  TRootObject::GetCoreLogger()->Log(ILogger::kError, "broken");
  EXPECT_THAT(TTranscript::Get().All(), ElementsAre("log3 entering\\n", "log0 broken"));
  m_system.m_hasLogger = false;
  EXPECT_EQ(TRootObject::GetCoreLogger(), nullptr);
}

TEST_F(ScriptedSystemTest, FailsOneLargeArrayAllocationAndNoOther) {
  const TAllocationFault fault(1000);
  const std::unique_ptr<char[]> small(new char[999]);
  EXPECT_FALSE(fault.HasStruck());
  EXPECT_THROW(std::unique_ptr<char[]>(new char[1000]), std::bad_alloc);
  EXPECT_TRUE(fault.HasStruck());
  EXPECT_NE(std::unique_ptr<char[]>(new char[1000]), nullptr);
}

TEST_F(ScriptedSystemTest, FailsANothrowArrayAllocationWithNull) {
  const TAllocationFault fault(1000);
  EXPECT_EQ(std::unique_ptr<char[]>(new (std::nothrow) char[5000]), nullptr);
  EXPECT_NE(std::unique_ptr<char[]>(new (std::nothrow) char[5000]), nullptr);
}

TEST_F(ScriptedSystemTest, FailsNoAllocationOnceTheFaultIsGone) {
  { const TAllocationFault fault(1000); }
  EXPECT_NE(std::unique_ptr<char[]>(new char[5000]), nullptr);
}

TEST_F(ScriptedSystemTest, KeepsAFolderOfItsOwnAndRemovesIt) {
  std::string path;
  {
    const TDataRoot root;
    path = root.GetPath();
    root.WriteSparse(kCatalogue, 100000);
    EXPECT_EQ(std::filesystem::file_size(path + kCatalogue), 100000U);
    root.Remove(kCatalogue);
    root.MakeDirectory(kCatalogue);
    EXPECT_TRUE(std::filesystem::is_directory(path + kCatalogue));
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
}  // namespace scripted
