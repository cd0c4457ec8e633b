// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

const char kService[] = "root/cimv2:Test_Service.Id=\"1\"";
const char kDevice[] = "root/cimv2:Test_Device.Id=\"1\"";

/// One thing that goes wrong with the first of two tests.
struct TRow {
  std::string call;
  EFault fault;
  std::string log;
  bool isFirstFound;
  bool isSecondFound;
};

std::ostream& operator<<(std::ostream& out, const TRow& row) {
  return out << row.call << ": " << row.fault;
}

class DiscoveryFailuresTest : public TRunnerTest, public ::testing::WithParamInterface<TRow> {};

TEST_P(DiscoveryFailuresTest, IsLoggedAndCostsOnlyWhatItMust) {
  const TRow& row = GetParam();
  m_world.AddTest("A", "d", "e");
  m_world.AddTest("B", "d", "e");
  DiagsRunner& runner = Start();
  m_faults.When(row.call, row.fault);
  std::string expected =
      std::string(row.isFirstFound ? "A,d,e|" : "") + (row.isSecondFound ? "B,d,e|" : "");
  if (expected.empty()) {
    expected = "No matching diagnostic test or device found.\n";
  }
  EXPECT_EQ(runner.EnumerateDiagTests(""), expected);
  EXPECT_THAT(Only({"log3"}), Contains("log3 " + row.log));
}

std::string OfService(const char* call) {
  return std::string(call) + kService;
}
std::string OfDevice(const char* call) {
  return std::string(call) + kDevice;
}

INSTANTIATE_TEST_SUITE_P(
    Walk, DiscoveryFailuresTest,
    ::testing::Values(TRow{"find root CIM_Available", EFault::kQELException,
                           "DiagsRunner::GetCIMData, caught qel exception", false, false},
                      TRow{"find root CIM_Available", EFault::kStdException,
                           "DiagsRunner::GetCIMData, caught exception", false, false},
                      TRow{"find root CIM_Available", EFault::kInt,
                           "DiagsRunner::GetCIMData, caught exception", false, false},
                      TRow{"enumerate", EFault::kQELException,
                           "DiagsRunner::GetCIMData, caught qel exception", false, false},
                      TRow{"enumerate", EFault::kInt, "DiagsRunner::GetCIMData, caught exception",
                           false, false},
                      TRow{"size /qdx/data/excludetestmatrix.xml", EFault::kStdException,
                           "DiagsRunner::GetCIMData, caught exception", false, false}));

INSTANTIATE_TEST_SUITE_P(
    Classes, DiscoveryFailuresTest,
    ::testing::Values(
        TRow{"find root Test_Service", EFault::kQELException,
             "DiagsRunner::GetCIMData, caught exception when get class", false, false},
        TRow{"find root Test_Device", EFault::kStdException,
             "DiagsRunner::GetCIMData, caught exception when get class", false, false},
        TRow{"find root Test_Device", EFault::kInt,
             "DiagsRunner::GetCIMData, caught exception when get class", false, false}));

INSTANTIATE_TEST_SUITE_P(
    FirstFetch, DiscoveryFailuresTest,
    ::testing::Values(
        TRow{OfService("fetch root "), EFault::kQELException,
             "DiagsRunner::GetCIMData, caught qel exception when get instRef1 instance", true,
             true},
        TRow{OfService("fetch root "), EFault::kStdException,
             "DiagsRunner::GetCIMData, caught exception when get instRef1 instance", false, true},
        TRow{OfService("fetch root "), EFault::kInt,
             "DiagsRunner::GetCIMData, caught exception when get instRef1 instance", false, true},
        TRow{OfDevice("fetch root "), EFault::kQELException,
             "DiagsRunner::GetCIMData, caught qel exception when get instRef2 instance", true,
             true},
        TRow{OfDevice("fetch root "), EFault::kStdException,
             "DiagsRunner::GetCIMData, caught exception when get instRef2 instance", false, true},
        TRow{OfDevice("fetch root "), EFault::kInt,
             "DiagsRunner::GetCIMData, caught exception when get instRef2 instance", false, true}));

const char kExclusionQEL[] =
    "DiagsRunner::GetCIMData, get qel exception when retType == EENUMTEST scripted fault";
const char kExclusionOther[] = "DiagsRunner::GetCIMData, get exception when retType == EENUMTEST";

INSTANTIATE_TEST_SUITE_P(
    Exclusion, DiscoveryFailuresTest,
    ::testing::Values(TRow{OfService("property ") + " CreationClassName", EFault::kQELException,
                           kExclusionQEL, false, true},
                      TRow{OfService("property ") + " CreationClassName", EFault::kStdException,
                           kExclusionOther, false, true},
                      TRow{OfService("property ") + " Characteristics", EFault::kQELException,
                           kExclusionQEL, false, true},
                      TRow{OfService("property ") + " Characteristics", EFault::kInt,
                           kExclusionOther, false, true},
                      TRow{OfService("value ") + " Characteristics", EFault::kQELException,
                           kExclusionQEL, false, true}));

INSTANTIATE_TEST_SUITE_P(
    Identifier, DiscoveryFailuresTest,
    ::testing::Values(
        TRow{OfDevice("property ") + " ElementName", EFault::kQELException,
             "DiagsRunner::GetCIMData, qel caught exception when diagnostic ", false, true},
        TRow{OfDevice("property ") + " DeviceID", EFault::kQELException,
             "DiagsRunner::GetCIMData, qel caught exception when diagnostic ", false, true},
        TRow{OfDevice("property ") + " DeviceID", EFault::kStdException,
             "DiagsRunner::GetCIMData, caught exception when diagnostic", false, true},
        TRow{OfDevice("property ") + " ElementName", EFault::kInt,
             "DiagsRunner::GetCIMData, caught exception when diagnostic", false, true}));

/// The retry through the upcalls of the "plugin" namespace, for either end of the association.
class PluginRetryTest : public TRunnerTest,
                        public ::testing::WithParamInterface<std::tuple<int, EFault>> {
 protected:
  bool IsService() const { return std::get<0>(GetParam()) == 1; }
  std::string GetFailedFetch() const {
    return std::string("fetch root ") + (IsService() ? kService : kDevice);
  }
  std::string GetRetriedFetch() const {
    return std::string("fetch upcall ") + (IsService() ? kService : kDevice);
  }
  std::string GetRetryFailedLog() const {
    return std::string("DiagsRunner::GetCIMData, bGetResult") + (IsService() ? "1" : "2") +
           " false, caught exception when get instRef1 instance";
  }
};

TEST_P(PluginRetryTest, FindsWhatTheFirstFetchDidNot) {
  const EFault fault = std::get<1>(GetParam());
  const bool isRetried = fault == EFault::kQELException || fault == EFault::kNull;
  m_world.AddTest("A", "d", "e");
  DiagsRunner& runner = Start();
  m_faults.When(GetFailedFetch(), fault);
  EXPECT_EQ(runner.EnumerateDiagTests(""),
            isRetried ? "A,d,e|" : "No matching diagnostic test or device found.\n");
  EXPECT_EQ(Count(GetRetriedFetch()), isRetried ? 1U : 0U);
  EXPECT_EQ(Count("upcall plugin"), isRetried ? 1U : 0U);
  EXPECT_THAT(Logs(), Not(Contains(HasSubstr("bGetResult"))));
}

TEST_P(PluginRetryTest, SkipsThePairWhenTheRetryFailsToo) {
  const EFault fault = std::get<1>(GetParam());
  m_world.AddTest("A", "d", "e");
  m_world.AddTest("B", "d", "e");
  DiagsRunner& runner = Start();
  m_faults.When(GetFailedFetch(), EFault::kQELException);
  m_faults.When(GetRetriedFetch(), fault);
  EXPECT_EQ(runner.EnumerateDiagTests(""), "B,d,e|");
  if (fault != EFault::kNull) {
    EXPECT_THAT(Logs(), Contains(GetRetryFailedLog()));
  }
}

TEST_P(PluginRetryTest, SkipsThePairWhenThereAreNoUpcalls) {
  m_world.AddTest("A", "d", "e");
  m_world.AddTest("B", "d", "e");
  DiagsRunner& runner = Start();
  m_faults.When(GetFailedFetch(), EFault::kQELException);
  m_faults.When("upcall", std::get<1>(GetParam()));
  EXPECT_EQ(runner.EnumerateDiagTests(""), "B,d,e|");
}

INSTANTIATE_TEST_SUITE_P(Ends, PluginRetryTest,
                         ::testing::Combine(::testing::Values(1, 2),
                                            ::testing::Values(EFault::kQELException,
                                                              EFault::kStdException, EFault::kInt,
                                                              EFault::kNull)));

}  // namespace
}  // namespace scripted
