// SPDX-License-Identifier: Apache-2.0
#include <pthread.h>

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "platform/contract/CMPINSPInstanceRegistry.h"
#include "platform/contract/TQELException.h"
#include "runner/DebugLog.h"
#include "runner/DiagsRunner.h"
#include "runner/Handles.h"
#include "runner/Texts.h"

using NZEPQEL20::ICIMInstance;
using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TCMPIInstance;
using NZEPQEL20::TKeyMap;
using NZEPQEL20::TQELException;

namespace {

constexpr char kNoStatus[] = "No Status\n";
// Unit code of "EstimatedDurationOfService" above which a run is long enough for an estimate.
constexpr unsigned short kSeconds = 3;

void RunInShell(const std::string& command) {
  // The scratch file is a service to the tape test; a shell that fails costs only that.
  const int ignored = std::system(command.c_str());  // NOLINT(cert-env33-c)
  static_cast<void>(ignored);
}

void PrepareTape(const std::string& testLabel) {
  if (!runner::Contains(testLabel, "Tape RW Test")) return;
  RunInShell("rm -fr tapeRWTest.tmp");
  RunInShell("echo '" + testLabel + "'>tapeRWTest.tmp");
}

// The announced count when it is worth an estimate, else 0.
unsigned int GetAnnouncedMinutes(ICIMInstance& association) {
  const TCIMValue unit = runner::GetValue(association, "EstimatedDurationOfService");
  if (unit.IsNull()) return 0;
  const TCIMValue count = runner::GetValue(association, "EstimatedDurationQualifier");
  if (count.IsNull() || static_cast<unsigned short>(unit) <= kSeconds) return 0;
  return static_cast<unsigned int>(count);
}

}  // namespace

/// A test's association and the two objects that it joins.
struct DiagsRunner::TPair {
  TInstancePtr association;
  TCIMReference deviceRef;
  TInstancePtr service;
  TInstancePtr device;

  void Fetch(const TInstancePtr& from, TKeyMap& context, const TNamespacePtr& ns);
  bool IsOf(const std::string& name, const std::string& deviceID) const;
};

void DiagsRunner::TPair::Fetch(const TInstancePtr& from, TKeyMap& context,
                               const TNamespacePtr& ns) {
  association = from;
  ICIMInstance& joined = runner::Need(association, "association instance");
  const TCIMReference serviceRef = runner::GetReference(joined, runner::kServiceProperty);
  deviceRef = runner::GetReference(joined, runner::kDeviceProperty);
  try {
    service = runner::Fetch(serviceRef, context);
    device = runner::Fetch(deviceRef, context);
    // An empty answer is as good a reason to ask again as a refusal.
    runner::Need(service, "diagnostic service");
    runner::Need(device, "device");
  } catch (...) {
    context["nspID"] = TCIMValue("plugin");
    device = runner::GetUpcallNamespace(deviceRef, ns)->GetInstance(deviceRef, context);
    service = runner::GetUpcallNamespace(serviceRef, ns)->GetInstance(serviceRef, context);
  }
}

bool DiagsRunner::TPair::IsOf(const std::string& name, const std::string& deviceID) const {
  return service && device && runner::GetText(*service, "Name") == name &&
         runner::GetText(*device, "DeviceID") == deviceID;
}

bool DiagsRunner::FindPair(const std::string& testID, const std::string& name,
                           const std::string& deviceID, TNamespacePtr& ns, TPair& pair) {
  TKeyMap context{{"nspID", m_diagNS[testID]}};
  const auto cached = m_launchedTests.find(testID);
  if (cached != m_launchedTests.end()) {
    pair.Fetch(m_instances.at(static_cast<TInstances::size_type>(cached->second)), context, ns);
    if (pair.device) pair.device->GetObjectPath({});
    return true;
  }
  for (TInstances::size_type i = 0; i < m_instances.size(); ++i) {
    pair.Fetch(m_instances[i], context, ns);
    if (!pair.IsOf(name, deviceID)) continue;
    m_launchedTests.insert({testID, static_cast<std::int32_t>(i)});
    return true;
  }
  return false;
}

void DiagsRunner::RunDiagnostic(const TPair& pair, unsigned int minutes) {
  m_runArgs.clear();
  m_runArgs.insert({"ManagedElement", TCIMValue(pair.deviceRef)});
  m_runInstance = boost::dynamic_pointer_cast<TCMPIInstance>(pair.service);
  if (!m_runInstance) return;
  if (minutes == 0) {
    m_runInstance->InvokeMethod("RunDiagnostic", m_runArgs, {});
    return;
  }
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_t thread;
  pthread_create(&thread, &attributes, &DiagsRunner::ExecuteInThread, this);
  pthread_attr_destroy(&attributes);
  printStatus(minutes);
}

// The second method, for providers that know only that one. False when it threw.
bool DiagsRunner::RunDiagnosticService(const TCIMReference& deviceRef) {
  DebugLog(
      "DiagsRunner::Execute - No Concrete Job Found for RunDiagnostic, attempting "
      "RunDiagnosticService");
  m_runArgs.clear();
  m_runArgs.insert({"ManagedElement", TCIMValue(deviceRef)});
  try {
    m_runInstance->InvokeMethod("RunDiagnosticService", m_runArgs, {});
    return true;
  } catch (const std::exception&) {
    DebugLog("DiagsRunner::Execute - exception from RunDiagnosticService detected");
    return false;
  }
}

std::string DiagsRunner::RunPair(const TPair& pair, const std::string& testID,
                                 const std::string& testLabel, TNamespacePtr& ns) {
  const unsigned int minutes = GetAnnouncedMinutes(*pair.association);
  PrepareTape(testLabel);
  RunDiagnostic(pair, minutes);
  if (!m_runInstance) return kNoStatus;
  if (m_runArgs.empty() && !RunDiagnosticService(pair.deviceRef)) return "";
  if (m_runArgs.empty()) return kNoStatus;

  std::string result;
  HandleConcrete(static_cast<TCIMReference>(m_runArgs.begin()->second), result, testID, ns);
  return result;
}

std::string DiagsRunner::Launch(const std::string& testID, const std::string& testLabel,
                                TNamespacePtr& ns) {
  m_threadDone = false;
  std::string name;
  std::string deviceID;
  std::string third;
  std::string result;
  TPair pair;
  if (GetTestName(testID, name, deviceID, third) && FindPair(testID, name, deviceID, ns, pair)) {
    result = RunPair(pair, testID, testLabel, ns);
  } else {
    DebugLog("DiagsRunner::Execute looking for:" + testID);
    if (m_finishedTests.erase(testID) != 0) DebugLog("erased test from map");
    DebugLog("returning no matching");
    result += std::string(" ") + runner::kNoMatch;
  }
  NZEPQEL20::CMPINSPInstanceRegistry::GetRegistrySingleton().ClearInstances();
  return result;
}

std::string DiagsRunner::GiveUp(const std::string& testID, const char* erasedTrace) {
  DebugLog("DiagsRunner::Execute looking for:" + testID);
  if (m_finishedTests.erase(testID) != 0) DebugLog(erasedTrace);
  DebugLog("DiagsRunner::Execute returning no matching");
  return runner::kNoMatch;
}

std::string DiagsRunner::Execute(std::string testID, std::string testLabel, TNamespacePtr& ns) {
  DebugLog("Entering DiagsRunner::Execute with testID = " + testID);
  if (m_biosID == "ko" && runner::Contains(testID, "ELXUCNA: NIC PHY LoopBackTest")) {
    std::cout << "Please ignore the error message if you do not have one of the following cards "
                 "installed: ZEP Dual-port 10Gb SFP+ or ZEP Dual-port 10Gb-T"
              << std::endl;
  }
  if (m_diagNS.find(testID) == m_diagNS.end()) {
    DebugLog("DiagsRunner::Execute testID is not found in m_diagNS");
    return runner::kNoMatch;
  }
  try {
    return Launch(testID, testLabel, ns);
  } catch (const TQELException&) {
    return GiveUp(testID, "DiagsRunner::Execute erased test from map");
  } catch (...) {
    return GiveUp(testID, "DiagsRunner::Execute erased test from finished map");
  }
}
