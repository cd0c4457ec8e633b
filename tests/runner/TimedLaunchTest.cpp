// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

using NZEPQEL20::ECIMType;
using NZEPQEL20::TCIMValue;
using ::testing::HasSubstr;
using ::testing::StartsWith;

struct TRow {
  TCIMValue unit;
  TCIMValue count;
};

std::ostream& operator<<(std::ostream& out, const TRow& row) {
  return out << "unit '" << row.unit.ToString(10) << "', count '" << row.count.ToString(10) << "'";
}

class UntimedLaunchTest : public TRunnerTest, public ::testing::WithParamInterface<TRow> {};

TEST_P(UntimedLaunchTest, RunsWithoutAProgressDisplay) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  test.association->Set("EstimatedDurationOfService", GetParam().unit)
      .Set("EstimatedDurationQualifier", GetParam().count);
  DiagsRunner& runner = StartAndEnumerate();
  EXPECT_EQ(Run(runner, test.identifier), "Pass");
  EXPECT_EQ(Output().find("\\b"), std::string::npos);
  EXPECT_EQ(Count("sleep 1"), 0U);
  EXPECT_FALSE(TAccess::IsThreadDone(runner));
}

TCIMValue Unit(unsigned int unit) {
  return TCIMValue::UInt16(static_cast<std::uint16_t>(unit));
}

INSTANTIATE_TEST_SUITE_P(
    Durations, UntimedLaunchTest,
    ::testing::Values(TRow{TCIMValue::Null(ECIMType::kUInt16), TCIMValue::Null(ECIMType::kUInt32)},
                      TRow{TCIMValue::Null(ECIMType::kUInt16), TCIMValue::UInt32(2)},
                      TRow{Unit(4), TCIMValue::Null(ECIMType::kUInt32)},
                      TRow{Unit(4), TCIMValue::UInt32(0)}, TRow{Unit(3), TCIMValue::UInt32(2)},
                      TRow{Unit(0), TCIMValue::UInt32(2)}));

class TimedLaunchTest : public TRunnerTest {
 protected:
  /// A test whose method waits at m_gate and then hands over `job`.
  TTest AddTimedTest(const TObjectPtr& job, unsigned int unit, unsigned int count) {
    const TTest test = m_world.AddTest("Quick", "cpu0", "P");
    TDiagsWorld::SetDuration(test, unit, count);
    TScriptedMethod method;
    method.gate = m_gate;
    if (job) {
      method.outParameters["Job"] = TCIMValue(job->GetPath());
    }
    test.service->SetMethod("RunDiagnostic", method);
    return test;
  }
  /// The method is inside before the first figure, and let go when the clock shows the last.
  void ScriptSeconds(const std::vector<std::time_t>& seconds) {
    m_system.ScriptClock(seconds, {{0, [this] { m_isReached = m_gate->WaitUntilReached(); }},
                                   {seconds.size() - 1, [this] { m_gate->Open(); }}});
  }

  std::shared_ptr<TGate> m_gate = std::make_shared<TGate>();
  bool m_isReached = false;
};

TEST_F(TimedLaunchTest, ShowsTheEstimateWhileTheMethodRunsAndThenTracksItsJob) {
  const TObjectPtr job = m_world.AddJob("j", {{100, 7}});
  const TTest test = AddTimedTest(job, 4, 2);
  m_world.AddRecord("r", "Quick", "j", "OK", "data");
  DiagsRunner& runner = StartAndEnumerate();
  ScriptSeconds({500, 512, 572});
  EXPECT_EQ(Run(runner, test.identifier), "Pass");
  EXPECT_TRUE(m_isReached);
  EXPECT_TRUE(TAccess::IsThreadDone(runner));
  EXPECT_EQ(Output(),
            "10%\\b\\b\\b60%\\b\\b\\b70%\\b\\b\\b80%\\b\\b\\b90%\\b\\b\\b100%\\b\\b\\b\\b"
            "\\b\\b\\b\\b    \\nPercent Complete: 100%\\n");
  EXPECT_EQ(Count("sleep 1"), 4U);
  EXPECT_EQ(Count("invoke root/cimv2:Test_Service.Id=\"1\" RunDiagnostic "
                  "{ManagedElement=root/cimv2:Test_Device.Id=\"1\"}"),
            1U);
}

TEST_F(TimedLaunchTest, TakesTheCountForMinutesWhateverTheUnitSays) {
  const TTest test = AddTimedTest(m_world.AddJob("j", {{100, 7}}), 5, 1);
  DiagsRunner& runner = StartAndEnumerate();
  ScriptSeconds({0, 30, 60});
  Run(runner, test.identifier);
  EXPECT_THAT(Output(), StartsWith("50%\\b\\b\\b\\b\\b\\b\\b99%\\b\\b\\b\\b    "));
}

TEST_F(TimedLaunchTest, MakesTheFallbackCallWithoutProgress) {
  const TTest test = AddTimedTest(nullptr, 4, 1);
  m_world.LetRun(test, m_world.AddJob("j", {{100, 7}}), "RunDiagnosticService");
  m_world.AddRecord("r", "Quick", "j", "Failed", "data");
  DiagsRunner& runner = StartAndEnumerate();
  ScriptSeconds({0, 59});
  EXPECT_EQ(Run(runner, test.identifier), "Fail");
  EXPECT_THAT(Output(), StartsWith("98%\\b\\b\\b\\b\\b\\b\\b    \\nPercent Complete: 100%"));
  EXPECT_EQ(Count("invoke"), 2U);
}

TEST_F(TimedLaunchTest, ASecondTimedRunShowsItsOwnEstimate) {
  const TTest test = AddTimedTest(m_world.AddJob("j", {{100, 7}}), 4, 1);
  DiagsRunner& runner = StartAndEnumerate();
  ScriptSeconds({0, 58});
  Run(runner, test.identifier);
  ClearTranscript();
  m_gate = std::make_shared<TGate>();
  TScriptedMethod method = *test.service->FindMethod("RunDiagnostic");
  method.gate = m_gate;
  test.service->SetMethod("RunDiagnostic", method);
  ScriptSeconds({1000, 1030, 1058});
  Run(runner, test.identifier);
  EXPECT_THAT(Output(), HasSubstr("50%\\b\\b\\b96%"));
}

}  // namespace
}  // namespace scripted
