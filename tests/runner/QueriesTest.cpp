// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "platform/contract/TQELException.h"
#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

using NZEPQEL20::ECIMType;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TQELException;
using ::testing::ElementsAre;

const char kNoExtended[] = "No extended results.\n";

class QueriesTest : public TRunnerTest {
 protected:
  DiagsRunner& Prepare(const std::string& testID) {
    DiagsRunner& runner = Start();
    TAccess::DiagNS(runner)[testID] = TCIMValue("cmpi");
    TAccess::Finished(runner)[testID] = "j";
    return runner;
  }
  std::string Simple(const std::string& testID) {
    return fgDiagInstance->SimpleResults(testID, m_host);
  }
  std::string Extended(const std::string& testID) {
    return fgDiagInstance->ExtendedResults(testID, m_host);
  }
};

TEST_F(QueriesTest, SimpleAnswersWithTheWordInParentheses) {
  m_world.AddRecord("r", "Quick", "j", "OK", "data");
  Prepare("Quick,d,e");
  EXPECT_EQ(Simple("Quick,d,e"), "(Pass)");
  EXPECT_THAT(Logs(), ElementsAre("Entering DiagsRunner::SimpleResults"));
  EXPECT_EQ(Count("find root CIM_DiagnosticCompletionRecord {nspID=cmpi}"), 1U);
  EXPECT_THAT(Only({"enumerate", "sleep", "set", "copy"}),
              ElementsAre("enumerate CIM_DiagnosticCompletionRecord deep=1 {nspID=cmpi}"));
}

TEST_F(QueriesTest, SimpleTracesTheStateOfTheVendorWhoseWarningsPass) {
  m_world.AddRecord("r", "FIO:1:diag service", "j", "Warning", "data");
  Prepare("FIO:1:diag service,d,e");
  EXPECT_EQ(Simple("FIO:1:diag service,d,e"), "(Pass)");
  EXPECT_THAT(Logs(), ElementsAre("Entering DiagsRunner::SimpleResults", "tempResult :Warning"));
}

TEST_F(QueriesTest, SimpleAddsAnUnknownIdentifierToTheCatalogue) {
  DiagsRunner& runner = Start();
  EXPECT_EQ(Simple("a,b,c"), "");
  ASSERT_EQ(TAccess::DiagNS(runner).count("a,b,c"), 1U);
  EXPECT_TRUE(TAccess::DiagNS(runner)["a,b,c"].IsNull());
  EXPECT_THAT(Logs(), ElementsAre("Entering DiagsRunner::SimpleResults",
                                  "DiagsRunner::SimpleResults  - No Valid Instance Found",
                                  "DiagsRunner::SimpleResults - Returning: No extended results",
                                  "Exiting DiagsRunner::SimpleResults"));
  EXPECT_EQ(Extended("a,b,c"), kNoExtended);
}

TEST_F(QueriesTest, SimpleAddsEvenWhatCannotBeSplit) {
  DiagsRunner& runner = Start();
  EXPECT_EQ(Simple("abc"), "");
  EXPECT_EQ(TAccess::DiagNS(runner).count("abc"), 1U);
  EXPECT_THAT(Logs(), ElementsAre("Entering DiagsRunner::SimpleResults",
                                  "DiagsRunner::SimpleResults - GetTestName Failed",
                                  "DiagsRunner::SimpleResults - Returning: No extended results",
                                  "Exiting DiagsRunner::SimpleResults"));
}

TEST_F(QueriesTest, ExtendedAnswersWithTheRecordDataAsItIs) {
  m_world.AddRecord("r", "BRCM", "j", "Failed", "line 1\nline 2\n");
  Prepare("BRCM,d,e");
  EXPECT_EQ(Extended("BRCM,d,e"), "line 1\nline 2\n");
  EXPECT_THAT(Logs(), ElementsAre("Entering DiagsRunner::ExtendedResults"));
  EXPECT_THAT(Only({"enumerate", "sleep", "set", "copy"}),
              ElementsAre("enumerate CIM_DiagnosticCompletionRecord deep=1 {nspID=cmpi}"));
}

TEST_F(QueriesTest, ExtendedRefusesAnUnknownIdentifier) {
  DiagsRunner& runner = Start();
  EXPECT_EQ(Extended("a,b,c"), "testID is not found in m_diagNS.\n");
  EXPECT_THAT(TTranscript::Get().All(),
              ElementsAre("log3 Entering DiagsRunner::ExtendedResults",
                          "log3 DiagsRunner::ExtendedResults testID is not found in m_diagNS"));
  EXPECT_TRUE(TAccess::DiagNS(runner).empty());
}

TEST_F(QueriesTest, ExtendedFindsNothingForWhatCannotBeSplit) {
  Prepare("a,b");
  EXPECT_EQ(Extended("a,b"), kNoExtended);
  EXPECT_THAT(Logs(), ElementsAre("Entering DiagsRunner::ExtendedResults",
                                  "DiagsRunner::ExtendedResults - GetTestName Failed",
                                  "DiagsRunner::ExtendedResults - Returning: No extended results",
                                  "Exiting DiagsRunner::ExtendedResults"));
}

TEST_F(QueriesTest, NeitherFindsATestThatHasNotFinished) {
  m_world.AddRecord("r", "Quick", "j", "OK", "data");
  DiagsRunner& runner = Prepare("Quick,d,e");
  TAccess::Finished(runner).clear();
  EXPECT_EQ(Simple("Quick,d,e"), "");
  ClearTranscript();
  EXPECT_EQ(Extended("Quick,d,e"), kNoExtended);
  EXPECT_THAT(Logs(), ElementsAre("Entering DiagsRunner::ExtendedResults",
                                  "DiagsRunner::ExtendedResults  - No Valid Instance Found",
                                  "DiagsRunner::ExtendedResults - Returning: No extended results",
                                  "Exiting DiagsRunner::ExtendedResults"));
}

TEST_F(QueriesTest, NeitherWaitsForARecord) {
  m_world.AddRecord("r", "Quick", "j", "OK", "data", 1);
  Prepare("Quick,d,e");
  EXPECT_EQ(Simple("Quick,d,e"), "");
  EXPECT_EQ(Count("sleep"), 0U);
  EXPECT_EQ(Count("enumerate"), 1U);
  EXPECT_EQ(Extended("Quick,d,e"), "data");
}

TEST_F(QueriesTest, NeitherFindsAnythingWithoutTheRecordClass) {
  Prepare("Quick,d,e");
  EXPECT_EQ(Simple("Quick,d,e"), "");
  EXPECT_EQ(Extended("Quick,d,e"), kNoExtended);
}

TEST_F(QueriesTest, BothChooseTheFirstRecordThatMatchesInEverything) {
  m_world.AddRecord("1", "Quick", "j", "Failed", "1")
      ->Set("ManagedElementName", TCIMValue::Null(ECIMType::kString));
  m_world.AddRecord("2", "x", "j", "Failed", "2")
      ->Set("ServiceName", TCIMValue::Null(ECIMType::kString));
  m_world.AddRecord("3", "quick", "j", "Failed", "3");
  m_world.AddRecord("4", "Quick", "k", "Failed", "4");
  m_world.AddRecord("5", "A Quick One", "j and more", "Aborted", "5");
  m_world.AddRecord("6", "Quick", "j", "Failed", "6");
  Prepare("Quick,d,e");
  EXPECT_EQ(Simple("Quick,d,e"), "(Aborted)");
  EXPECT_EQ(Extended("Quick,d,e"), "5");
}

TEST_F(QueriesTest, BothUseTheContextOfTheCatalogue) {
  m_world.AddRecord("r", "Quick", "j", "OK", "data");
  DiagsRunner& runner = Prepare("Quick,d,e");
  TAccess::DiagNS(runner)["Quick,d,e"] = TCIMValue("pegasus");
  Simple("Quick,d,e");
  Extended("Quick,d,e");
  EXPECT_EQ(Count("find root CIM_DiagnosticCompletionRecord {nspID=pegasus}"), 2U);
}

class QueryFaultTest : public QueriesTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(QueryFaultTest, ReachesTheCallerOfEither) {
  m_world.AddRecord("r", "Quick", "j", "OK", "data");
  Prepare("Quick,d,e");
  m_faults.When(GetParam(), EFault::kQELException, 2);
  EXPECT_THROW(Simple("Quick,d,e"), TQELException);
  EXPECT_THROW(Extended("Quick,d,e"), TQELException);
  m_faults.When(GetParam(), EFault::kInt, 2);
  EXPECT_THROW(Simple("Quick,d,e"), int);
  EXPECT_THROW(Extended("Quick,d,e"), int);
  EXPECT_EQ(Simple("Quick,d,e"), "(Pass)");
  EXPECT_EQ(Extended("Quick,d,e"), "data");
}

INSTANTIATE_TEST_SUITE_P(Calls, QueryFaultTest,
                         ::testing::Values("find root", "enumerate",
                                           "property root/cimv2:Test_Record.Id=\"r\" Managed",
                                           "property root/cimv2:Test_Record.Id=\"r\" ServiceName",
                                           "property root/cimv2:Test_Record.Id=\"r\" InstanceID"));

}  // namespace
}  // namespace scripted
