// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "parsers/TDiagnosticResultMessage.h"
#include "platform/contract/ICIMInstance.h"
#include "platform/contract/ICIMNamespace.h"
#include "platform/contract/TCIMReference.h"
#include "platform/contract/TCIMValue.h"
#include "platform/contract/TCMPIInstance.h"
#include "runner/Export.h"

class DiagsRunner;

/// The one runner of the process; null until the first GetDiagsRunner(). It keeps its value after
/// FreeDiagsRunner().
extern DIAGSRUNNER_EXPORT DiagsRunner* fgDiagInstance;

/// Finds, runs and reports the hardware diagnostic tests that the CIM providers of this machine
/// offer.
///
/// A test is known by its identifier, "Name,DeviceID,ElementName": the diagnostic service's name
/// and the device's two. Results are texts; a fixed text stands for every empty outcome.
/// Threads: to be driven from one thread, one test at a time. A timed test makes its method call
/// on a detached thread of its own; Execute() returns only after that call has.
class DiagsRunner {
 public:
  /// Handles of the object model, shared with the host.
  using TNamespacePtr = boost::shared_ptr<NZEPQEL20::ICIMNamespace>;
  using TInstancePtr = boost::shared_ptr<NZEPQEL20::ICIMInstance>;

  /// The runner, made on the first call: reads the message catalogue and the excluded-tests list
  /// below the installation root. Later calls ignore `ns`.
  /// Errors: TQELException (status 4 when a buffer cannot be had) and what the platform throws. A
  /// failed construction leaves no runner behind; when only the excluded-tests list fails, the
  /// runner stays, without a list.
  DIAGSRUNNER_EXPORT static DiagsRunner* GetDiagsRunner(TNamespacePtr ns);

  /// Destroys the runner, if there is one. To be called once, at the very end of the process: the
  /// global pointer is left as it was, and GetDiagsRunner() must not be called again.
  DIAGSRUNNER_EXPORT static void FreeDiagsRunner();

  /// The identifiers of all tests, each followed by "|", or "No matching diagnostic test or
  /// device found.\n". The first answer is kept and given again. `unused` is not consulted.
  /// Errors: none of the platform's leaves it; a walk that failed counts as "nothing found", and
  /// that answer is kept, too.
  DIAGSRUNNER_EXPORT std::string EnumerateDiagTests(std::string unused);

  /// Runs one test to its end and answers with its result word: "Pass", "Fail", "Aborted",
  /// "Incomplete", or one of the texts for an empty outcome. Progress goes to standard output.
  ///
  /// `testLabel` is the host's name for the test; for a tape test it reaches a shell, so the host
  /// must refuse quotes in it. `ns` receives a copy of the completion record. The answer is empty
  /// when the provider's second method threw.
  /// Errors: none of the platform's leaves it, with one exception: what a timed test's method
  /// call throws on its own thread ends the process.
  DIAGSRUNNER_EXPORT std::string Execute(std::string testID, std::string testLabel,
                                         TNamespacePtr& ns);

  /// The result word of a test that has just ended. Waits up to 50 s for its completion record,
  /// adds the vendor's messages to the record and copies it into `ns`. "No Results.\n" when there
  /// is none, or when reading or copying it failed (the record may then have its messages).
  /// Errors: what the platform throws other than TQELException.
  DIAGSRUNNER_EXPORT std::string ImmediateResults(std::string testID, TNamespacePtr& ns);

  /// The result word in parentheses, without waiting; empty when there is no record. An unknown
  /// test becomes a known one without a provider context. `ns` is not used.
  /// Errors: whatever the platform throws.
  DIAGSRUNNER_EXPORT std::string SimpleResults(std::string testID, TNamespacePtr& ns);

  /// The record data of the test's completion record, without waiting; "No extended results.\n"
  /// when there is none, "testID is not found in m_diagNS.\n" for an unknown test. `ns` is not
  /// used.
  /// Errors: whatever the platform throws.
  DIAGSRUNNER_EXPORT std::string ExtendedResults(std::string testID, TNamespacePtr& ns);

  /// The instances of a class, from the runner's own namespace, as text: per instance its object
  /// path, a line end and EnumProperties(), with an empty line between instances; "Class Not
  /// Found\n" when neither a provider nor the namespace has the class. What fails is reported in a
  /// line of its own in front, and the other providers are still asked.
  /// Errors: TQELException for a null namespace, and what instances throw while they are shown.
  DIAGSRUNNER_EXPORT std::string EI(std::string className);
  /// The same in the given namespace.
  DIAGSRUNNER_EXPORT std::string EI(std::string className, TNamespacePtr ns);

  /// Appends one line per non-null property of `instance` to `out`: name, " : ", value, line end.
  /// An array's elements stand in braces, separated by ",".
  /// Errors: TQELException for a null handle, and what the instance throws; `out` then holds the
  /// lines so far.
  DIAGSRUNNER_EXPORT void EnumProperties(TInstancePtr instance, std::string& out);

 private:
  friend struct TDiagsRunnerTestAccess;

  using TInstances = std::vector<TInstancePtr>;
  struct TPair;
  struct TWalk;
  struct TJob;

  explicit DiagsRunner(TNamespacePtr ns);
  ~DiagsRunner() = default;
  DiagsRunner(const DiagsRunner&) = delete;
  DiagsRunner& operator=(const DiagsRunner&) = delete;

  // Identifiers.
  bool GetTestName(std::string testID, std::string& name, std::string& deviceID,
                   std::string& elementName);

  // Filtering.
  void GatherExcludedTests();
  void filterDiagsItems(TInstances& items);
  void filterDiagsItemsLogger(std::map<std::string, std::vector<std::string>> matrix);

  // Discovery.
  bool GetCIMData(NZEPQEL20::TCIMReference& instRef1, NZEPQEL20::TCIMReference& instRef2,
                  std::string className, std::string property1, std::string property2,
                  std::string unused1, std::string unused2, std::string unused3,
                  std::string unused4, std::vector<std::string>& out, int retType,
                  NZEPQEL20::TCIMValue nspID);

  // Launch.
  std::string Launch(const std::string& testID, const std::string& testLabel, TNamespacePtr& ns);
  std::string GiveUp(const std::string& testID, const char* erasedTrace);
  bool FindPair(const std::string& testID, const std::string& name, const std::string& deviceID,
                TNamespacePtr& ns, TPair& pair);
  std::string RunPair(const TPair& pair, const std::string& testID, const std::string& testLabel,
                      TNamespacePtr& ns);
  void RunDiagnostic(const TPair& pair, unsigned int minutes);
  bool RunDiagnosticService(const NZEPQEL20::TCIMReference& deviceRef);

  // Job tracking.
  std::string FindRecordedJob(const std::string& deviceID, const NZEPQEL20::TKeyMap& context);
  void HandleConcrete(NZEPQEL20::TCIMReference job, std::string& result, std::string testID,
                      TNamespacePtr& ns);

  // Results.
  std::string ReadResult(const std::string& testID, TNamespacePtr& ns);
  void AddMessages(NZEPQEL20::ICIMInstance& record, std::string name);
  TInstancePtr FindRecord(const std::string& operation, const std::string& testID,
                          const NZEPQEL20::TCIMValue& nspID, std::string& name);

  // Progress.
  void printStatus(unsigned int minutes);
  static void* ExecuteInThread(void* arg);

  boost::shared_ptr<void> m_handle;
  boost::weak_ptr<void> m_weakHandle;
  std::int64_t m_reserved = 0;
  std::string m_biosID;
  std::atomic<bool> m_threadDone{false};
  std::string m_testList;
  std::vector<std::string> m_excludedTests;
  std::map<std::string, std::int32_t> m_launchedTests;
  NZEPQEL20::TKeyMap m_runArgs;
  std::map<std::string, std::string> m_finishedTests;
  TNamespacePtr m_ns;
  TInstancePtr m_runInstance;
  std::multimap<std::string, TDiagnosticResultMessage> m_resultMsgs;
  TInstances m_instances;
  NZEPQEL20::TKeyMap m_diagNS;
  NZEPQEL20::TKeyMap m_diagPegasusNS;
};
