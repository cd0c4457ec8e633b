// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TAllocationFault.h"
#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

using NZEPQEL20::ECIMType;
using NZEPQEL20::TCIMValue;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

const char kNothingFound[] = "No matching diagnostic test or device found.\n";
const char kAssociation[] = "CIM_AvailableDiagnosticService";

class DiscoveryTest : public TRunnerTest {
 protected:
  void Exclude(const std::vector<std::string>& names) {
    std::string text = "<qel version=\"1\">";
    for (const std::string& name : names) {
      text += "<test name=\"" + name + "\"/>";
    }
    m_dataRoot.Write(kExcludedTests, text + "</qel>");
  }
  std::string Enumerate() { return Start().EnumerateDiagTests("not consulted"); }
};

TEST_F(DiscoveryTest, ListsATestAndTracesTheWalk) {
  m_world.AddTest("Quick", "cpu0", "Processor 0");
  DiagsRunner& runner = Start();
  EXPECT_EQ(runner.EnumerateDiagTests(""), "Quick,cpu0,Processor 0|");
  EXPECT_THAT(
      Logs(),
      ElementsAre("DiagsRunner::EnumerateDiagTests", "DiagsRunner::GetCIMData",
                  "DiagsRunner::GetCIMData:Looking for CIM_AvailableDiagnosticService with cmpi",
                  "Entering DiagsRunner::filterDiagsItems()",
                  "DiagsRunner::GetCIMData:Property 1: "
                  "ServiceProvided=root/cimv2:Test_Service.Id=\"1\"",
                  "DiagsRunner::GetCIMData:Property 2: "
                  "UserOfService=root/cimv2:Test_Device.Id=\"1\""));
  EXPECT_EQ(Count("log3"), Logs().size());
  EXPECT_THAT(TTranscript::Get().All(),
              Contains("find root CIM_AvailableDiagnosticService {nspID=cmpi}"));
  EXPECT_EQ(Count("enumerate CIM_AvailableDiagnosticService deep=1"), 1U);
  EXPECT_EQ(Output(), "");
}

TEST_F(DiscoveryTest, FillsTheCatalogueAndTheAssociations) {
  m_world.AddTest("B", "d1", "e1");
  m_world.AddTest("A", "d2", "e2");
  DiagsRunner& runner = Start();
  EXPECT_EQ(runner.EnumerateDiagTests(""), "B,d1,e1|A,d2,e2|");
  EXPECT_THAT(TAccess::DiagNS(runner), ElementsAre(std::make_pair("A,d2,e2", TCIMValue("cmpi")),
                                                   std::make_pair("B,d1,e1", TCIMValue("cmpi"))));
  EXPECT_THAT(TAccess::PegasusNS(runner), IsEmpty());
  ASSERT_EQ(TAccess::Instances(runner).size(), 2U);
  EXPECT_EQ(TAccess::Instances(runner)[0]->GetObjectPath({}).GetPath(),
            "root/cimv2:Test_Available.Id=\"1\"");
}

TEST_F(DiscoveryTest, AnswersASecondCallWithoutWalkingAgain) {
  m_world.AddTest("A", "d1", "e1");
  DiagsRunner& runner = StartAndEnumerate();
  m_world.AddTest("B", "d2", "e2");
  EXPECT_EQ(runner.EnumerateDiagTests(""), "A,d1,e1|");
  EXPECT_THAT(TTranscript::Get().All(), ElementsAre("log3 DiagsRunner::EnumerateDiagTests"));
  EXPECT_EQ(TAccess::Instances(runner).size(), 1U);
}

TEST_F(DiscoveryTest, KeepsTheAnswerThatNothingWasFound) {
  m_world.AddClass(kAssociation);
  DiagsRunner& runner = Start();
  EXPECT_EQ(runner.EnumerateDiagTests(""), kNothingFound);
  m_world.AddTest("A", "d1", "e1");
  ClearTranscript();
  EXPECT_EQ(runner.EnumerateDiagTests(""), kNothingFound);
  EXPECT_EQ(Count("find"), 0U);
  EXPECT_THAT(TAccess::DiagNS(runner), IsEmpty());
}

TEST_F(DiscoveryTest, FindsNothingWhereNoProviderHasTheClass) {
  EXPECT_EQ(Enumerate(), kNothingFound);
}

TEST_F(DiscoveryTest, ListsADuplicateTwiceButCataloguesItOnce) {
  m_world.AddTest("A", "d", "e");
  m_world.AddTest("A", "d", "e");
  DiagsRunner& runner = Start();
  EXPECT_EQ(runner.EnumerateDiagTests(""), "A,d,e|A,d,e|");
  EXPECT_EQ(TAccess::DiagNS(runner).size(), 1U);
  EXPECT_EQ(TAccess::Instances(runner).size(), 2U);
}

TEST_F(DiscoveryTest, JoinsFieldsThatHoldCommasAsTheyAre) {
  m_world.AddTest("a,b", "c,d", "e,f");
  EXPECT_EQ(Enumerate(), "a,b,c,d,e,f|");
}

TEST_F(DiscoveryTest, DropsATestWhoseNameStandsInAnExcludedEntry) {
  Exclude({"before Quick,cpu0 after"});
  m_world.AddTest("Quick", "cpu0", "P");
  m_world.AddTest("Quick Test And More", "cpu0", "P");
  EXPECT_EQ(Enumerate(), "Quick Test And More,cpu0,P|");
}

TEST_F(DiscoveryTest, DoesNotExcludeByAnEntryThatIsOnlyAPartOfTheName) {
  Exclude({"Quick"});
  m_world.AddTest("Quick Test", "cpu0", "P");
  EXPECT_EQ(Enumerate(), "Quick Test,cpu0,P|");
}

TEST_F(DiscoveryTest, ExcludesWithTheCaseAsWritten) {
  Exclude({"QUICK"});
  m_world.AddTest("Quick", "cpu0", "P");
  EXPECT_EQ(Enumerate(), "Quick,cpu0,P|");
}

TEST_F(DiscoveryTest, DropsATestWhoseClassNameStandsInAnExcludedEntry) {
  Exclude({"all of Other_Service"});
  m_world.AddTest("A", "d", "e").service->Set("CreationClassName", "Other_Service");
  m_world.AddTest("B", "d", "e");
  EXPECT_EQ(Enumerate(), "B,d,e|");
}

TEST_F(DiscoveryTest, ExcludesNothingByAnEmptyClassName) {
  Exclude({"something"});
  m_world.AddTest("A", "d", "e").service->Set("CreationClassName", "");
  EXPECT_EQ(Enumerate(), "A,d,e|");
}

TEST_F(DiscoveryTest, AnEmptyNameIsFoundInEveryExcludedEntry) {
  Exclude({"something"});
  m_world.AddTest("", "d", "e");
  m_world.AddTest("B", "d", "e");
  EXPECT_EQ(Enumerate(), "B,d,e|");
}

TEST_F(DiscoveryTest, WithoutExcludedEntriesAnEmptyNameIsOffered) {
  m_world.AddTest("", "d", "e");
  EXPECT_EQ(Enumerate(), ",d,e|");
}

TEST_F(DiscoveryTest, AnEmptyExcludedEntryDropsOnlyEmptyNames) {
  m_dataRoot.Write(kExcludedTests, "<qel version=\"1\"><test/></qel>");
  m_world.AddTest("", "d", "e");
  m_world.AddTest("B", "d", "e");
  EXPECT_EQ(Enumerate(), "B,d,e|");
}

TEST_F(DiscoveryTest, NeverOffersAPackageOfTests) {
  const auto list = [](std::vector<std::uint16_t> numbers) {
    TCIMValue::TArray elements;
    for (const std::uint16_t number : numbers) {
      elements.push_back(TCIMValue::UInt16(number));
    }
    return TCIMValue::Array(ECIMType::kUInt16, elements);
  };
  m_world.AddTest("A", "d", "e").service->Set("Characteristics", list({2, 6, 8}));
  m_world.AddTest("B", "d", "e").service->Set("Characteristics", list({2, 8, 16, 66}));
  m_world.AddTest("C", "d", "e").service->Set("Characteristics", list({}));
  m_world.AddTest("D", "d", "e").service->Set("Characteristics", list({6}));
  EXPECT_EQ(Enumerate(), "B,d,e|C,d,e|");
}

TEST_F(DiscoveryTest, KeepsTheAssociationOfAPairThatIsSkipped) {
  Exclude({"A"});
  m_world.AddTest("A", "d", "e");
  m_world.AddTest("B", "d", "e");
  DiagsRunner& runner = Start();
  EXPECT_EQ(runner.EnumerateDiagTests(""), "B,d,e|");
  EXPECT_EQ(TAccess::Instances(runner).size(), 2U);
}

TEST_F(DiscoveryTest, LeavesOutWhatTheMatrixForbidsOnThisMachine) {
  m_system.m_biosID = "P99";
  m_dataRoot.Write(kMatrix,
                   "<m><biosid name=\"p99\"><diagnostictest name=\"Id=&quot;1\"/>"
                   "</biosid></m>");
  m_world.AddTest("A", "d", "e");
  m_world.AddTest("B", "d", "e");
  DiagsRunner& runner = Start();
  EXPECT_EQ(runner.EnumerateDiagTests(""), "B,d,e|");
  EXPECT_EQ(TAccess::Instances(runner).size(), 1U);
  EXPECT_EQ(Count("fetch root root/cimv2:Test_Service.Id=\"1\""), 0U);
}

TEST_F(DiscoveryTest, ASecondWalkAppendsTheAssociationsAgain) {
  m_world.AddTest("A", "d", "e");
  DiagsRunner& runner = StartAndEnumerate();
  std::vector<std::string> found;
  EXPECT_TRUE(TAccess::Walk(runner, kAssociation, TCIMValue("cmpi"), found));
  EXPECT_THAT(found, ElementsAre("A,d,e"));
  EXPECT_EQ(TAccess::Instances(runner).size(), 2U);
}

TEST_F(DiscoveryTest, APegasusWalkRemembersTheNamespaceOfEachTest) {
  m_world.AddTest("A", "d", "e");
  DiagsRunner& runner = Start();
  std::vector<std::string> found;
  EXPECT_TRUE(TAccess::Walk(runner, kAssociation, TCIMValue("pegasus"), found));
  EXPECT_THAT(TAccess::PegasusNS(runner),
              ElementsAre(std::make_pair("A,d,e", TCIMValue("root/cimv2"))));
  EXPECT_THAT(TAccess::DiagNS(runner), IsEmpty());
  const TLines logs = Logs();
  ASSERT_GE(logs.size(), 2U);
  EXPECT_EQ(logs[1],
            "DiagsRunner::GetCIMData:Looking for CIM_AvailableDiagnosticService with pegasus");
  EXPECT_EQ(logs[logs.size() - 2],
            "DiagsRunner::GetCIMData m_diagPegasusNS.insert testItemID=A,d,e");
  EXPECT_EQ(logs.back(),
            "DiagsRunner::GetCIMData m_diagPegasusNS.insert testItemNspStr=root/cimv2");
  EXPECT_THAT(TTranscript::Get().All(),
              Contains("find root CIM_AvailableDiagnosticService {nspID=pegasus}"));
}

TEST_F(DiscoveryTest, AWalkOfAnotherClassFindsTestsButKeepsNoAssociations) {
  const TTest test = m_world.AddTest("A", "d", "e");
  m_world.Show("Test_OtherAssociation", test.association);
  DiagsRunner& runner = Start();
  std::vector<std::string> found;
  EXPECT_TRUE(TAccess::Walk(runner, "Test_OtherAssociation", TCIMValue("pegasus"), found));
  EXPECT_THAT(found, ElementsAre("A,d,e"));
  EXPECT_THAT(TAccess::PegasusNS(runner), IsEmpty());
  EXPECT_THAT(TAccess::Instances(runner), IsEmpty());
}

TEST_F(DiscoveryTest, AWalkThatFindsNothingSaysSo) {
  m_world.AddClass(kAssociation);
  std::vector<std::string> found;
  EXPECT_FALSE(TAccess::Walk(Start(), kAssociation, TCIMValue("cmpi"), found));
  EXPECT_THAT(found, IsEmpty());
}

TEST_F(DiscoveryTest, AppendsToTheListThatItIsGiven) {
  m_world.AddTest("A", "d", "e");
  std::vector<std::string> found{"first"};
  EXPECT_TRUE(TAccess::Walk(Start(), kAssociation, TCIMValue("cmpi"), found));
  EXPECT_THAT(found, ElementsAre("first", "A,d,e"));
}

TEST_F(DiscoveryTest, NoMemoryForTheMatrixEndsTheWalkButStaysInside) {
  m_world.AddTest("A", "d", "e");
  m_dataRoot.WriteSparse(kMatrix, 200000);
  DiagsRunner& runner = Start();
  const TAllocationFault fault(200000);
  EXPECT_EQ(runner.EnumerateDiagTests(""), kNothingFound);
  EXPECT_TRUE(fault.HasStruck());
  EXPECT_THAT(Logs(), Contains("Error loading excludetestmatrix.xml"));
  EXPECT_THAT(Logs(), Contains("DiagsRunner::GetCIMData, caught qel exception"));
}

TEST_F(DiscoveryTest, AnUnknownExceptionFromTheFilterEndsTheWalk) {
  m_world.AddTest("A", "d", "e");
  m_faults.When(std::string("size ") + kMatrix, EFault::kInt);
  EXPECT_EQ(Enumerate(), kNothingFound);
  EXPECT_THAT(Logs(), Contains("DiagsRunner::GetCIMData, caught exception"));
}

TEST_F(DiscoveryTest, AMatrixThatCannotBeSizedFiltersNothing) {
  m_world.AddTest("A", "d", "e");
  m_faults.When(std::string("size ") + kMatrix, EFault::kQELException);
  EXPECT_EQ(Enumerate(), "A,d,e|");
  EXPECT_THAT(Logs(), Contains("Error opening excludetestmatrix.xml"));
  EXPECT_THAT(Logs(), Not(Contains(StartsWith("DiagsRunner::GetCIMData, caught"))));
}

}  // namespace
}  // namespace scripted
