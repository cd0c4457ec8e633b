// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <optional>

#include "platform/contract/TQELException.h"
#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

using NZEPQEL20::ECIMType;
using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;
using ::testing::AnyOf;

/// A world in which a test runs to "Pass", each on a road of its own.
struct TScenario {
  const char* name;
  /// Fills the world; answers with the identifier of the test to run.
  std::string (*fill)(TDiagsWorld& world);
  /// Rules that hold besides the one fault.
  const char* failedFetch;
  bool isTimed;
};

using TParameter = std::tuple<TScenario, EFault>;

std::ostream& operator<<(std::ostream& out, const TScenario& scenario) {
  return out << scenario.name;
}

std::string FillPlain(TDiagsWorld& world) {
  world.AddTest("Other", "d", "e")
      .service->Set("Characteristics", TCIMValue::Array(ECIMType::kUInt16, {TCIMValue::UInt16(2)}));
  return world.AddRunningTest("BRCM Quick", "OK").identifier;
}

std::string FillFallback(TDiagsWorld& world) {
  const auto test = world.AddRunningTest("Quick", "OK");
  const TScriptedMethod run = *test.service->FindMethod("RunDiagnostic");
  test.service->SetMethod("RunDiagnostic", {}).SetMethod("RunDiagnosticService", run);
  return test.identifier;
}

std::string FillVendor(TDiagsWorld& world) {
  const std::string name = "FIO:card:diag service";
  const auto test = world.AddTest(name, "dev0", "Device Zero");
  world.LetRun(test, world.AddJob("j", {{0, 3}, {100, 7}}));
  world.AddApplies(TCIMReference(kNamespaceText, "FIO_DiagnosticCompletionRecord",
                                 {{"InstanceID", TCIMValue("mine")}}),
                   TCIMReference(kNamespaceText, "FIO_Drive", {{"DeviceID", TCIMValue("dev0")}}));
  world.AddRecord("r", name, "mine", "Warning", "data", 1);
  return test.identifier;
}

std::string FillTimed(TDiagsWorld& world) {
  const auto test = world.AddRunningTest("Quick", "OK");
  TDiagsWorld::SetDuration(test, 4, 1);
  return test.identifier;
}

class FaultInjectionTest : public TRunnerTest, public ::testing::WithParamInterface<TParameter> {
 protected:
  FaultInjectionTest() {
    m_system.m_biosID = "P99";
    m_dataRoot.Write(kExcludedTests, "<qel version=\"1\"><test name=\"None Such\"/></qel>");
    m_dataRoot.Write(kMatrix,
                     "<m><biosid name=\"p99\"><diagnostictest name=\"None\"/></biosid></m>");
    m_dataRoot.Write(kCatalogue,
                     "<diaganalysis version=\"1\"><diagnostictest name=\"BRCM Quick\">"
                     "<result state=\"ok\"><msg>fine</msg></result></diagnostictest>"
                     "</diaganalysis>");
  }
  ~FaultInjectionTest() override { End(); }

  const TScenario& GetScenario() const { return std::get<0>(GetParam()); }
  EFault GetFault() const { return std::get<1>(GetParam()); }

  /// A world without faults but the scenario's own, and no runner.
  void Renew() {
    End();
    m_faults.Clear();
    ClearTranscript();
    m_fresh = std::make_unique<TDiagsWorld>();
    m_testID = GetScenario().fill(*m_fresh);
    m_system.m_sleepBudget = 100;
    if (GetScenario().isTimed) {
      m_system.ScriptClock({0, 30, 58, 60}, {});
    }
    if (GetScenario().failedFetch != nullptr) {
      m_faults.When(GetScenario().failedFetch, EFault::kQELException);
    }
  }
  /// Makes the runner and enumerates; empty when the runner could not be made.
  std::optional<std::string> Discover() {
    try {
      DiagsRunner* runner = DiagsRunner::GetDiagsRunner(m_fresh->GetRoot());
      return runner->EnumerateDiagTests("");
    } catch (const std::exception& error) {
      EXPECT_STREQ(error.what(), kFaultText);
    } catch (int number) {
      EXPECT_EQ(number, kFaultNumber);
    }
    return std::nullopt;
  }
  std::string RunFresh() {
    TNamespacePtr host = m_fresh->GetHost();
    return fgDiagInstance->Execute(m_testID, "Tape RW Test", host);
  }
  /// Nothing of the fault is left: a fresh runner finds the test and runs it.
  void ExpectSoundAgain() {
    Renew();
    const auto found = Discover();
    ASSERT_TRUE(found);
    EXPECT_THAT(*found, ::testing::HasSubstr(m_testID + "|"));
    EXPECT_EQ(RunFresh(), "Pass");
  }

  std::unique_ptr<TDiagsWorld> m_fresh;
  std::string m_testID;
};

/// Far more calls than any road makes.
constexpr unsigned int kTooManyCalls = 3000;

TEST_P(FaultInjectionTest, AnyCallOfADiscoveryMayFail) {
  unsigned int n = 1;
  for (; n < kTooManyCalls; ++n) {
    SCOPED_TRACE("call " + std::to_string(n));
    Renew();
    const std::string whole = m_testID + "|";
    m_faults.StrikeNth(n, GetFault());
    const auto found = Discover();
    const bool hasStruck = m_faults.HasStruck();
    m_faults.StrikeNth(0, EFault::kNone);
    if (found) {
      EXPECT_THAT(*found, AnyOf("No matching diagnostic test or device found.\n",
                                ::testing::EndsWith("|")));
      EXPECT_EQ(fgDiagInstance->EnumerateDiagTests(""), *found);
    } else {
      EXPECT_NE(GetFault(), EFault::kNull);
    }
    EXPECT_EQ(Count("budget"), 0U);
    if (!hasStruck) {
      ASSERT_TRUE(found);
      EXPECT_THAT(*found, ::testing::HasSubstr(whole));
      break;
    }
  }
  EXPECT_GT(n, 10U);
  EXPECT_LT(n, kTooManyCalls);
  ExpectSoundAgain();
}

TEST_P(FaultInjectionTest, AnyCallOfARunMayFail) {
  unsigned int n = 1;
  for (; n < kTooManyCalls; ++n) {
    SCOPED_TRACE("call " + std::to_string(n));
    Renew();
    ASSERT_TRUE(Discover());
    m_faults.StrikeNth(n, GetFault());
    std::string answer = "(none)";
    ASSERT_NO_THROW(answer = RunFresh());
    const bool hasStruck = m_faults.HasStruck();
    EXPECT_THAT(answer, AnyOf("Pass", "Fail", "Aborted", "Incomplete", "No Results.\n",
                              "No Status\n", "", "No matching diagnostic test or device found.\n",
                              " No matching diagnostic test or device found.\n"));
    EXPECT_EQ(Count("budget"), 0U) << "it would have run for ever";
    if (!hasStruck) {
      EXPECT_EQ(answer, "Pass");
      break;
    }
  }
  EXPECT_GT(n, 10U);
  EXPECT_LT(n, kTooManyCalls);
  ExpectSoundAgain();
}

TEST_P(FaultInjectionTest, AnyCallOfASecondRunMayFail) {
  unsigned int n = 1;
  for (; n < kTooManyCalls; ++n) {
    SCOPED_TRACE("call " + std::to_string(n));
    Renew();
    ASSERT_TRUE(Discover());
    ASSERT_EQ(RunFresh(), "Pass");
    if (GetScenario().isTimed) {
      m_system.ScriptClock({0, 30, 58, 60}, {});
    }
    m_faults.StrikeNth(n, GetFault());
    ASSERT_NO_THROW(RunFresh());
    EXPECT_EQ(Count("budget"), 0U) << "it would have run for ever";
    if (!m_faults.HasStruck()) {
      break;
    }
  }
  EXPECT_GT(n, 10U);
  EXPECT_LT(n, kTooManyCalls);
}

TEST_P(FaultInjectionTest, AnyCallOfAQueryMayFail) {
  unsigned int n = 1;
  for (; n < kTooManyCalls; ++n) {
    SCOPED_TRACE("call " + std::to_string(n));
    Renew();
    ASSERT_TRUE(Discover());
    ASSERT_EQ(RunFresh(), "Pass");
    TNamespacePtr host = m_fresh->GetHost();
    m_faults.StrikeNth(n, GetFault());
    try {
      EXPECT_THAT(fgDiagInstance->SimpleResults(m_testID, host), AnyOf("(Pass)", "(Fail)", ""));
      fgDiagInstance->ExtendedResults(m_testID, host);
      fgDiagInstance->EI("Test_Record", host);
      EXPECT_TRUE(GetFault() == EFault::kNull || !m_faults.HasStruck() || Count("providers") == 1U);
    } catch (const std::exception& error) {
      EXPECT_STRNE(error.what(), "");
    } catch (int number) {
      EXPECT_EQ(number, kFaultNumber);
    }
    if (!m_faults.HasStruck()) {
      break;
    }
  }
  EXPECT_GT(n, 5U);
  EXPECT_LT(n, kTooManyCalls);
}

INSTANTIATE_TEST_SUITE_P(
    Roads, FaultInjectionTest,
    ::testing::Combine(::testing::Values(TScenario{"plain", FillPlain, nullptr, false},
                                         TScenario{"fallback", FillFallback, nullptr, false},
                                         TScenario{"vendor", FillVendor, nullptr, false},
                                         TScenario{"upcalls", FillPlain,
                                                   "fetch root root/cimv2:Test_Service", false},
                                         TScenario{"timed", FillTimed, nullptr, true}),
                       ::testing::Values(EFault::kQELException, EFault::kStdException, EFault::kInt,
                                         EFault::kNull)));

}  // namespace
}  // namespace scripted
