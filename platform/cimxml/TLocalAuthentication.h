// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

namespace NZEPQEL20::cimxml {

/// The quoted text of the first `Local "text"` among WWW-Authenticate fields; empty without one.
std::string FindLocalChallenge(const std::vector<std::string>& fields);

/// The name of `user`, as the system knows it; empty when it has none, or none that fits into a
/// header field. May wait for a directory service. `buffer`: what is tried first, in bytes.
std::string FindUserName(uid_t user, std::size_t buffer = 1024);

/// Proves to a CIM server on this machine who this process runs as: the server names a file that
/// only that user can read, and gets its content back.
///
/// The server is not trusted with the choice of the file.
class TLocalAuthentication {
 public:
  /// Where servers put such files; the one that listens on `socketPath` may put them beside it.
  static std::vector<std::string> GetKnownDirectories(const std::string& socketPath);

  /// Answers only for files that lie in one of `directories` itself. `user`: the name of the
  /// effective user; may be empty, as it is in many a container.
  TLocalAuthentication(std::vector<std::string> directories, std::string user);

  /// Value of the header field that asks for a challenge; empty without a name.
  std::string GetGreeting() const;

  /// Value of the header field that answers a challenge with the content of `file`.
  /// Errors: TQELException (kAccessDenied) naming what speaks against reading or sending it,
  /// a missing name of the user included.
  std::string Answer(const std::string& file) const;

 private:
  std::vector<std::string> m_directories;
  std::string m_user;
};

}  // namespace NZEPQEL20::cimxml
