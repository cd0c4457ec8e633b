// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/Catalogue.h"
#include "host/ExitStatus.h"
#include "host/ProviderArguments.h"
#include "host/ServerArguments.h"
#include "platform/contract/ILogger.h"

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace host {

enum class ECommand { kList, kRun, kInspect };

/// Where the runner's own progress goes.
enum class EProgress {
  kAuto,    ///< To standard output when that is a terminal.
  kAlways,  ///< Also when it is not.
  kNever,
};

/// Everything that the command line asked for.
struct TOptions {
  ECommand command = ECommand::kList;
  bool isJson = false;
  std::string root;                      ///< Empty: as the environment or the install prefix says.
  std::string nameSpace = "root/cimv2";  ///< Where discovery looks.
  std::string logFile;                   ///< "-" for standard error; empty for no log.
  NZEPQEL20::ILogger::EQELLogSeverity logLevel = NZEPQEL20::ILogger::kInfo;
  EProgress progress = EProgress::kAuto;
  TSelection selection;
  std::optional<std::string> label;            ///< Absent: each test's own service name.
  std::string className;                       ///< For `inspect`.
  std::optional<TServerArguments> server;      ///< Absent: the tests are those of this machine.
  std::optional<TProviderArguments> provider;  ///< Present: it counts instead of `command`.
};

/// Reads the arguments of `diagsrun`.
class TCommandLine {
 public:
  TCommandLine();
  ~TCommandLine();
  TCommandLine(const TCommandLine&) = delete;
  TCommandLine& operator=(const TCommandLine&) = delete;

  /// Reads `arguments` (without the program's name); to be called once. No value means that the
  /// command is over: help or the version went to `out`, or one line about wrong usage to `err`,
  /// and GetStatus() says with which status.
  std::optional<TOptions> Parse(const std::vector<std::string>& arguments, std::ostream& out,
                                std::ostream& err);

  EExitStatus GetStatus() const { return m_status; }

  /// The help of a command, such as "list" or "provider add"; of the whole program when `command`
  /// is empty.
  std::string GetHelp(const std::string& command) const;

  /// The long options of a command, of the whole program when `command` is empty; each with "--".
  std::vector<std::string> GetOptionNames(const std::string& command) const;

 private:
  void AddGlobalOptions();
  void AddList();
  void AddRun();
  void AddInspect();
  const CLI::App& FindApp(const std::string& command) const;
  void Check() const;
  std::string Explain(const CLI::ParseError& error) const;

  std::unique_ptr<CLI::App> m_app;
  TOptions m_options;
  TServerArguments m_server;
  TProviderArguments m_provider;
  EExitStatus m_status = EExitStatus::kAllPassed;
};

}  // namespace host
