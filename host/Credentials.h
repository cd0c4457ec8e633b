// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "host/TSecret.h"

namespace host {

/// A user of a CIM server with the password; no user means that none is sent.
struct TCredentials {
  std::string user;
  TSecret password;
};

/// Most bytes of a line of a credentials file, and of what is typed at a prompt.
inline constexpr std::size_t kLongestCredentialsLine = 1024;

/// What the environment says: DIAGSRUNNER_SERVER_USER and DIAGSRUNNER_SERVER_PASSWORD. One that is
/// empty counts as not set.
struct TEnvironmentCredentials {
  std::string user;
  std::optional<TSecret> password;
};

/// Where credentials are looked for.
struct TCredentialSources {
  std::string file;  ///< Empty: none was named.
  std::string user;  ///< As the command line names it; empty: it does not.
  TEnvironmentCredentials environment;
  /// Asks for the password of a user; empty where nobody can be asked.
  std::function<TSecret(const std::string& user)> ask;
};

/// Reads both variables, overwrites them and removes them from the environment: programs that
/// providers start must not inherit them.
/// Threads: to be called before there is more than one.
TEnvironmentCredentials TakeEnvironmentCredentials();

/// Reads the lines "user=..." and "password=..." of a file; what stands behind the "=" counts as
/// it is. Blank lines and lines that start with "#" are skipped.
/// Errors: TUsageError with the file, the line and the reason, never with what the line holds: for
/// a file that is no regular file, belongs to somebody other than this user or root, lets anybody
/// else read or write, is larger than 64 KiB, or says something else or too little.
TCredentials ReadCredentialsFile(const std::string& name);

/// Whether `sources` lead to a user, so that there has to be a password.
bool HasUser(const TCredentialSources& sources);

/// The first source that has credentials: the file, the environment, the answer of a human. The
/// environment's password belongs to the environment's user, or to the one that the command line
/// names when the environment names none.
/// Errors: TUsageError when there is a user and no password; what the sources throw.
TCredentials FindCredentials(TCredentialSources sources);

}  // namespace host
