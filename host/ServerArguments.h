// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/cimxml/TServerOptions.h"

namespace CLI {
class App;
}

namespace host {

/// What the command line says about a CIM server. The password is not part of it.
struct TServerArguments {
  NZEPQEL20::TServerOptions options;
  std::string credentialsFile;  ///< Empty: user and password come from elsewhere.
};

/// Adds the options about a CIM server to `app`; their values go into `arguments`, which must
/// outlive it.
void AddServerOptions(CLI::App& app, TServerArguments& arguments);

/// Whether the arguments that `app` has read name a server.
bool HasServer(const CLI::App& app);

/// Refuses what cannot be meant: an option about a server without one, options that exclude each
/// other, and a password in the URL, which is never repeated.
/// Errors: TUsageError.
void CheckServerOptions(const CLI::App& app, const TServerArguments& arguments);

/// Refuses certificate files that are no regular files or cannot be read, by the option that names
/// them.
/// Errors: TUsageError.
void CheckServerFiles(const TServerArguments& arguments);

/// Refuses options that would take a password, wherever they stand among `arguments`.
/// Errors: TUsageError, which names the option and not its value.
void RefusePasswordOptions(const std::vector<std::string>& arguments);

/// The values among `arguments` that are free texts.
std::vector<std::string*> GetTexts(TServerArguments& arguments);

/// `text` with what stands between a URL's "://" and the last "@" behind it replaced by "***".
std::string HideUserInfo(const std::string& text);

/// Why `user` cannot be a user's name; empty when it can.
std::string FindUserFault(const std::string& user);

}  // namespace host
