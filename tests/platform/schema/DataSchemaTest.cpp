// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "tests/platform/schema/SchemaSupport.h"

namespace {

using namespace schematest;

/// The schema as shipped.
class DataSchemaTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(DIAGSRUNNER_SCHEMA_DIR)) {
      files.push_back(entry.path().string());
    }
    ASSERT_GE(files.size(), 5U);
    std::sort(files.begin(), files.end());
    for (const std::string& file : files) {
      EXPECT_EQ(Lines(m_repository.Load(file)), TLines());
    }
    EXPECT_EQ(Lines(m_repository.Check()), TLines());
  }

  TLines GetKeys(const std::string& name) const {
    TLines keys;
    const auto declaration = m_repository.Find(name);
    if (declaration == nullptr) {
      return {"no class " + name};
    }
    for (const auto& property : declaration->properties) {
      if (property.isKey) {
        keys.push_back(property.name);
      }
    }
    return keys;
  }

  TClassRepository m_repository;
};

TEST_F(DataSchemaTest, KeysAreThoseOfTheCimSchema) {
  const TLines device = {"SystemCreationClassName", "SystemName", "CreationClassName", "DeviceID"};
  for (const char* name : {"CIM_Processor", "CIM_Memory", "CIM_DiskDrive", "CIM_EthernetPort"}) {
    EXPECT_EQ(GetKeys(name), device) << name;
    EXPECT_TRUE(m_repository.IsA(name, "CIM_ManagedElement")) << name;
  }
  EXPECT_EQ(GetKeys("CIM_DiagnosticTest"),
            (TLines{"Name", "SystemCreationClassName", "SystemName", "CreationClassName"}));
  EXPECT_EQ(GetKeys("CIM_AvailableDiagnosticService"),
            (TLines{"ServiceProvided", "UserOfService"}));
  EXPECT_EQ(GetKeys("CIM_RecordAppliesToElement"), (TLines{"Antecedent", "Dependent"}));
  EXPECT_EQ(GetKeys("CIM_DiagnosticCompletionRecord"), TLines{"InstanceID"});
  EXPECT_EQ(GetKeys("CIM_ConcreteJob"), TLines{"InstanceID"});
  EXPECT_EQ(GetKeys("CIM_UnitaryComputerSystem"), (TLines{"Name", "CreationClassName"}));
  EXPECT_EQ(GetKeys("CIM_OperatingSystem"),
            (TLines{"Name", "CSCreationClassName", "CSName", "CreationClassName"}));
  EXPECT_EQ(GetKeys("CIM_RunningOS"), (TLines{"Antecedent", "Dependent"}));
  EXPECT_EQ(GetKeys("CIM_Indication"), TLines{});
  EXPECT_EQ(GetKeys("CIM_OwningJobElement"), (TLines{"OwningElement", "OwnedElement"}));
  EXPECT_EQ(GetKeys("CIM_AffectedJobElement"), (TLines{"AffectedElement", "AffectingElement"}));
}

TEST_F(DataSchemaTest, ProfilesAndLogsHaveTheirKeysAndRoots) {
  for (const char* name : {"CIM_RegisteredProfile", "CIM_RegisteredSubProfile", "CIM_RecordLog",
                           "CIM_SoftwareIdentity", "CIM_DiagnosticLog"}) {
    EXPECT_EQ(GetKeys(name), TLines{"InstanceID"}) << name;
    EXPECT_TRUE(m_repository.IsComplete(name)) << name;
  }
  for (const char* name :
       {"CIM_ReferencedProfile", "CIM_UseOfLog", "CIM_ElementSoftwareIdentity"}) {
    EXPECT_EQ(GetKeys(name), (TLines{"Antecedent", "Dependent"})) << name;
    EXPECT_TRUE(m_repository.IsA(name, "CIM_Dependency")) << name;
  }
  EXPECT_EQ(GetKeys("CIM_ElementConformsToProfile"),
            (TLines{"ConformantStandard", "ManagedElement"}));
  EXPECT_EQ(GetKeys("CIM_LogManagesRecord"), (TLines{"Log", "Record"}));
  EXPECT_EQ(GetKeys("CIM_ElementCapabilities"), (TLines{"ManagedElement", "Capabilities"}));
  EXPECT_EQ(GetKeys("CIM_ElementSettingData"), (TLines{"ManagedElement", "SettingData"}));
}

TEST_F(DataSchemaTest, CompletionStatesHaveTheirWords) {
  const auto record = m_repository.Find("CIM_DiagnosticCompletionRecord");
  ASSERT_NE(record, nullptr);
  const auto* state = record->FindProperty("CompletionState");
  ASSERT_NE(state, nullptr);
  EXPECT_EQ(state->type, ECIMType::kUInt16);
  EXPECT_EQ(state->values, (TLines{"Unknown", "Other", "OK", "Warning", "Incomplete", "Failed",
                                   "Aborted", "Stopped"}));
  EXPECT_EQ(state->valueMap, (TLines{"0", "1", "2", "3", "4", "5", "6", "7"}));
}

TEST_F(DataSchemaTest, JobStatesHaveTheirWords) {
  const auto* state = m_repository.Find("CIM_ConcreteJob")->FindProperty("JobState");
  ASSERT_NE(state, nullptr);
  ASSERT_EQ(state->values.size(), 13U);
  EXPECT_EQ(state->valueMap[8], "10");
  EXPECT_EQ(state->values[8], "Exception");
  const auto* removal = m_repository.Find("CIM_ConcreteJob")->FindProperty("TimeBeforeRemoval");
  EXPECT_EQ(removal->defaultValue, TCIMValue::DateTime("00000000000500.000000:000"));
}

TEST_F(DataSchemaTest, BothRunMethodsTakeFourParametersAndGiveAJob) {
  const auto service = m_repository.Find("CIM_DiagnosticService");
  ASSERT_EQ(service->methods.size(), 2U);
  for (const auto& method : service->methods) {
    ASSERT_EQ(method.parameters.size(), 4U) << method.name;
    EXPECT_EQ(method.type, ECIMType::kUInt32);
    EXPECT_EQ(method.valueMap.size(), 10U);
    EXPECT_EQ(method.values.size(), 10U);
    EXPECT_EQ(method.parameters[0].referenceClass, "CIM_ManagedElement");
    EXPECT_TRUE(method.parameters[0].isIn);
    EXPECT_FALSE(method.parameters[0].isOut);
    EXPECT_EQ(method.parameters[3].referenceClass, "CIM_ConcreteJob");
    EXPECT_FALSE(method.parameters[3].isIn);
    EXPECT_TRUE(method.parameters[3].isOut);
  }
  const auto* run = m_repository.Find("cim_diagnostictest")->FindMethod("RunDiagnosticService");
  ASSERT_NE(run, nullptr);
  EXPECT_EQ(run->parameters[1].type, ECIMType::kInstance);
  EXPECT_EQ(run->classOrigin, "CIM_DiagnosticService");
}

TEST_F(DataSchemaTest, TestsAreOfferedByAnAssociation) {
  const auto link = m_repository.Find("CIM_AvailableDiagnosticService");
  EXPECT_TRUE(link->isAssociation);
  EXPECT_EQ(link->FindProperty("ServiceProvided")->referenceClass, "CIM_DiagnosticService");
  EXPECT_EQ(link->FindProperty("ServiceProvided")->classOrigin, "CIM_ServiceAvailableToElement");
  EXPECT_EQ(link->FindProperty("EstimatedDurationOfService")->values,
            (TLines{"Unknown", "Milliseconds", "Seconds", "Minutes", "Hours", "Days"}));
  EXPECT_EQ(link->FindProperty("EstimatedDurationQualifier")->type, ECIMType::kUInt32);
  const auto* traits = m_repository.Find("CIM_DiagnosticTest")->FindProperty("Characteristics");
  EXPECT_TRUE(traits->isArray);
  EXPECT_EQ(traits->values.at(6), "Is Package");
  EXPECT_TRUE(m_repository.Find("CIM_DiagnosticService")->isAbstract);
  EXPECT_FALSE(m_repository.Find("CIM_DiagnosticTest")->isAbstract);
}

}  // namespace
