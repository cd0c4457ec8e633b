// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <thread>

#include "platform/cmpi/TWantedProperties.h"
#include "tests/platform/cmpi/operations/TWorkshopTest.h"

namespace NZEPQEL20 {
namespace {

class InstanceOperationsTest : public TWorkshopTest {};

TEST_F(InstanceOperationsTest, EnumeratingASuperclassAsksForEachClassUnderItsOwnName) {
  const auto found = Enumerate("W_Part");
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].path.GetPath(), "root/cimv2:W_Bolt.Id=\"W_Bolt-1\"");
  EXPECT_EQ(found[1].path.GetPath(), "root/cimv2:W_Nut.Id=\"W_Nut-1\"");
  EXPECT_EQ(NoteOf(found[0]), "root/cimv2") << "the namespace of the call is in its context";
}

TEST_F(InstanceOperationsTest, AFailureIsReportedOnceAndCostsTheOthersNothing) {
  Enumerate("W_Part");
  Enumerate("W_Part");
  const auto problems = m_operations->GetProblems();
  ASSERT_EQ(problems.size(), 1U);
  for (const char* part : {"EnumerateInstances of root/cimv2:W_Part", "Workshop", "libworkshop.so",
                           "the crate is locked"}) {
    EXPECT_NE(problems[0].find(part), std::string::npos) << problems[0];
  }
}

TEST_F(InstanceOperationsTest, WhenAllFailTheirNumberAndWordsAreThrown) {
  const TQELException failure = Failure([&] { Enumerate("W_Crate"); });
  EXPECT_EQ(failure.GetCIMStatus(), 2U);
  EXPECT_TRUE(failure.GetStatusCode() == TQELStatusCode::kCIMError);
  EXPECT_NE(std::string(failure.what()).find("the crate is locked"), std::string::npos);
  const TQELException names =
      Failure([&] { m_operations->EnumerateInstanceNames("root/cimv2", "W_Crate"); });
  EXPECT_EQ(names.GetCIMStatus(), 2U);
}

TEST_F(InstanceOperationsTest, NotFoundOnAnEnumerationIsAnEmptyOne) {
  EXPECT_TRUE(Enumerate("W_Ghost").empty());
  EXPECT_TRUE(m_operations->EnumerateInstanceNames("root/cimv2", "W_Ghost").empty());
  EXPECT_TRUE(m_operations->GetProblems().empty());
}

TEST_F(InstanceOperationsTest, AClassNobodyServesIsEmptyAndAnUnknownOneAnError) {
  EXPECT_TRUE(Enumerate("W_Dream").empty());
  EXPECT_TRUE(Enumerate("W_Bolt", "root/elsewhere").empty());
  EXPECT_EQ(Failure([&] { Enumerate("W_None"); }).GetCIMStatus(), 5U);
}

TEST_F(InstanceOperationsTest, TheSinkEndsTheEnumeration) {
  int count = 0;
  m_operations->EnumerateInstances("root/cimv2", "W_Part", [&](TCIMInstanceData&&) {
    ++count;
    return false;
  });
  EXPECT_EQ(count, 1);
}

TEST_F(InstanceOperationsTest, PathsGetTheNamespaceAndClassThatTheProviderLeftOut) {
  const auto names = m_operations->EnumerateInstanceNames("root/cimv2", "W_Part");
  ASSERT_EQ(names.size(), 2U);
  EXPECT_EQ(names[0].GetPath(), "root/cimv2:W_Bolt.Id=\"W_Bolt-1\"");
  EXPECT_EQ(names[1].GetPath(), "root/cimv2:W_Nut.Id=\"W_Nut-1\"");
}

TEST_F(InstanceOperationsTest, KeysReachTheProviderInTheirDeclaredTypes) {
  const TCIMReference path("root/tools", "W_Tool",
                           {{"Number", TCIMValue("7")}, {"Big", TCIMValue("TRUE")}});
  EXPECT_EQ(GetNote(path), "Big:0002 Number:0090 ");
}

TEST_F(InstanceOperationsTest, NoInstanceFromAGoodCallIsNotFound) {
  const TQELException failure = Failure([&] { m_operations->GetInstance(PathTo("silent")); });
  EXPECT_EQ(failure.GetCIMStatus(), 6U);
  EXPECT_NE(std::string(failure.what()).find("returned no instance"), std::string::npos);
}

TEST_F(InstanceOperationsTest, AClassServedNowhereThereIsNotFound) {
  const TQELException failure =
      Failure([&] { m_operations->GetInstance(TCIMReference("root/none", "W_Bolt")); });
  EXPECT_EQ(failure.GetCIMStatus(), 6U);
  EXPECT_NE(std::string(failure.what()).find("no provider serves the class there"),
            std::string::npos);
}

TEST_F(InstanceOperationsTest, AProviderMayComeBackInItsOwnCall) {
  const auto found = m_operations->GetInstance(PathTo("nested"));
  EXPECT_EQ(found.Find("Id")->value.ToString(10), "W_Bolt-1");
  EXPECT_EQ(NoteOf(found), "Id:1600 ");
}

TEST_F(InstanceOperationsTest, AProviderThatComesBackForEverIsStopped) {
  const TQELException failure = Failure([&] { m_operations->GetInstance(PathTo("endless")); });
  EXPECT_EQ(failure.GetCIMStatus(), 1U);
  EXPECT_NE(std::string(failure.what()).find("providers call each other without end"),
            std::string::npos);
  EXPECT_EQ(NoteOf(m_operations->GetInstance(PathTo("nested"))), "Id:1600 ");
}

TEST_F(InstanceOperationsTest, InstancesAreMadeChangedAndDeletedByTheirProvider) {
  TCIMInstanceData data;
  data.path = PathTo("mine");
  data.properties = {{"Note", TCIMValue("new")}};
  EXPECT_EQ(m_operations->CreateInstance("root/cimv2", data).GetPath(),
            "root/cimv2:W_Bolt.Id=\"W_Bolt-1\"");
  EXPECT_EQ(GetNote(PathTo("last")), "made W_Bolt new");
  m_operations->ModifyInstance(data);
  EXPECT_EQ(GetNote(PathTo("last")), "changed mine");
  {
    const char* names[] = {"Note", "Missing", nullptr};
    const cmpi::TWantedProperties changed(names);
    m_operations->ModifyInstance(data);
  }
  EXPECT_EQ(GetNote(PathTo("last")), "changed mine Note Missing");
  m_operations->DeleteInstance(data.path);
  EXPECT_EQ(GetNote(PathTo("last")), "deleted mine");
}

TEST_F(InstanceOperationsTest, AProviderThatNamesNothingNewMadeWhatWasAskedFor) {
  TCIMInstanceData data;
  data.path = PathTo("mine");
  data.properties = {{"Note", TCIMValue("quiet")}};
  EXPECT_EQ(m_operations->CreateInstance("root/cimv2", data).GetPath(), data.path.GetPath());
}

TEST_F(InstanceOperationsTest, EveryPartThatWasMadeIsToldTheEndOnce) {
  Enumerate("W_Bolt");
  m_operations->AssociatorNames(PathTo("W_Bolt-1"), {});
  TKeyMap none;
  m_operations->InvokeMethod(PathTo("W_Bolt-1"), "Nothing", none);
  EXPECT_EQ(GetCleanups(), "");
  m_operations.reset();
  std::string told = GetCleanups();
  std::sort(told.begin(), told.end());
  EXPECT_EQ(told, "AIM");
}

TEST_F(InstanceOperationsTest, APartThatNobodyNeededIsNotCleanedUp) {
  Enumerate("W_Bolt");
  m_operations.reset();
  EXPECT_EQ(GetCleanups(), "I");
}

TEST_F(InstanceOperationsTest, SeveralThreadsAskAtOnce) {
  const auto work = [this] {
    for (int i = 0; i < 50; ++i) {
      EXPECT_EQ(Enumerate("W_Part").size(), 2U);
      EXPECT_EQ(NoteOf(m_operations->GetInstance(PathTo("nested"))), "Id:1600 ");
      TKeyMap parameters = {{"Count", TCIMValue("1")}};
      m_operations->InvokeMethod(PathTo("W_Bolt-1"), "Echo", parameters);
      EXPECT_EQ(parameters.at("Seen").ToString(10), "Count:0090 ");
    }
  };
  std::thread other(work);
  work();
  other.join();
  EXPECT_EQ(m_operations->GetProblems().size(), 1U);
}

TEST_F(InstanceOperationsTest, TwoHostsAreServedSideBySide) {
  auto classes = std::make_shared<TClassRepository>();
  ASSERT_TRUE(classes->LoadText("class O_Only { [Key] string Id; };", "other").empty());
  {
    TCMPIOperations other(classes, TRegistrations());
    EXPECT_EQ(Enumerate("W_Part").size(), 2U);
    EXPECT_TRUE(other.GetProviders().empty());
  }
  EXPECT_EQ(Enumerate("W_Part").size(), 2U) << "the end of one host is not that of the other";
}

}  // namespace
}  // namespace NZEPQEL20
