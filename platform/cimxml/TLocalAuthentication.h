// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace NZEPQEL20::cimxml {

/// The quoted text of the first `Local "text"` among WWW-Authenticate fields; empty without one.
std::string FindLocalChallenge(const std::vector<std::string>& fields);

/// Proves to a CIM server on this machine who this process runs as: the server names a file that
/// only that user can read, and gets its content back.
///
/// The server is not trusted with the choice of the file.
class TLocalAuthentication {
 public:
  /// Where servers put such files.
  static std::vector<std::string> GetKnownDirectories();

  /// Answers only for files that lie in one of `directories` itself.
  explicit TLocalAuthentication(std::vector<std::string> directories = GetKnownDirectories());

  /// Value of the header field that asks for a challenge.
  /// Errors: TQELException (kAccessDenied) when the system has no name for the effective user.
  std::string GetGreeting() const;

  /// Value of the header field that answers a challenge with the content of `file`.
  /// Errors: TQELException (kAccessDenied) naming what speaks against reading or sending it.
  std::string Answer(const std::string& file) const;

 private:
  std::vector<std::string> m_directories;
};

}  // namespace NZEPQEL20::cimxml
