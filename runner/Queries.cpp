// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/ICIMClass.h"
#include "platform/contract/TAddToVectorCallback.h"
#include "runner/DebugLog.h"
#include "runner/DiagsRunner.h"
#include "runner/Handles.h"
#include "runner/Results.h"
#include "runner/Texts.h"

using NZEPQEL20::ICIMClass;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TKeyMap;

namespace {

// The end of a query that found nothing.
std::string FindNothing(const std::string& operation, const std::string& answer) {
  DebugLog("DiagsRunner::" + operation + " - Returning: No extended results");
  DebugLog("Exiting DiagsRunner::" + operation);
  return answer;
}

}  // namespace

// One look, without waiting; null when there is no such record.
DiagsRunner::TInstancePtr DiagsRunner::FindRecord(const std::string& operation,
                                                  const std::string& testID, const TCIMValue& nspID,
                                                  std::string& name) {
  std::string deviceID;
  std::string third;
  if (!GetTestName(testID, name, deviceID, third)) {
    DebugLog("DiagsRunner::" + operation + " - GetTestName Failed");
    return nullptr;
  }
  TInstancePtr record;
  const auto finished = m_finishedTests.find(testID);
  if (finished != m_finishedTests.end()) {
    const TKeyMap keys{{"nspID", nspID}};
    const boost::shared_ptr<ICIMClass> type =
        runner::Need(m_ns, "namespace of the runner").FindClass(runner::kRecordClass, keys);
    runner::TRecords records;
    if (type) type->EnumerateInstances(NZEPQEL20::TAddToVectorCallback(records), 1, keys);
    record = runner::ChooseRecord(records, name, finished->second);
  }
  if (!record) DebugLog("DiagsRunner::" + operation + "  - No Valid Instance Found");
  return record;
}

std::string DiagsRunner::SimpleResults(std::string testID, TNamespacePtr& /*ns*/) {
  DebugLog("Entering DiagsRunner::SimpleResults");
  // Looking an unknown test up enters it: the later queries then answer as for a known one.
  const TCIMValue nspID = m_diagNS[testID];
  std::string name;
  const TInstancePtr record = FindRecord("SimpleResults", testID, nspID, name);
  if (!record) return FindNothing("SimpleResults", "");
  return "(" + runner::GetResultWord(*record, name) + ")";
}

std::string DiagsRunner::ExtendedResults(std::string testID, TNamespacePtr& /*ns*/) {
  DebugLog("Entering DiagsRunner::ExtendedResults");
  const auto known = m_diagNS.find(testID);
  if (known == m_diagNS.end()) {
    DebugLog("DiagsRunner::ExtendedResults testID is not found in m_diagNS");
    return "testID is not found in m_diagNS.\n";
  }
  std::string name;
  const TInstancePtr record = FindRecord("ExtendedResults", testID, known->second, name);
  if (!record) return FindNothing("ExtendedResults", "No extended results.\n");
  return runner::GetText(*record, "RecordData");
}
