// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/IDiagnostics.h"
#include "host/TOutputRedirect.h"
#include "runner/DiagsRunner.h"

namespace host {

/// The runner of this process over a platform.
/// Threads: one.
class TRunnerDiagnostics : public IDiagnostics {
 public:
  /// `progress` says where the runner's own output goes during a test. `platform` must outlive
  /// this object.
  /// Errors: what GetDiagsRunner() throws.
  TRunnerDiagnostics(NZEPQEL20::TPlatform& platform, EOutputTarget progress);
  /// Frees the runner: there can be one such object in the life of a process.
  ~TRunnerDiagnostics() override;
  TRunnerDiagnostics(const TRunnerDiagnostics&) = delete;
  TRunnerDiagnostics& operator=(const TRunnerDiagnostics&) = delete;

  std::string EnumerateTests() override;
  std::vector<NZEPQEL20::TUnofferedTest> GetUnofferedTests() override;
  NZEPQEL20::TTestPlaces GetTestPlaces() override;
  std::vector<std::string> GetProblems() override;
  std::string TakeServerFailure() override;
  TRunResult Run(const std::string& id, const std::string& label) override;
  std::string Inspect(const std::string& className) override;
  std::optional<std::vector<TInstanceText>> GetInstances(const std::string& className) override;

 private:
  NZEPQEL20::TPlatform& m_platform;
  EOutputTarget m_progress;
  DiagsRunner* m_runner;
};

/// The texts of a completion record.
TRecordText ReadRecord(NZEPQEL20::ICIMInstance& record);

/// An instance's path and its properties that are not null.
TInstanceText ReadInstance(NZEPQEL20::ICIMInstance& instance);

}  // namespace host
