// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/host/THostFixture.h"
#include "tests/support/cimserver/TThrowAwayCa.h"

namespace host {

/// Runs the real command against a CIM server with the bundled provider behind it, whose tools and
/// settings a test can replace.
class TServerFixture : public THostFixture {
 protected:
  ~TServerFixture() override;

  /// Starts the server over the providers below `root` and waits until it listens; one that ran
  /// before is ended.
  /// Errors: std::runtime_error with what it said instead.
  void StartServer(const std::vector<std::string>& arguments,
                   const std::string& root = DIAGSRUNNER_TEST_ROOT);
  /// Arguments that make it HTTPS with `files`.
  static std::vector<std::string> WithCertificate(const cimserver::TThrowAwayCa::TFiles& files);
  /// Arguments that make it ask for the user "me" with the password "sesame".
  std::vector<std::string> WithPassword() const;
  /// Ends the server at once, without a word to its clients.
  void KillServer();

  /// The command with `--server` and the arguments, against the server that was started.
  TProgram MakeServerCommand(const std::vector<std::string>& arguments) const;
  TFinished RunOnServer(const std::vector<std::string>& arguments) const;
  /// A file with credentials.
  std::string WriteLogin(const std::string& user, const std::string& password) const;

  const std::string& GetUrl() const { return m_url; }
  /// A stress-ng that becomes a `sleep` without an end.
  void AddSleepingStress() const;
  /// Waits until `count` of those run below the server, or patience ends; answers with those that
  /// do.
  std::vector<pid_t> WaitForSleepers(std::size_t count) const;

 private:
  std::unique_ptr<TSubprocess> m_server;
  std::string m_url;
};

}  // namespace host
