// SPDX-License-Identifier: Apache-2.0
#include "host/Host.h"

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <utility>

#include "host/Commands.h"
#include "host/CoreFiles.h"
#include "host/CrashHandler.h"
#include "host/Credentials.h"
#include "host/Progress.h"
#include "host/Prompt.h"
#include "host/ProviderCommands.h"
#include "host/Remedy.h"
#include "host/TBlockedSignals.h"
#include "host/TCallWatch.h"
#include "host/TInstalledProviders.h"
#include "host/TOutputRedirect.h"
#include "host/TRunnerDiagnostics.h"
#include "host/TSignalWatch.h"
#include "host/TUsageError.h"
#include "host/TerminateHandler.h"
#include "host/Text.h"
#include "platform/contract/TQELException.h"
#include "platform/contract/TRootObject.h"
#include "platform/services/TCoreLogger.h"
#include "platform/setup/ProviderCalls.h"
#include "platform/setup/TPlatform.h"

namespace host {
namespace {

using NZEPQEL20::TCoreLogger;
using NZEPQEL20::TQELException;
using NZEPQEL20::TQELStatusCode;
using NZEPQEL20::TRootObject;

// The process's log for as long as it lives.
class TLog {
 public:
  explicit TLog(const TOptions& options) {
    if (options.logFile.empty()) return;
    m_logger.emplace(options.logFile == "-" ? std::string() : options.logFile, options.logLevel);
    TRootObject::SetCoreLogger(&*m_logger);
  }
  ~TLog() { TRootObject::SetCoreLogger(nullptr); }
  TLog(const TLog&) = delete;
  TLog& operator=(const TLog&) = delete;

 private:
  std::optional<TCoreLogger> m_logger;
};

int Complain(const char* reason, EExitStatus status) noexcept {
  try {
    std::cerr << "diagsrun: " << SafeText(reason, ELines::kOne) << "\n";
  } catch (...) {
    static_cast<void>(std::fputs("diagsrun: out of memory\n", stderr));
  }
  return static_cast<int>(status);
}

// Else the server's refusal would have to be understood as this.
void WarnOfUnusedPassword(const TCredentialSources& sources) {
  if (!sources.environment.password || HasUser(sources)) return;
  std::cerr
      << "diagsrun: warning: DIAGSRUNNER_SERVER_PASSWORD is set and not used, since no user is "
         "named; set DIAGSRUNNER_SERVER_USER or use --user\n";
}

// Who the server is told that this is.
TCredentials GetCredentials(const TOptions& options, TEnvironmentCredentials environment) {
  if (!options.server) return {};
  TCredentialSources sources;
  sources.file = options.server->credentialsFile;
  sources.user = options.server->options.user;
  sources.environment = std::move(environment);
  WarnOfUnusedPassword(sources);
  if (HasUser(sources)) PreventCoreFiles();
  if (::isatty(STDIN_FILENO) == 1) {
    sources.ask = [&url = options.server->options.url](const std::string& user) {
      return AskSecret(SafeText("Password for " + user + " at " + url + ": ", ELines::kOne));
    };
  }
  return FindCredentials(std::move(sources));
}

// Whoever runs with --insecure out of habit is to see it each time.
void WarnOfInsecurity(const TOptions& options) {
  if (!options.server || !options.server->options.isInsecure) return;
  std::cerr << "diagsrun: warning: --insecure: the certificate of "
            << SafeText(options.server->options.url, ELines::kOne)
            << " is not checked; whoever sits in between reads the password and can fake results\n";
}

// Provider libraries come and go with the platform. What they write to standard output then is no
// part of the results.
struct TQuietEnd {
  void operator()(const NZEPQEL20::TPlatform* platform) const noexcept {
    std::optional<TOutputRedirect> redirect;
    try {
      redirect.emplace(EOutputTarget::kStandardError);
    } catch (const std::exception&) {
      // Without descriptors left, the words are the lesser evil than providers that never end.
    }
    delete platform;
  }
};
using TPlatformHandle = std::unique_ptr<NZEPQEL20::TPlatform, TQuietEnd>;

TPlatformHandle MakePlatform(const TOptions& options, const TCredentials& credentials) {
  NZEPQEL20::TPlatformOptions wanted;
  wanted.root = options.root;
  wanted.nameSpace = options.nameSpace;
  const TOutputRedirect redirect(EOutputTarget::kStandardError);
  if (!options.server) return TPlatformHandle(new NZEPQEL20::TPlatform(wanted));
  wanted.server = options.server->options;
  wanted.server->user = credentials.user;
  wanted.server->password = credentials.password.Get();
  const TWiper wiper(wanted.server->password);
  try {
    return TPlatformHandle(new NZEPQEL20::TPlatform(wanted));
  } catch (const TQELException& e) {
    // What is wrong is an option's value, and not what the server says.
    if (e.GetStatusCode() == TQELStatusCode::kInvalidArgument) {
      throw TUsageError("--server", e.what());
    }
    throw;
  }
}

// From the command's end on, a provider that does not end is left.
EExitStatus RunWatched(const TOptions& options, TRunnerDiagnostics& diagnostics,
                       const TSurroundings& surroundings, TCallWatch& calls) {
  try {
    const EExitStatus status = RunCommand(options, diagnostics, surroundings);
    calls.BeginEnd(status);
    return status;
  } catch (const std::exception& e) {
    calls.BeginEnd(EExitStatus::kNotFinished, e.what());
    throw;
  }
}

// What is made here goes in the reverse order: the runner first, then the watch, since it reaches
// into the platform, then the platform with its providers. The watch is there before the platform,
// which may wait for a server that does not answer.
EExitStatus RunOnPlatform(const TOptions& options, TCredentials credentials,
                          const TBlockedSignals* signals) {
  const TLog log(options);
  // Looks on until the platform has gone.
  const TCallWatchThread calls(GetCallWatchWays(&NZEPQEL20::GetProviderCalls));
  TPlatformHandle platform;
  std::atomic<NZEPQEL20::TPlatform*> reachable{nullptr};
  const auto kill = [&reachable] {
    if (NZEPQEL20::TPlatform* const place = reachable) place->KillRunningJobs();
  };
  std::optional<TSignalWatch> watch;
  if (signals != nullptr) watch.emplace(*signals, kill);
  platform = MakePlatform(options, credentials);
  credentials = {};
  reachable = platform.get();
  TRunnerDiagnostics diagnostics(
      *platform,
      ChooseProgressTarget(options, ::isatty(STDOUT_FILENO) == 1, ::isatty(STDERR_FILENO) == 1));
  const TSurroundings surroundings{std::cout,
                                   std::cerr,
                                   [&watch] { return watch && watch->IsInterrupted(); },
                                   &IsOutputGood,
                                   &std::chrono::system_clock::now,
                                   &std::chrono::steady_clock::now,
                                   [&] {
                                     calls.Get().BeginTests();
                                     if (watch) watch->BeginTests();
                                   },
                                   &IsReaderGone};
  return RunWatched(options, diagnostics, surroundings, calls.Get());
}

EExitStatus RunOnProviders(const TOptions& options) {
  const TLog log(options);
  TInstalledProviders providers(options.root, options.nameSpace);
  const TSurroundings surroundings{std::cout,
                                   std::cerr,
                                   [] { return false; },
                                   &IsOutputGood,
                                   &std::chrono::system_clock::now,
                                   &std::chrono::steady_clock::now,
                                   [] {},
                                   &IsReaderGone};
  return RunProviderCommand(options, providers, surroundings);
}

EExitStatus RunOptions(const TOptions& options, TCredentials credentials) {
  if (options.provider) return RunOnProviders(options);
  // The other commands start nothing that has to be ended, so signals end them as usual.
  if (options.command != ECommand::kRun) {
    return RunOnPlatform(options, std::move(credentials), nullptr);
  }
  const TBlockedSignals signals;
  return RunOnPlatform(options, std::move(credentials), &signals);
}

EExitStatus RunArguments(const std::vector<std::string>& arguments) {
  // Also without a server: no program of a test is to find them.
  TEnvironmentCredentials environment = TakeEnvironmentCredentials();
  TCommandLine commandLine;
  const std::optional<TOptions> options = commandLine.Parse(arguments, std::cout, std::cerr);
  if (!options) {
    const bool isShown = IsOutputGood() || IsReaderGone();
    return isShown ? commandLine.GetStatus() : EExitStatus::kNotFinished;
  }
  if (options->server) CheckServerFiles(*options->server);
  TCredentials credentials = GetCredentials(*options, std::move(environment));
  WarnOfInsecurity(*options);
  if (!options->server && !options->provider) return RunOptions(*options, std::move(credentials));
  try {
    return RunOptions(*options, std::move(credentials));
  } catch (const TQELException& e) {
    throw TQELException(e.GetStatusCode(), AddRemedy(e.what()));
  }
}

}  // namespace

int RunHost(int argc, char** argv) noexcept {
  try {
    OpenStandardDescriptors();
    InstallTerminateHandler(&NZEPQEL20::GetOwnProviderCall);
    InstallCrashHandler(&NZEPQEL20::GetOwnProviderCall);
    const TExitGuard guard;
    // Progress has to show when it is made, also through a pipe.
    static_cast<void>(std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ));
    // A reader that goes away must not end the process in the middle of a test.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    return static_cast<int>(
        RunArguments(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc)));
  } catch (const TUsageError& e) {
    return Complain(e.what(), EExitStatus::kWrongUsage);
  } catch (const std::exception& e) {
    return Complain(e.what(), EExitStatus::kNotFinished);
  } catch (...) {
    return Complain("failed for a reason that it did not give", EExitStatus::kNotFinished);
  }
}

}  // namespace host
