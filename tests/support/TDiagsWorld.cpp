// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TDiagsWorld.h"

namespace scripted {

using NZEPQEL20::ECIMType;
using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;

namespace {

TCIMValue MakeUInt16(const std::optional<unsigned int>& number) {
  return number ? TCIMValue::UInt16(static_cast<std::uint16_t>(*number))
                : TCIMValue::Null(ECIMType::kUInt16);
}

}  // namespace

TDiagsWorld::TTest TDiagsWorld::AddTest(const std::string& name, const std::string& deviceID,
                                        const std::string& elementName) {
  const std::string number = std::to_string(++m_tests);
  TTest test;
  test.identifier = name + "," + deviceID + "," + elementName;
  test.service = Add("Test_Service", "Id", number);
  test.service->Set("Name", name)
      .Set("CreationClassName", "Test_Service")
      .Set("Characteristics", TCIMValue::Null(ECIMType::kUInt16, true));
  test.device = Add("Test_Device", "Id", number);
  test.device->Set("DeviceID", deviceID).Set("ElementName", elementName);
  test.association = Add("Test_Available", "Id", number);
  test.association->Set("ServiceProvided", test.service->GetPath())
      .Set("UserOfService", test.device->GetPath())
      .Set("EstimatedDurationOfService", TCIMValue::Null(ECIMType::kUInt16))
      .Set("EstimatedDurationQualifier", TCIMValue::Null(ECIMType::kUInt32));
  Show("CIM_AvailableDiagnosticService", test.association);
  return test;
}

void TDiagsWorld::SetDuration(const TTest& test, unsigned int unit, unsigned int count) {
  test.association->Set("EstimatedDurationOfService", MakeUInt16(unit))
      .Set("EstimatedDurationQualifier", TCIMValue::UInt32(count));
}

TObjectPtr TDiagsWorld::AddJob(const std::string& jobID, const std::vector<TStep>& steps,
                               const std::string& className) {
  const TObjectPtr job = Add(className, "InstanceID", jobID);
  job->Set("InstanceID", jobID);
  for (std::size_t step = 0; step < steps.size(); ++step) {
    if (step > 0) {
      job->AtNextFetch();
    }
    job->Set("PercentComplete", MakeUInt16(steps[step].percent))
        .Set("JobState", MakeUInt16(steps[step].state));
  }
  return job;
}

void TDiagsWorld::LetRun(const TTest& test, const TObjectPtr& job, const std::string& method) {
  TScriptedMethod script;
  script.outParameters["Job"] = TCIMValue(job->GetPath());
  test.service->SetMethod(method, script);
}

TObjectPtr TDiagsWorld::AddRecord(const std::string& record, const std::string& serviceName,
                                  const std::string& jobID, const std::string& stateWord,
                                  const std::string& recordData, unsigned int firstEnumeration) {
  const TObjectPtr object = Add("Test_Record", "Id", record);
  object->Set("InstanceID", "record of " + jobID)
      .Set("ServiceName", serviceName)
      .Set("ManagedElementName", "element")
      .SetText("CompletionState", TCIMValue::UInt16(2), stateWord)
      .Set("RecordData", recordData);
  Show("CIM_DiagnosticCompletionRecord", object, firstEnumeration);
  return object;
}

TObjectPtr TDiagsWorld::AddApplies(const TCIMReference& record, const TCIMReference& device) {
  const TObjectPtr applies = Add("Test_Applies", "Id", std::to_string(++m_applies));
  applies->Set("Antecedent", record).Set("Dependent", device);
  Show("CIM_RecordAppliesToElement", applies);
  return applies;
}

TDiagsWorld::TTest TDiagsWorld::AddRunningTest(const std::string& name,
                                               const std::string& stateWord) {
  const TTest test = AddTest(name, "dev0", "Device Zero");
  const std::string jobID = "job of " + test.identifier;
  LetRun(test, AddJob(jobID, {{10, 4}, {60, 4}, {100, 7}}));
  AddRecord("of " + name, name, jobID, stateWord, "data");
  return test;
}

}  // namespace scripted
