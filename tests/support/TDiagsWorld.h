// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/support/TScriptedWorld.h"

namespace scripted {

/// A scripted world that speaks of tests, jobs and records.
class TDiagsWorld : public TScriptedWorld {
 public:
  /// A test: the association and its two ends.
  struct TTest {
    std::string identifier;
    TObjectPtr association;
    TObjectPtr service;
    TObjectPtr device;
  };
  /// A percentage and a job state; one that is not there is NULL.
  struct TStep {
    std::optional<unsigned int> percent;
    std::optional<unsigned int> state;
  };

  /// A test that "CIM_AvailableDiagnosticService" shows. Its objects are
  /// Test_Available.Id="N", Test_Service.Id="N" and Test_Device.Id="N" with N counting from 1.
  TTest AddTest(const std::string& name, const std::string& deviceID,
                const std::string& elementName);
  /// Announces a duration for `test`.
  static void SetDuration(const TTest& test, unsigned int unit, unsigned int count);
  /// Test_Job.InstanceID=ID, which takes one step with each fetch.
  TObjectPtr AddJob(const std::string& jobID, const std::vector<TStep>& steps,
                    const std::string& className = "Test_Job");
  /// Lets `method` of the test's service answer with `job` under the out-parameter "Job".
  static void LetRun(const TTest& test, const TObjectPtr& job,
                     const std::string& method = "RunDiagnostic");
  /// A completion record for `jobID` with the state as number and word; Test_Record.Id=RECORD.
  TObjectPtr AddRecord(const std::string& record, const std::string& serviceName,
                       const std::string& jobID, const std::string& stateWord,
                       const std::string& recordData, unsigned int firstEnumeration = 0);
  /// A "CIM_RecordAppliesToElement" between a record and a device.
  TObjectPtr AddApplies(const NZEPQEL20::TCIMReference& record,
                        const NZEPQEL20::TCIMReference& device);

  /// One test that runs to `stateWord` through a job of two polls.
  TTest AddRunningTest(const std::string& name, const std::string& stateWord);

 private:
  unsigned int m_tests = 0;
  unsigned int m_applies = 0;
};

}  // namespace scripted
