// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace host {

enum class EProviderAction { kList, kCheck, kAdd, kRemove };

/// What the command line says about vendors' providers.
struct TProviderArguments {
  EProviderAction action = EProviderAction::kList;
  std::vector<std::string> targets;  ///< Names, folders, files; exactly one for add and remove.
  std::string name;                  ///< Name to install under; empty: the folder's own.
  bool isReplacing = false;          ///< One of that name may go.
  bool isForced = false;             ///< Add: also with errors. Remove: also the bundled one.
};

/// Adds the command `provider` with its commands to `app`; their values go into `arguments` and
/// `isJson`, which must outlive it.
void AddProviderCommand(CLI::App& app, TProviderArguments& arguments, bool& isJson);

/// Whether the arguments that `app` has read are about providers.
bool HasProvider(const CLI::App& app);

/// Refuses what cannot be meant: no command of `provider`, a CIM server beside it, an empty text.
/// Errors: TUsageError.
void CheckProviderArguments(const CLI::App& app, const TProviderArguments& arguments);

/// The values among `arguments` that are free texts.
std::vector<std::string*> GetTexts(TProviderArguments& arguments);

}  // namespace host
