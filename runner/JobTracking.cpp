// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <iostream>
#include <utility>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/TAddToVectorCallback.h"
#include "platform/contract/TQELException.h"
#include "runner/DebugLog.h"
#include "runner/DiagsRunner.h"
#include "runner/Handles.h"
#include "runner/Texts.h"

using NZEPQEL20::ICIMClass;
using NZEPQEL20::ICIMInstance;
using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TKeyMap;
using NZEPQEL20::TQELException;

namespace {

// Values of "JobState".
constexpr unsigned short kStarting = 3;
constexpr unsigned short kRunning = 4;
constexpr unsigned short kCompleted = 7;
constexpr unsigned short kException = 10;
constexpr unsigned short kVendorEnd = 32768;

constexpr unsigned int kPollSeconds = 5;
// Extra waits that a "BRCM" test gets, all polls together.
constexpr int kExtraWaits = 10;

unsigned short GetNumber(ICIMInstance& job, const char* property) {
  return static_cast<unsigned short>(runner::GetValue(job, property));
}

void PrintFirst(unsigned short percent) {
  std::cout << "\nPercent Complete: " << percent << "%\n";
}

// Further figures stand behind a blank; hosts look for both forms.
void PrintNext(unsigned short percent) {
  std::cout << "\nPercent Complete : " << percent << "%\n";
}

// Tests whose job is not the one that their records name.
bool IsVendorTest(const std::string& name) {
  const bool vendor = runner::Contains(name, "Fusion-io:") || runner::Contains(name, "FIO:") ||
                      runner::Contains(name, "ZEP:");
  return vendor && runner::Contains(name, ":diag service");
}

// The text between the first two double quotes; false when there are not two.
bool GetFirstQuoted(const std::string& text, std::string& quoted) {
  const std::string::size_type first = text.find('"');
  if (first == std::string::npos) return false;
  const std::string::size_type second = text.find('"', first + 1);
  if (second == std::string::npos) return false;
  quoted = text.substr(first + 1, second - first - 1);
  return true;
}

}  // namespace

/// A job that is being followed: every look at it fetches it anew.
struct DiagsRunner::TJob {
  TCIMReference reference;
  TKeyMap context;
  const std::string& testID;
  TInstancePtr instance;
  std::string className;
  unsigned short state = 0;
  unsigned short percent = 0;

  ICIMInstance& Get() { return runner::Need(instance, "concrete job"); }
  void Fetch();
  void Look();
  bool IsInException();
  bool IsAtEnd(int retries);
  void WaitLonger(int& retries);
  void Follow();
  void Track();
};

void DiagsRunner::TJob::Fetch() {
  instance = runner::Fetch(reference, context);
  Get();
}

void DiagsRunner::TJob::Look() {
  Fetch();
  state = GetNumber(Get(), "JobState");
  percent = GetNumber(Get(), "PercentComplete");
}

bool DiagsRunner::TJob::IsInException() {
  try {
    const TCIMValue value = runner::GetValue(Get(), "JobState");
    return !value.IsNull() && static_cast<unsigned short>(value) == kException;
  } catch (const TQELException&) {
    DebugLog("DiagsRunner::HandleConcrete, catch qel exception, get JobState");
  } catch (...) {
    DebugLog("DiagsRunner::HandleConcrete, catch exception, get JobState");
  }
  return false;
}

bool DiagsRunner::TJob::IsAtEnd(int retries) {
  const bool vendorEnd = state == kVendorEnd && runner::Contains(className, "ELX");
  return vendorEnd || state == kException || retries == 0;
}

// Some jobs stand still between two phases: those of one family get a few more waits.
void DiagsRunner::TJob::WaitLonger(int& retries) {
  if (!runner::Contains(testID, "BRCM")) return;
  while (retries > 0 && (state == kStarting || state == kRunning)) {
    --retries;
    sleep(kPollSeconds);
    Fetch();
    percent = GetNumber(Get(), "PercentComplete");
    state = GetNumber(Get(), "JobState");
  }
}

void DiagsRunner::TJob::Follow() {
  int retries = kExtraWaits;
  unsigned short last = percent;
  do {
    if (GetNumber(Get(), "JobState") == kCompleted) return;
    Look();
    DebugLog("JobState = " + std::to_string(state) + "\tpercentComplete = " +
             std::to_string(percent) + "\tClassName = " + className + "\n");
    if (IsAtEnd(retries)) return;
    sleep(kPollSeconds);
    WaitLonger(retries);
    if (percent > last) {
      PrintNext(percent);
      last = percent;
    }
  } while (percent != 100);
}

void DiagsRunner::TJob::Track() {
  const TCIMValue first = runner::GetValue(Get(), "PercentComplete");
  if (first.IsNull()) return;
  percent = static_cast<unsigned short>(first);
  if (IsInException()) {
    PrintFirst(percent);
    sleep(kPollSeconds);
    return;
  }
  runner::GetValue(Get(), "InstanceID");
  PrintFirst(percent);
  if (percent == 100) return;
  const boost::shared_ptr<ICIMClass> type = reference.GetClass();
  className = runner::Need(type, "class of the job").GetName({});
  Follow();
}

// The job that the last completion record of the device names; empty when none does.
std::string DiagsRunner::FindRecordedJob(const std::string& deviceID, const TKeyMap& context) {
  TInstances records;
  const boost::shared_ptr<ICIMClass> found = runner::Need(m_ns, "namespace of the runner")
                                                 .FindClass("CIM_RecordAppliesToElement", context);
  if (found) {
    found->EnumerateInstances(NZEPQEL20::TAddToVectorCallback(records), 1, context);
  }
  std::string jobID;
  bool matched = false;
  for (const TInstancePtr& record : records) {
    if (!record) continue;
    ICIMInstance& link = *record;
    const std::string antecedent = runner::GetValue(link, "Antecedent").ToString(10);
    const std::string dependent = runner::GetValue(link, "Dependent").ToString(10);
    DebugLog("DiagsRunner::HandleConcrete Antecedent = " + antecedent);
    DebugLog("DiagsRunner::HandleConcrete Dependent = " + dependent);
    if (!runner::Contains(antecedent, "DiagnosticCompletionRecord")) continue;
    const std::string matchDeviceID = "\"" + deviceID + "\"";
    DebugLog("matchDeviceID: " + matchDeviceID);
    if (!runner::Contains(dependent, matchDeviceID)) continue;
    matched = GetFirstQuoted(antecedent, jobID) || matched;
  }
  if (!matched) {
    DebugLog("DiagsRunner::HandleConcrete concreteJobID not found for Fusion-io diags.");
  }
  return jobID;
}

void DiagsRunner::HandleConcrete(TCIMReference job, std::string& result, std::string testID,
                                 TNamespacePtr& ns) {
  DebugLog("DiagsRunner::HandleConcrete");
  const auto known = m_diagNS.find(testID);
  if (known == m_diagNS.end()) {
    DebugLog("DiagsRunner::HandleConcrete testID is not found in m_diagNS");
    return;
  }
  TKeyMap context{{"nspID", known->second}};
  if (known->second == TCIMValue("pegasus")) context["nsp"] = m_diagPegasusNS[testID];

  TJob tracked{std::move(job), context, testID, nullptr, "", 0, 0};
  tracked.Fetch();
  tracked.Track();

  m_finishedTests.erase(testID);
  std::string name;
  std::string deviceID;
  std::string third;
  GetTestName(testID, name, deviceID, third);
  const std::string jobID =
      IsVendorTest(name) ? FindRecordedJob(deviceID, context)
                         : static_cast<std::string>(runner::GetValue(tracked.Get(), "InstanceID"));
  m_finishedTests.insert({testID, jobID});
  result = ImmediateResults(testID, ns);
}
