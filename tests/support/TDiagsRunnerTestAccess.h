// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <vector>

#include "runner/DiagsRunner.h"

/// The tests' way to what DiagsRunner keeps to itself.
struct TDiagsRunnerTestAccess {
  using TCIMValue = NZEPQEL20::TCIMValue;
  using TCIMReference = NZEPQEL20::TCIMReference;
  using TNamespacePtr = DiagsRunner::TNamespacePtr;
  using TInstances = DiagsRunner::TInstances;
  using TMatrix = std::map<std::string, std::vector<std::string>>;

  /// A runner beside the global one; Destroy() it.
  static DiagsRunner* Create(const TNamespacePtr& ns) { return new DiagsRunner(ns); }
  static void Destroy(DiagsRunner* runner) { delete runner; }

  static TNamespacePtr& Ns(DiagsRunner& runner) { return runner.m_ns; }
  static std::string& BiosID(DiagsRunner& runner) { return runner.m_biosID; }
  static std::string& TestList(DiagsRunner& runner) { return runner.m_testList; }
  static std::vector<std::string>& Excluded(DiagsRunner& runner) { return runner.m_excludedTests; }
  static std::map<std::string, std::int32_t>& Launched(DiagsRunner& runner) {
    return runner.m_launchedTests;
  }
  static std::map<std::string, std::string>& Finished(DiagsRunner& runner) {
    return runner.m_finishedTests;
  }
  static NZEPQEL20::TKeyMap& RunArgs(DiagsRunner& runner) { return runner.m_runArgs; }
  static DiagsRunner::TInstancePtr& RunInstance(DiagsRunner& runner) {
    return runner.m_runInstance;
  }
  static std::multimap<std::string, TDiagnosticResultMessage>& Messages(DiagsRunner& runner) {
    return runner.m_resultMsgs;
  }
  static TInstances& Instances(DiagsRunner& runner) { return runner.m_instances; }
  static NZEPQEL20::TKeyMap& DiagNS(DiagsRunner& runner) { return runner.m_diagNS; }
  static NZEPQEL20::TKeyMap& PegasusNS(DiagsRunner& runner) { return runner.m_diagPegasusNS; }
  static bool IsThreadDone(const DiagsRunner& runner) { return runner.m_threadDone; }
  static void SetThreadDone(DiagsRunner& runner, bool isDone) { runner.m_threadDone = isDone; }
  static bool AreHandlesEmpty(const DiagsRunner& runner) {
    return !runner.m_handle && runner.m_weakHandle.expired() && runner.m_reserved == 0;
  }

  static bool GetTestName(DiagsRunner& runner, const std::string& testID, std::string& name,
                          std::string& deviceID, std::string& elementName) {
    return runner.GetTestName(testID, name, deviceID, elementName);
  }
  static void GatherExcludedTests(DiagsRunner& runner) { runner.GatherExcludedTests(); }
  static void FilterItems(DiagsRunner& runner, TInstances& items) {
    runner.filterDiagsItems(items);
  }
  static void LogMatrix(DiagsRunner& runner, const TMatrix& matrix) {
    runner.filterDiagsItemsLogger(matrix);
  }
  /// GetCIMData as the enumeration calls it, with another class or nspID.
  static bool Walk(DiagsRunner& runner, const std::string& className, const TCIMValue& nspID,
                   std::vector<std::string>& out) {
    TCIMReference service;
    TCIMReference device;
    return runner.GetCIMData(service, device, className, "ServiceProvided", "UserOfService", "", "",
                             "", "", out, 3, nspID);
  }
  static void HandleConcrete(DiagsRunner& runner, const TCIMReference& job, std::string& result,
                             const std::string& testID, TNamespacePtr& ns) {
    runner.HandleConcrete(job, result, testID, ns);
  }
  static void PrintStatus(DiagsRunner& runner, unsigned int minutes) {
    runner.printStatus(minutes);
  }
  static void* ExecuteInThread() { return DiagsRunner::ExecuteInThread(nullptr); }
};
