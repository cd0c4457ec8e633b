// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "platform/contract/TQELException.h"
#include "tests/support/TAllocationFault.h"
#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

using NZEPQEL20::TQELException;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char kEntering[] = "Entering DiagsRunner::filterDiagsItems()";
const char kLeaving[] = "Leaving DiagsRunner::filterDiagsItems()";
const char kLoggerEntering[] = "Entering DiagsRunner::filterDiagsItemsLogger()";
const char kLoggerLeaving[] = "Leaving DiagsRunner::filterDiagsItemsLogger()";

std::string GetServicePath(int number) {
  return "root/cimv2:Test_Service.Id=\"" + std::to_string(number) + "\"";
}
std::string GetLookLine(int number) {
  return "DiagsRunner::filterDiagsItems serviceProvided OP = " + GetServicePath(number);
}
std::string GetErasingLine(int number) {
  return "DiagsRunner::filterDiagsItems - erasing: root/cimv2:Test_Available.Id=\"" +
         std::to_string(number) + "\"";
}

class FilteringTest : public TRunnerTest {
 protected:
  /// A runner on a machine called `biosID`, and `count` candidates.
  DiagsRunner& Prepare(const std::string& biosID, int count) {
    m_system.m_biosID = biosID;
    for (int i = 0; i < count; ++i) {
      m_items.push_back(m_world.MakeInstance(
          m_world.AddTest("T" + std::to_string(i), "dev", "element").association));
    }
    return Start();
  }
  /// The numbers of the candidates that are left.
  std::vector<std::string> GetLeft() {
    std::vector<std::string> left;
    for (const auto& item : m_items) {
      left.push_back(static_cast<std::string>(item->GetObjectPath({}).FindKey("Id")->ToString(10)));
    }
    return left;
  }
  void WriteMatrix(const std::string& content) {
    m_dataRoot.Write(kMatrix, "<matrix>" + content + "</matrix>");
  }

  TAccess::TInstances m_items;
};

TEST_F(FilteringTest, WithoutAMatrixNothingIsFilteredAndNoLeavingLineIsWritten) {
  DiagsRunner& runner = Prepare("p99", 2);
  TAccess::FilterItems(runner, m_items);
  EXPECT_THAT(Logs(), ElementsAre(kEntering));
  EXPECT_THAT(GetLeft(), ElementsAre("1", "2"));
}

TEST_F(FilteringTest, RemovesWhatTheMachinesOwnListNamesAndLogsEachStep) {
  WriteMatrix(
      "<biosid name=\"p99\"><diagnostictest name=\"Id=&quot;2&quot;\"/></biosid>"
      "<biosid name=\"a00\"><diagnostictest name=\"x\"/><diagnostictest name=\"y\"/></biosid>");
  DiagsRunner& runner = Prepare("P99", 3);
  TAccess::FilterItems(runner, m_items);
  EXPECT_THAT(Logs(), ElementsAre(kEntering, kLoggerEntering, "a00 -> x", "a00 -> y",
                                  "p99 -> Id=\"2\"", kLoggerLeaving, GetLookLine(1), GetLookLine(2),
                                  GetErasingLine(2), GetLookLine(3), kLeaving));
  EXPECT_THAT(GetLeft(), ElementsAre("1", "3"));
}

TEST_F(FilteringTest, RemovesConsecutiveCandidatesWithoutSkipping) {
  WriteMatrix("<biosid name=\"p99\"><diagnostictest name=\"Test_Service\"/></biosid>");
  DiagsRunner& runner = Prepare("p99", 2);
  TAccess::FilterItems(runner, m_items);
  EXPECT_THAT(m_items, IsEmpty());
  EXPECT_THAT(Logs(), ElementsAre(kEntering, kLoggerEntering, "p99 -> Test_Service", kLoggerLeaving,
                                  GetLookLine(1), GetErasingLine(1), GetLookLine(2),
                                  GetErasingLine(2), kLeaving));
}

TEST_F(FilteringTest, LogsTheMatrixButLooksAtNothingOnAMachineThatIsNotListed) {
  WriteMatrix("<biosid name=\"p99\"><diagnostictest name=\"\"/></biosid>");
  DiagsRunner& runner = Prepare("p98", 1);
  TAccess::FilterItems(runner, m_items);
  EXPECT_THAT(Logs(), ElementsAre(kEntering, kLoggerEntering, "p99 -> ", kLoggerLeaving, kLeaving));
  EXPECT_THAT(GetLeft(), ElementsAre("1"));
}

TEST_F(FilteringTest, LogsTheMatrixForAnEmptyListOfCandidates) {
  WriteMatrix("<biosid name=\"p99\"><diagnostictest name=\"a\"/></biosid>");
  DiagsRunner& runner = Prepare("p99", 0);
  TAccess::FilterItems(runner, m_items);
  EXPECT_THAT(Logs(),
              ElementsAre(kEntering, kLoggerEntering, "p99 -> a", kLoggerLeaving, kLeaving));
}

TEST_F(FilteringTest, NeverMatchesAKeyWrittenInUpperCase) {
  WriteMatrix("<biosid name=\"P99\"><diagnostictest name=\"Test\"/></biosid>");
  DiagsRunner& runner = Prepare("P99", 1);
  TAccess::FilterItems(runner, m_items);
  EXPECT_THAT(GetLeft(), ElementsAre("1"));
}

TEST_F(FilteringTest, UsesTheFirstOfTwoListsForOneMachine) {
  WriteMatrix(
      "<biosid name=\"p99\"><diagnostictest name=\"=&quot;1&quot;\"/></biosid>"
      "<biosid name=\"p99\"><diagnostictest name=\"=&quot;2&quot;\"/></biosid>");
  DiagsRunner& runner = Prepare("p99", 2);
  TAccess::FilterItems(runner, m_items);
  EXPECT_THAT(GetLeft(), ElementsAre("2"));
}

TEST_F(FilteringTest, AnEmptyFragmentRemovesEveryCandidate) {
  WriteMatrix("<biosid name=\"p99\"><diagnostictest/></biosid>");
  DiagsRunner& runner = Prepare("p99", 3);
  TAccess::FilterItems(runner, m_items);
  EXPECT_THAT(m_items, IsEmpty());
}

TEST_F(FilteringTest, ComparesFragmentsWithTheirCase) {
  WriteMatrix("<biosid name=\"p99\"><diagnostictest name=\"test_service\"/></biosid>");
  DiagsRunner& runner = Prepare("p99", 1);
  TAccess::FilterItems(runner, m_items);
  EXPECT_THAT(GetLeft(), ElementsAre("1"));
}

TEST_F(FilteringTest, CollectsAFragmentThatStandsBeforeItsMachine) {
  WriteMatrix(
      "<diagnostictest name=\"=&quot;1&quot;\"/>"
      "<biosid name=\"p99\"><diagnostictest name=\"=&quot;2&quot;\"/></biosid>");
  DiagsRunner& runner = Prepare("p99", 3);
  TAccess::FilterItems(runner, m_items);
  EXPECT_THAT(GetLeft(), ElementsAre("3"));
}

TEST_F(FilteringTest, ReadsTheMatrixAfreshEachTime) {
  DiagsRunner& runner = Prepare("p99", 2);
  TAccess::FilterItems(runner, m_items);
  EXPECT_THAT(GetLeft(), ElementsAre("1", "2"));
  WriteMatrix("<biosid name=\"p99\"><diagnostictest name=\"=&quot;1&quot;\"/></biosid>");
  TAccess::FilterItems(runner, m_items);
  EXPECT_THAT(GetLeft(), ElementsAre("2"));
}

TEST_F(FilteringTest, KeepsErrorsInTheMatrixOutOfTheLog) {
  m_dataRoot.Write(kMatrix,
                   "<anything><biosid id=\"1\" name=\"p99\"><x/>"
                   "<diagnostictest name=\"Test\"/></biosid><oops></anything>");
  DiagsRunner& runner = Prepare("p99", 1);
  TAccess::FilterItems(runner, m_items);
  EXPECT_THAT(m_items, IsEmpty());
  EXPECT_THAT(Only({"log0"}), IsEmpty());
}

TEST_F(FilteringTest, ASizeThatCannotBeHadIsLoggedAndFiltersNothing) {
  WriteMatrix("<biosid name=\"p99\"><diagnostictest/></biosid>");
  DiagsRunner& runner = Prepare("p99", 1);
  m_faults.When(std::string("size ") + kMatrix, EFault::kQELException);
  TAccess::FilterItems(runner, m_items);
  EXPECT_THAT(Only({"log0", "log3"}), ElementsAre(std::string("log3 ") + kEntering,
                                                  "log0 Error opening excludetestmatrix.xml"));
  EXPECT_THAT(GetLeft(), ElementsAre("1"));
}

TEST_F(FilteringTest, NoMemoryIsLoggedAndThrownWithStatusFour) {
  DiagsRunner& runner = Prepare("p99", 1);
  m_dataRoot.WriteSparse(kMatrix, 200000);
  const TAllocationFault fault(200000);
  try {
    TAccess::FilterItems(runner, m_items);
    FAIL() << "the matrix was read";
  } catch (const TQELException& error) {
    EXPECT_EQ(error.GetStatusCode().GetValue(), 4U);
  }
  EXPECT_THAT(Only({"log0"}), ElementsAre("log0 Error loading excludetestmatrix.xml"));
  EXPECT_THAT(GetLeft(), ElementsAre("1"));
}

TEST_F(FilteringTest, AFailingCandidateEndsTheFilterAndWhatWasRemovedStaysRemoved) {
  WriteMatrix("<biosid name=\"p99\"><diagnostictest name=\"Test_Service\"/></biosid>");
  DiagsRunner& runner = Prepare("p99", 3);
  m_faults.When("property root/cimv2:Test_Available.Id=\"2\" ServiceProvided",
                EFault::kStdException);
  EXPECT_THROW(TAccess::FilterItems(runner, m_items), std::runtime_error);
  EXPECT_THAT(GetLeft(), ElementsAre("2", "3"));
}

TEST_F(FilteringTest, LogsAMatrixKeyByKeyAndLeavesEmptyListsOut) {
  DiagsRunner& runner = Start();
  TAccess::LogMatrix(runner, {{"b", {"2", "1", "2"}}, {"a", {}}, {"B", {"x"}}});
  EXPECT_THAT(Only({"log0", "log3"}),
              ElementsAre(std::string("log3 ") + kLoggerEntering, "log3 B -> x", "log3 b -> 2",
                          "log3 b -> 1", "log3 b -> 2", std::string("log3 ") + kLoggerLeaving));
}

}  // namespace
}  // namespace scripted
