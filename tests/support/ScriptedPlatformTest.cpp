// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "platform/contract/CMPINSPInstanceRegistry.h"
#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMProperty.h"
#include "platform/contract/IProvider.h"
#include "platform/contract/TAddToVectorCallback.h"
#include "platform/contract/TCIMCopy.h"
#include "platform/contract/TCMPIInstance.h"
#include "platform/contract/TCMPINamespace.h"
#include "platform/contract/TQELException.h"
#include "tests/support/TDiagsWorld.h"
#include "tests/support/TFaultPlan.h"
#include "tests/support/TScriptedCopies.h"
#include "tests/support/TTranscript.h"

namespace scripted {
namespace {

using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TKeyMap;
using NZEPQEL20::TQELException;
using ::testing::ElementsAre;

class ScriptedPlatformTest : public ::testing::Test {
 protected:
  ScriptedPlatformTest() {
    TFaultPlan::Get().Clear();
    TScriptedCopies::Get().Clear();
    TTranscript::Get().Clear();
  }
  ~ScriptedPlatformTest() override {
    TFaultPlan::Get().Clear();
    TScriptedCopies::Get().Clear();
  }

  std::vector<TInstancePtr> Enumerate(const std::string& className) {
    std::vector<TInstancePtr> instances;
    m_world.GetRoot()
        ->FindClass(className, {})
        ->EnumerateInstances(NZEPQEL20::TAddToVectorCallback(instances), 1, {{"nspID", "cmpi"}});
    return instances;
  }
  static std::string GetText(const TInstancePtr& instance, const std::string& property) {
    return instance->GetProperty(property, {})->GetValueText();
  }

  TDiagsWorld m_world;
};

TEST_F(ScriptedPlatformTest, FindsKnownClassesOnly) {
  m_world.AddClass("Test_Empty");
  EXPECT_TRUE(m_world.GetRoot()->FindClass("Test_Empty", {{"nspID", "cmpi"}}));
  EXPECT_FALSE(m_world.GetRoot()->FindClass("Test_Other", {}));
  EXPECT_THAT(TTranscript::Get().All(),
              ElementsAre("find root Test_Empty {nspID=cmpi}", "find root Test_Other {}"));
}

TEST_F(ScriptedPlatformTest, ShowsAnAssociationWhoseReferencesLeadToInstances) {
  const auto test = m_world.AddTest("Quick", "cpu0", "Processor 0");
  const auto instances = Enumerate("CIM_AvailableDiagnosticService");
  ASSERT_EQ(instances.size(), 1U);
  const auto path =
      static_cast<TCIMReference>(instances[0]->GetProperty("serviceprovided", {})->GetValue({}));
  EXPECT_EQ(path.GetPath(), "root/cimv2:Test_Service.Id=\"1\"");
  const auto ns = path.GetClass()->GetNamespace({});
  EXPECT_EQ(GetText(ns->GetInstance(path, {}), "Name"), "Quick");
  EXPECT_EQ(test.identifier, "Quick,cpu0,Processor 0");
}

TEST_F(ScriptedPlatformTest, TakesOneStepOfAJobWithEachFetchAndStaysAtTheLast) {
  const TObjectPtr job = m_world.AddJob("j", {{10, 4}, {std::nullopt, 7}});
  const auto first = m_world.GetRoot()->GetInstance(job->GetPath(), {});
  const auto second = m_world.GetRoot()->GetInstance(job->GetPath(), {});
  const auto third = m_world.GetRoot()->GetInstance(job->GetPath(), {});
  EXPECT_EQ(GetText(first, "PercentComplete"), "10");
  EXPECT_TRUE(second->GetProperty("PercentComplete", {})->GetValue({}).IsNull());
  EXPECT_EQ(GetText(third, "JobState"), "7");
  EXPECT_EQ(job->GetFetchCount(), 3U);
}

TEST_F(ScriptedPlatformTest, ShowsARecordFromItsEnumerationOn) {
  m_world.AddRecord("r", "Quick", "j", "OK", "data", 1);
  EXPECT_TRUE(Enumerate("CIM_DiagnosticCompletionRecord").empty());
  EXPECT_EQ(Enumerate("CIM_DiagnosticCompletionRecord").size(), 1U);
}

TEST_F(ScriptedPlatformTest, TellsThePersonsTextFromTheValue) {
  m_world.AddRecord("r", "Quick", "j", "Warning", "data");
  const auto record = Enumerate("CIM_DiagnosticCompletionRecord").at(0);
  EXPECT_EQ(GetText(record, "CompletionState"), "Warning");
  EXPECT_EQ(record->GetProperty("CompletionState", {})->GetValue({}).ToString(10), "2");
  EXPECT_FALSE(record->GetProperty("Nothing", {}));
}

TEST_F(ScriptedPlatformTest, ChangesOnlyTheInstanceThatIsWrittenTo) {
  const TObjectPtr record = m_world.AddRecord("r", "Quick", "j", "OK", "data");
  const auto changed = m_world.FetchInstance(record);
  changed->SetProperty("RecordData", TCIMValue("new"), {});
  EXPECT_EQ(GetText(changed, "RecordData"), "new");
  EXPECT_EQ(GetText(m_world.FetchInstance(record), "RecordData"), "data");
}

TEST_F(ScriptedPlatformTest, LeavesExactlyTheOutParametersOfAMethod) {
  const auto test = m_world.AddTest("Quick", "cpu0", "Processor 0");
  m_world.LetRun(test, m_world.AddJob("j", {{0, 4}}));
  TKeyMap parameters{{"ManagedElement", TCIMValue("x")}};
  const auto service = m_world.FetchInstance(test.service);
  service->InvokeMethod("RunDiagnostic", parameters, {});
  ASSERT_EQ(parameters.size(), 1U);
  EXPECT_TRUE(static_cast<TCIMReference>(parameters["Job"]).GetClass());
  EXPECT_THROW(service->InvokeMethod("Unknown", parameters, {}), TQELException);
}

TEST_F(ScriptedPlatformTest, HoldsAGatedMethodUntilReleased) {
  const auto test = m_world.AddTest("Quick", "cpu0", "Processor 0");
  TScriptedMethod method;
  method.gate = std::make_shared<TGate>();
  test.service->SetMethod("RunDiagnostic", method);
  TKeyMap parameters{{"ManagedElement", TCIMValue("x")}};
  const auto service = m_world.FetchInstance(test.service);
  std::thread caller([&] { service->InvokeMethod("RunDiagnostic", parameters, {}); });
  EXPECT_TRUE(method.gate->WaitUntilReached());
  method.gate->Open();
  caller.join();
  EXPECT_TRUE(parameters.empty());
}

TEST_F(ScriptedPlatformTest, HandsOutCMPIInstancesUnlessToldOtherwise) {
  const auto test = m_world.AddTest("Quick", "cpu0", "Processor 0");
  EXPECT_TRUE(
      boost::dynamic_pointer_cast<NZEPQEL20::TCMPIInstance>(m_world.MakeInstance(test.service)));
  test.service->MakePlain();
  EXPECT_FALSE(
      boost::dynamic_pointer_cast<NZEPQEL20::TCMPIInstance>(m_world.MakeInstance(test.service)));
}

TEST_F(ScriptedPlatformTest, LeadsFromAClassThroughThePluginNamespaceToTheUpcalls) {
  const auto test = m_world.AddTest("Quick", "cpu0", "Processor 0");
  const auto serviceClass = m_world.GetRoot()->FindClass("Test_Service", {});
  EXPECT_FALSE(
      boost::dynamic_pointer_cast<NZEPQEL20::TCMPINamespace>(serviceClass->GetNamespace({})));
  const auto plugin = boost::dynamic_pointer_cast<NZEPQEL20::TCMPINamespace>(
      serviceClass->GetNamespace({{"nspID", "plugin"}}));
  ASSERT_TRUE(plugin);
  TTranscript::Get().Clear();
  plugin->GetUpcallNamespace()->GetInstance(test.service->GetPath(), {});
  EXPECT_THAT(TTranscript::Get().All(),
              ElementsAre("upcall plugin", "fetch upcall root/cimv2:Test_Service.Id=\"1\" {}"));
}

TEST_F(ScriptedPlatformTest, WalksProvidersAndTheirClasses) {
  m_world.AddProvider({"first", {"A", "B"}});
  m_world.AddProvider({"second", {"C"}});
  std::vector<std::string> names;
  m_world.GetRoot()->EnumerateProviders(
      [&names](const boost::shared_ptr<NZEPQEL20::IProvider>& provider) {
        names.push_back(provider->GetName());
        provider->EnumerateClasses(
            [&names](const boost::shared_ptr<NZEPQEL20::ICIMClass>& found) {
              names.push_back(found->GetName({}));
              return false;
            },
            {});
        return true;
      },
      {});
  EXPECT_THAT(names, ElementsAre("first", "A", "second", "C"));
}

TEST_F(ScriptedPlatformTest, KeepsCopiesWithTheirNamespace) {
  const TObjectPtr record = m_world.AddRecord("r", "Quick", "j", "OK", "data");
  const auto instance = m_world.FetchInstance(record);
  NZEPQEL20::TCIMCopy::CopyInstance(instance, m_world.GetHost());
  ASSERT_EQ(TScriptedCopies::Get().All().size(), 1U);
  EXPECT_EQ(TScriptedCopies::Get().All()[0].ns, m_world.GetHost());
  EXPECT_EQ(TTranscript::Get().Count("copy root/cimv2:Test_Record.Id=\"r\" host"), 1U);
  EXPECT_THROW(NZEPQEL20::TCIMCopy::CopyInstance({}, m_world.GetHost()), TQELException);
}

TEST_F(ScriptedPlatformTest, ForgetsRegisteredInstances) {
  auto& registry = NZEPQEL20::CMPINSPInstanceRegistry::GetRegistrySingleton();
  registry.Register(std::make_shared<int>(1));
  EXPECT_EQ(registry.GetCount(), 1U);
  registry.ClearInstances();
  EXPECT_EQ(registry.GetCount(), 0U);
  EXPECT_THAT(TTranscript::Get().All(), ElementsAre("clear"));
}

TEST_F(ScriptedPlatformTest, FailsTheCallsThatARuleNames) {
  m_world.AddClass("Test_A");
  auto& faults = TFaultPlan::Get();
  faults.When("find root Test_A", EFault::kStdException, 1);
  faults.When("find root", EFault::kNull);
  EXPECT_THROW(m_world.GetRoot()->FindClass("Test_A", {}), std::runtime_error);
  EXPECT_FALSE(m_world.GetRoot()->FindClass("Test_A", {}));
  EXPECT_TRUE(m_world.GetHost()->FindClass("Test_A", {}));
}

TEST_F(ScriptedPlatformTest, FailsTheNthCallInEachOfItsWays) {
  m_world.AddClass("Test_A");
  const auto find = [this] { return m_world.GetRoot()->FindClass("Test_A", {}); };
  auto& faults = TFaultPlan::Get();
  faults.StrikeNth(2, EFault::kQELException);
  EXPECT_TRUE(find());
  EXPECT_THROW(find(), TQELException);
  EXPECT_TRUE(find());
  EXPECT_TRUE(faults.HasStruck());
  EXPECT_EQ(faults.GetCallCount(), 3U);
  faults.StrikeNth(1, EFault::kInt);
  EXPECT_THROW(find(), int);
  faults.StrikeNth(1, EFault::kNull);
  EXPECT_FALSE(find());
  faults.StrikeNth(0, EFault::kInt);
  EXPECT_TRUE(find());
  EXPECT_FALSE(faults.HasStruck());
}

TEST_F(ScriptedPlatformTest, PutsANullHandleIntoAnEnumerationThatYieldsNull) {
  m_world.AddTest("Quick", "cpu0", "Processor 0");
  TFaultPlan::Get().When("enumerate", EFault::kNull);
  const auto instances = Enumerate("CIM_AvailableDiagnosticService");
  ASSERT_EQ(instances.size(), 2U);
  EXPECT_FALSE(instances[0]);
  EXPECT_TRUE(instances[1]);
}

}  // namespace
}  // namespace scripted
