// SPDX-License-Identifier: Apache-2.0
#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <array>
#include <csignal>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "platform/contract/TOSSpecific.h"
#include "platform/setup/InstalledFiles.h"
#include "platform/setup/ProviderSetup.h"
#include "tests/support/cimserver/TCimServer.h"
#include "tests/support/cimserver/TSyntheticOperations.h"

namespace {

using cimserver::EStyle;
using cimserver::TCimServer;
using cimserver::TPeerOptions;

struct TArguments {
  std::string root;
  std::string nameSpace = "root/cimv2";
  std::string style = "pegasus";
  std::string passwordFile;
  std::string failingMethod;
  std::string deadlyMethod;
  bool hasNoPull = false;
  unsigned int synthetic = 0;
  bool hasStatistics = false;
  TPeerOptions peer;
};

void Declare(CLI::App& app, TArguments& arguments) {
  auto* const root =
      app.add_option("--root", arguments.root, "Serve the providers below this folder");
  app.add_option("--synthetic", arguments.synthetic, "Serve this many generated instances")
      ->excludes(root);
  app.add_option("--namespace", arguments.nameSpace, "Namespace of the providers");
  app.add_option("--style", arguments.style, "The server to be like")
      ->check(CLI::IsMember({"pegasus", "sfcb"}));
  app.add_option("--port", arguments.peer.port, "Port of 127.0.0.1; 0 for any");
  app.add_option("--unix", arguments.peer.unixPath, "Listen at a UNIX socket instead");
  auto* const key = app.add_option("--key", arguments.peer.key, "Key of the certificate, PEM");
  auto* const certificate =
      app.add_option("--cert", arguments.peer.certificate, "Certificate, PEM; makes it HTTPS")
          ->needs(key);
  app.add_option("--client-ca", arguments.peer.clientCa, "CA of the certificates clients need")
      ->needs(certificate);
  auto* const passwordFile =
      app.add_option("--password-file", arguments.passwordFile, "File with the user's password");
  app.add_option("--user", arguments.peer.user, "User that HTTP Basic is needed for")
      ->needs(passwordFile);
  app.add_option("--fail-method", arguments.failingMethod,
                 "Answer this method with CIM_ERR_FAILED");
  app.add_option("--die-at-method", arguments.deadlyMethod, "Be killed when this method is called");
  app.add_flag("--no-pull", arguments.hasNoPull, "Refuse pull operations");
  app.add_flag("--stats", arguments.hasStatistics, "Print counts of requests at the end");
}

std::string ReadPassword(const std::string& file) {
  std::ifstream stream(file);
  std::string password;
  if (!std::getline(stream, password)) throw std::runtime_error(file + ": no password in it");
  return password;
}

void Complete(TArguments& arguments) {
  if (arguments.root.empty() && arguments.synthetic == 0) {
    throw std::runtime_error("one of --root and --synthetic is needed");
  }
  arguments.peer.style = arguments.style == "sfcb" ? EStyle::kSfcb : EStyle::kPegasus;
  arguments.peer.hasPull = !arguments.hasNoPull;
  arguments.peer.beforeMethod = [&arguments](const std::string& method) {
    if (method == arguments.deadlyMethod) static_cast<void>(::raise(SIGKILL));
    if (method == arguments.failingMethod) throw std::runtime_error("the provider is gone");
  };
  if (!arguments.peer.user.empty()) {
    arguments.peer.password = ReadPassword(arguments.passwordFile);
  }
}

std::shared_ptr<cimserver::ICIMOperations> OpenOperations(const TArguments& arguments) {
  if (arguments.synthetic != 0) {
    return std::make_shared<cimserver::TSyntheticOperations>(arguments.synthetic);
  }
  const std::string root = NZEPQEL20::setup::CheckRoot(arguments.root);
  NZEPQEL20::TOSSpecific::SetQELRootPath(root);
  auto providers = NZEPQEL20::setup::OpenProviders(root, arguments.nameSpace);
  for (const std::string& problem : providers.problems) std::cerr << problem << '\n';
  for (const std::string& problem : providers.operations->GetProblems()) {
    std::cerr << problem << '\n';
  }
  return providers.operations;
}

// Signals that end the program, as a descriptor. To be made before any thread is.
int WatchSignals() {
  sigset_t set{};
  ::sigemptyset(&set);
  ::sigaddset(&set, SIGTERM);
  ::sigaddset(&set, SIGINT);
  ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
  return ::signalfd(-1, &set, SFD_CLOEXEC);
}

// Until a signal, or until standard input closes.
void WaitForEnd(int signals) {
  std::array<pollfd, 2> waiting{{{signals, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
  for (;;) {
    if (::poll(waiting.data(), waiting.size(), -1) < 0) continue;
    if (waiting[0].revents != 0) return;
    std::array<char, 256> ignored{};
    if (waiting[1].revents != 0 && ::read(STDIN_FILENO, ignored.data(), ignored.size()) <= 0) {
      return;
    }
  }
}

void PrintStatistics(const TCimServer& server) {
  std::cout << "connections " << server.CountConnections() << '\n';
  for (const auto& [name, count] : server.GetRequestCounts()) {
    std::cout << name << ' ' << count << '\n';
  }
}

int Run(TArguments& arguments) {
  Complete(arguments);
  const int signals = WatchSignals();
  const TCimServer server(OpenOperations(arguments), arguments.peer);
  std::cout << "listening on " << server.GetUrl() << std::endl;
  WaitForEnd(signals);
  if (arguments.hasStatistics) PrintStatistics(server);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("A CIM-XML server for tests and benchmarks", "diags_cim_server");
  TArguments arguments;
  Declare(app, arguments);
  try {
    app.parse(argc, argv);
    return Run(arguments);
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  } catch (const std::exception& failure) {
    std::cerr << "diags_cim_server: " << failure.what() << '\n';
    return 1;
  }
}
