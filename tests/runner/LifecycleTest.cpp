// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "platform/contract/TQELException.h"
#include "runner/DebugLog.h"
#include "tests/support/TAllocationFault.h"
#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

using NZEPQEL20::TQELException;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char kSmallCatalogue[] =
    "<diaganalysis version=\"1\"><diagnostictest name=\"Quick\"><result state=\"Failed\">"
    "<errorcode>0x12</errorcode><msg>It broke.</msg><action priority=\"1\">Mend it.</action>"
    "<oemaction priority=\"1\">Call us.</oemaction>"
    "</result></diagnostictest></diaganalysis>";

class LifecycleTest : public TRunnerTest {
 protected:
  DiagsRunner* Get() { return DiagsRunner::GetDiagsRunner(m_world.GetRoot()); }
};

TEST_F(LifecycleTest, ThereIsNoRunnerBeforeTheFirstCall) {
  EXPECT_EQ(fgDiagInstance, nullptr);
}

TEST_F(LifecycleTest, TheFirstCallMakesTheRunnerInTheFixedOrder) {
  m_dataRoot.Write(kCatalogue, kSmallCatalogue);
  DiagsRunner* runner = Get();
  EXPECT_EQ(runner, fgDiagInstance);
  EXPECT_THAT(
      Only({"log0", "log3", "bios", "size"}),
      ElementsAre("log3 Entreing DiagsRunner::DiagsRunner", "bios",
                  std::string("size ") + kCatalogue, "log3 Exiting DiagsRunner::DiagsRunner",
                  std::string("size ") + kExcludedTests));
}

TEST_F(LifecycleTest, ANewRunnerHasEmptyTables) {
  m_system.m_biosID = "P99 v2.10";
  DiagsRunner& runner = Start();
  EXPECT_EQ(TAccess::Ns(runner), m_world.GetRoot());
  EXPECT_EQ(TAccess::BiosID(runner), "p99 v2.10");
  EXPECT_TRUE(TAccess::AreHandlesEmpty(runner));
  EXPECT_FALSE(TAccess::IsThreadDone(runner));
  EXPECT_EQ(TAccess::TestList(runner), "");
  EXPECT_THAT(TAccess::Excluded(runner), IsEmpty());
  EXPECT_THAT(TAccess::Launched(runner), IsEmpty());
  EXPECT_THAT(TAccess::Finished(runner), IsEmpty());
  EXPECT_THAT(TAccess::RunArgs(runner), IsEmpty());
  EXPECT_FALSE(TAccess::RunInstance(runner));
  EXPECT_THAT(TAccess::Instances(runner), IsEmpty());
  EXPECT_THAT(TAccess::DiagNS(runner), IsEmpty());
  EXPECT_THAT(TAccess::PegasusNS(runner), IsEmpty());
}

TEST_F(LifecycleTest, WithoutACatalogueTheRunnerIsMadeWithoutAnExitTrace) {
  DiagsRunner* runner = Get();
  ASSERT_NE(runner, nullptr);
  EXPECT_THAT(TAccess::Messages(*runner), IsEmpty());
  EXPECT_THAT(Logs(), ElementsAre("Entreing DiagsRunner::DiagsRunner"));
}

TEST_F(LifecycleTest, AnEmptyCatalogueIsReadToItsEnd) {
  m_dataRoot.Write(kCatalogue, "");
  EXPECT_THAT(TAccess::Messages(*Get()), IsEmpty());
  EXPECT_THAT(Logs(),
              ElementsAre("Entreing DiagsRunner::DiagsRunner", "Exiting DiagsRunner::DiagsRunner"));
}

TEST_F(LifecycleTest, TheCatalogueIsLoadedUnderLowerCaseNames) {
  m_dataRoot.Write(kCatalogue, kSmallCatalogue);
  const auto& messages = TAccess::Messages(Start());
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages.begin()->first, "quick");
  EXPECT_EQ(messages.begin()->second.state, "failed");
  EXPECT_EQ(messages.begin()->second.errorCode, "0x12");
  EXPECT_EQ(messages.begin()->second.getMessage(), "It broke.\n1. Mend it.\n");
}

TEST_F(LifecycleTest, AnOEMBuildTakesTheOEMAdvice) {
  m_system.m_isOEM = true;
  m_dataRoot.Write(kCatalogue, kSmallCatalogue);
  const auto& messages = TAccess::Messages(Start());
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages.begin()->second.getMessage(), "It broke.\n1. Call us.\n");
}

TEST_F(LifecycleTest, ASecondCallGivesTheFirstRunnerAndReadsNothing) {
  DiagsRunner* first = Get();
  m_dataRoot.Write(kExcludedTests, "<qel version=\"1\"><test name=\"late\"/></qel>");
  ClearTranscript();
  EXPECT_EQ(DiagsRunner::GetDiagsRunner(m_world.GetHost()), first);
  EXPECT_EQ(TAccess::Ns(*first), m_world.GetRoot());
  EXPECT_THAT(TAccess::Excluded(*first), IsEmpty());
  EXPECT_THAT(TTranscript::Get().All(), IsEmpty());
}

TEST_F(LifecycleTest, TheExcludedTestsAreGatheredOnce) {
  m_dataRoot.Write(
      kExcludedTests,
      "<QEL version=\"1\"><Test name=\"b\"/><test name=\"a\"/><TEST name=\"b\"/></QEL>");
  EXPECT_THAT(TAccess::Excluded(Start()), ElementsAre("b", "a", "b"));
}

TEST_F(LifecycleTest, GatheringAgainReplacesTheList) {
  m_dataRoot.Write(kExcludedTests, "<qel version=\"1\"><test name=\"a\"/></qel>");
  DiagsRunner& runner = Start();
  m_dataRoot.Write(kExcludedTests, "<qel version=\"1\"><test name=\"z\"/></qel>");
  TAccess::GatherExcludedTests(runner);
  EXPECT_THAT(TAccess::Excluded(runner), ElementsAre("z"));
  m_dataRoot.Remove(kExcludedTests);
  TAccess::GatherExcludedTests(runner);
  EXPECT_THAT(TAccess::Excluded(runner), ElementsAre("z"));
}

TEST_F(LifecycleTest, ErrorsInTheExcludedListAreLoggedAndTheRestIsKept) {
  m_dataRoot.Write(kExcludedTests,
                   "<qel version=\"1\">\n<test id=\"1\" name=\"a\"/>\n<other/>\n"
                   "<test Name=\"x\"/>\n<test name=\"b\" zzz=\"1\"/></qel>");
  DiagsRunner* runner = Get();
  EXPECT_THAT(TAccess::Excluded(*runner), ElementsAre("a", "", "b"));
  EXPECT_THAT(Only({"log0"}), ElementsAre("log0 TPrebootTest Parser line 2:Unrecognized Attribute.",
                                          "log0 TPrebootTest Parser line 3:Unrecognized identifier",
                                          "log0 TPrebootTest Parser line 3:Unrecognized identifier",
                                          "log0 TPrebootTest Parser line 4:Unrecognized Attribute.",
                                          "log0 TPrebootTest Parser line 4:"
                                          "No Name Specified for Counter identifier"));
}

TEST_F(LifecycleTest, NoMemoryForTheCatalogueLeavesNoRunnerBehind) {
  m_dataRoot.WriteSparse(kCatalogue, 200000);
  const TAllocationFault fault(200000);
  try {
    Get();
    FAIL() << "the runner was made";
  } catch (const TQELException& error) {
    EXPECT_EQ(error.GetStatusCode().GetValue(), 4U);
  }
  EXPECT_TRUE(fault.HasStruck());
  EXPECT_EQ(fgDiagInstance, nullptr);
}

TEST_F(LifecycleTest, NoMemoryForTheExcludedListLeavesTheRunnerThatIsAlreadyRecorded) {
  m_dataRoot.WriteSparse(kExcludedTests, 200000);
  const TAllocationFault fault(200000);
  try {
    Get();
    FAIL() << "the list was read";
  } catch (const TQELException& error) {
    EXPECT_EQ(error.GetStatusCode().GetValue(), 4U);
  }
  EXPECT_TRUE(fault.HasStruck());
  ASSERT_NE(fgDiagInstance, nullptr);
  EXPECT_EQ(Get(), fgDiagInstance);
}

TEST_F(LifecycleTest, ASizeThatCannotBeHadForTheExcludedListReachesTheCaller) {
  m_faults.When(std::string("size ") + kExcludedTests, EFault::kQELException);
  EXPECT_THROW(Get(), TQELException);
}

TEST_F(LifecycleTest, FreeingKeepsThePointerAndLetsTheNamespaceGo) {
  const TNamespacePtr root = m_world.GetRoot();
  const long before = root.use_count();
  DiagsRunner* runner = Get();
  EXPECT_GT(root.use_count(), before);
  ClearTranscript();
  DiagsRunner::FreeDiagsRunner();
  EXPECT_EQ(fgDiagInstance, runner);
  EXPECT_EQ(root.use_count(), before);
  EXPECT_THAT(Logs(), IsEmpty());
  fgDiagInstance = nullptr;
}

TEST_F(LifecycleTest, FreeingWithoutARunnerDoesNothing) {
  DiagsRunner::FreeDiagsRunner();
  EXPECT_EQ(fgDiagInstance, nullptr);
  EXPECT_THAT(TTranscript::Get().All(), IsEmpty());
}

TEST_F(LifecycleTest, DebugLogTracesAtSeverityThree) {
  DebugLog("a line");
  EXPECT_THAT(TTranscript::Get().All(), ElementsAre("log3 a line"));
}

TEST_F(LifecycleTest, WithoutALoggerNothingIsLoggedAndTheRunnerIsMade) {
  m_system.m_hasLogger = false;
  m_dataRoot.Write(kCatalogue, kSmallCatalogue);
  DebugLog("a line");
  EXPECT_NE(Get(), nullptr);
  EXPECT_THAT(Logs(), IsEmpty());
}

struct TConstructionFault {
  const char* call;
  EFault fault;
};

std::ostream& operator<<(std::ostream& out, const TConstructionFault& row) {
  return out << row.call << ": " << row.fault;
}

class ConstructionFaultTest : public TRunnerTest,
                              public ::testing::WithParamInterface<TConstructionFault> {};

TEST_P(ConstructionFaultTest, LeavesTheCallerAndNoRunnerBehind) {
  m_faults.When(GetParam().call, GetParam().fault, 1);
  const TNamespacePtr root = m_world.GetRoot();
  const long before = root.use_count();
  switch (GetParam().fault) {
    case EFault::kQELException:
      EXPECT_THROW(DiagsRunner::GetDiagsRunner(root), TQELException);
      break;
    case EFault::kStdException:
      EXPECT_THROW(DiagsRunner::GetDiagsRunner(root), std::runtime_error);
      break;
    default:
      EXPECT_THROW(DiagsRunner::GetDiagsRunner(root), int);
  }
  EXPECT_EQ(fgDiagInstance, nullptr);
  EXPECT_EQ(root.use_count(), before);
  EXPECT_NE(DiagsRunner::GetDiagsRunner(root), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Calls, ConstructionFaultTest,
    ::testing::Values(TConstructionFault{"bios", EFault::kQELException},
                      TConstructionFault{"bios", EFault::kStdException},
                      TConstructionFault{"bios", EFault::kInt},
                      TConstructionFault{"root", EFault::kQELException},
                      TConstructionFault{"root", EFault::kInt},
                      TConstructionFault{"size /qdx/data/vendor", EFault::kQELException},
                      TConstructionFault{"size /qdx/data/vendor", EFault::kStdException},
                      TConstructionFault{"size /qdx/data/vendor", EFault::kInt}));

}  // namespace
}  // namespace scripted
