// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <initializer_list>

#include "platform/contract/TAddToVectorCallback.h"
#include "platform/contract/TCIMCopy.h"
#include "platform/contract/TQELException.h"
#include "runner/DebugLog.h"
#include "runner/DiagsRunner.h"
#include "runner/Handles.h"
#include "runner/Results.h"
#include "runner/Texts.h"

using NZEPQEL20::ICIMClass;
using NZEPQEL20::ICIMInstance;
using NZEPQEL20::TCIMCopy;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TKeyMap;
using NZEPQEL20::TQELException;

namespace {

constexpr char kNoResults[] = "No Results.\n";
constexpr int kAttempts = 10;
constexpr unsigned int kAttemptSeconds = 5;

void Collect(ICIMClass& type, const TKeyMap& keys, runner::TRecords& records) {
  records.clear();
  type.EnumerateInstances(NZEPQEL20::TAddToVectorCallback(records), 1, keys);
}

// Until the service has written a record, of whatever run; providers write late.
void WaitForRecord(ICIMClass& type, const TKeyMap& keys, const std::string& name,
                   runner::TRecords& records) {
  Collect(type, keys, records);
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    for (const auto& record : records) {
      if (record && runner::IsOfService(*record, name)) return;
    }
    Collect(type, keys, records);
    sleep(kAttemptSeconds);
  }
}

bool ContainsAny(const std::string& text, std::initializer_list<const char*> parts) {
  return std::any_of(parts.begin(), parts.end(),
                     [&text](const char* part) { return runner::Contains(text, part); });
}

// Tests whose outcome the message catalogue explains.
bool IsInCatalogue(const std::string& testID) {
  if (ContainsAny(testID, {"BRCM", "Brocade", "DiskDefault", "IANet", "Nvidia", "NVIDIA", "ELX"})) {
    return true;
  }
  return runner::Contains(testID, "diag service") &&
         ContainsAny(testID, {"Fusion-io", "FIO", "ZEP"});
}

std::string NormaliseVendorStatus(const std::string& status) {
  if (ContainsAny(status, {"ok", "warning"})) return "ok";
  if (runner::Contains(status, "aborted")) return "aborted";
  return "failed";
}

std::string NoResults() {
  DebugLog("DiagsRunner::ImmediateResults  - No Valid Instance Found");
  DebugLog("DiagsRunner::ImmediateResults - Returning: No extended results");
  return kNoResults;
}

}  // namespace

// Puts the catalogue's messages for this outcome in front of the record's own data.
void DiagsRunner::AddMessages(ICIMInstance& record, std::string name) {
  std::string status = boost::algorithm::to_lower_copy(runner::GetText(record, "CompletionState"));
  boost::algorithm::to_lower(name);
  DebugLog("testName :" + name);
  std::string key = name;
  if (runner::IsVendorService(key)) {
    key = "fusion-io:diag service";
    DebugLog("update test name for :" + key);
    DebugLog("testStatus :" + status);
    status = NormaliseVendorStatus(status);
  }
  std::string text;
  const auto [first, last] = m_resultMsgs.equal_range(key);
  for (auto entry = first; entry != last; ++entry) {
    if (entry->second.state != status) continue;
    text += entry->second.errorCode + " : " + entry->second.getMessage();
  }
  text += runner::GetText(record, "RecordData");
  record.SetProperty("RecordData", TCIMValue(text), {});
}

std::string DiagsRunner::ReadResult(const std::string& testID, TNamespacePtr& ns) {
  const auto known = m_diagNS.find(testID);
  if (known == m_diagNS.end()) {
    DebugLog("DiagsRunner::ImmediateResults testID is not found in m_diagNS");
    return kNoResults;
  }
  const TKeyMap keys{{"nspID", known->second}};
  DebugLog("testID in ImmediateResults:" + testID);
  std::string name;
  std::string deviceID;
  std::string third;
  if (!GetTestName(testID, name, deviceID, third)) {
    DebugLog("DiagsRunner::ImmediateResults - GetTestName Failed");
    DebugLog("DiagsRunner::ImmediateResults - Returning: No extended results");
    return kNoResults;
  }
  // A tape drive goes by its device id.
  if (runner::Contains(name, "Tape Drive")) third = deviceID;
  const auto finished = m_finishedTests.find(testID);
  if (finished == m_finishedTests.end()) return kNoResults;

  const boost::shared_ptr<ICIMClass> type =
      runner::Need(m_ns, "namespace of the runner").FindClass(runner::kRecordClass, keys);
  if (!type) return NoResults();
  runner::TRecords records;
  WaitForRecord(*type, keys, name, records);
  const TInstancePtr record = runner::ChooseRecord(records, name, finished->second);
  if (!record) return NoResults();

  std::string word = runner::GetResultWord(*record, name);
  if (IsInCatalogue(testID)) AddMessages(*record, name);
  TCIMCopy::CopyInstance(record, ns);
  return word;
}

std::string DiagsRunner::ImmediateResults(std::string testID, TNamespacePtr& ns) {
  DebugLog("Entering DiagsRunner::ImmediateResults, testID is: " + testID);
  try {
    return ReadResult(testID, ns);
  } catch (const TQELException&) {
    DebugLog("DiagsRunner::ImmediateResults caught Exception");
    return kNoResults;
  }
}
