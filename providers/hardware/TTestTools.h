// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "providers/hardware/IDiagnosticTest.h"
#include "providers/hardware/TCallerRights.h"
#include "providers/hardware/TConfig.h"
#include "providers/hardware/THostFiles.h"
#include "providers/hardware/TProcessRunner.h"
#include "providers/hardware/TToolFinder.h"

namespace hardware {

/// What the tests of one provider share: settings, the machine's files, the caller's rights, and
/// programs with what was asked of them before.
///
/// Threads: any.
class TTestTools {
 public:
  TTestTools(TConfig config, THostFiles files, TCallerRights rights, TToolFinder finder);

  const TConfig& GetConfig() const { return m_config; }
  const THostFiles& GetFiles() const { return m_files; }
  const TCallerRights& GetRights() const { return m_rights; }

  /// Whether the program is installed; the refusal names the package that brings it.
  TAvailability CheckTool(const std::string& name, const std::string& package) const;

  /// Whether a disk's device file may be opened for reading; the refusal says what would mend it.
  TAvailability CheckDisk(const TDevice& disk) const;

  /// Runs the program `arguments[0]`, a bare name that is looked up first.
  TProcessOutcome Run(const std::vector<std::string>& arguments, std::chrono::milliseconds deadline,
                      const TStopSignal& stop,
                      const TProcessRunner::TWatcher& watcher = nullptr) const;

  /// Asks a program something about `device` and keeps the answer: the same question is answered
  /// from memory ever after. Takes at most five seconds. An answer that was not awaited because of
  /// `stop` is not kept.
  TProcessOutcome Ask(const std::vector<std::string>& question, const TDevice& device,
                      const TStopSignal& stop = TStopSignal());

  /// First line of what the program prints with this option, asked and kept like Ask(); its name
  /// when there is no such line.
  std::string GetVersion(const std::string& name, const std::string& versionOption,
                         const TStopSignal& stop);

 private:
  std::string Find(const std::string& name) const;

  TConfig m_config;
  THostFiles m_files;
  TCallerRights m_rights;
  TToolFinder m_finder;
  TProcessRunner m_runner;
  std::mutex m_mutex;
  std::map<std::string, TProcessOutcome> m_answers;
};

}  // namespace hardware
