// SPDX-License-Identifier: Apache-2.0
#include "host/ProviderArguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "host/ServerArguments.h"
#include "host/TUsageError.h"

namespace host {
namespace {

constexpr char kProvider[] = "provider";
constexpr char kEmpty[] = "needs a text that is not empty";

CLI::App* AddAction(CLI::App& provider, const char* name, const char* text,
                    TProviderArguments& arguments, EProviderAction action, bool& isJson) {
  CLI::App* command = provider.add_subcommand(name, text);
  command->callback([&arguments, action] { arguments.action = action; });
  command->add_flag("--json", isJson, "Print one JSON document");
  return command;
}

void AddAdd(CLI::App& provider, TProviderArguments& arguments, bool& isJson) {
  CLI::App* add =
      AddAction(provider, "add", "Check a vendor's folder and install it below the root", arguments,
                EProviderAction::kAdd, isJson);
  add->add_option("path", arguments.targets,
                  "Folder with library, MOF and registration, or the registration file in it")
      ->type_name("DIR|FILE")
      ->expected(1)
      ->required();
  add->add_option("--name", arguments.name,
                  "Name to install it under; else that of the folder or file")
      ->type_name("NAME");
  add->add_flag("--replace", arguments.isReplacing, "Put it in the place of one of that name");
  add->add_flag("--force", arguments.isForced, "Install it although the check finds errors");
}

}  // namespace

void AddProviderCommand(CLI::App& app, TProviderArguments& arguments, bool& isJson) {
  CLI::App* provider = app.add_subcommand(
      kProvider, "Add, remove, list and check the vendors' folders of providers");
  provider->require_subcommand(0, 1);
  AddAdd(*provider, arguments, isJson);
  CLI::App* remove = AddAction(*provider, "remove", "Remove an installed folder", arguments,
                               EProviderAction::kRemove, isJson);
  remove->add_option("name", arguments.targets, "Name in the list of providers")
      ->type_name("NAME")
      ->expected(1)
      ->required();
  remove->add_flag("--force", arguments.isForced, "Remove it although it is the bundled provider");
  AddAction(*provider, "list", "List the installed folders with what they register", arguments,
            EProviderAction::kList, isJson);
  CLI::App* check = AddAction(*provider, "check", "Say what is wrong with folders, and what helps",
                              arguments, EProviderAction::kCheck, isJson);
  check
      ->add_option("target", arguments.targets,
                   "Installed names, folders or registration files (all that are installed)")
      ->type_name("NAME|DIR|FILE");
}

bool HasProvider(const CLI::App& app) {
  return app.get_subcommand(kProvider)->parsed();
}

void CheckProviderArguments(const CLI::App& app, const TProviderArguments& arguments) {
  const CLI::App& provider = *app.get_subcommand(kProvider);
  if (provider.get_subcommands().empty()) {
    throw TUsageError(kProvider, "say what to do: add, remove, list or check");
  }
  if (HasServer(app)) {
    throw TUsageError("--server",
                      "cannot be combined with provider: the folders of providers are those of "
                      "this machine's installation root");
  }
  for (const std::string& target : arguments.targets) {
    if (!target.empty()) continue;
    throw TUsageError(arguments.action == EProviderAction::kAdd ? "path" : "name", kEmpty);
  }
  const CLI::Option* name = provider.get_subcommands().front()->get_option_no_throw("--name");
  if (name != nullptr && name->count() > 0 && arguments.name.empty()) {
    throw TUsageError("--name", kEmpty);
  }
}

std::vector<std::string*> GetTexts(TProviderArguments& arguments) {
  std::vector<std::string*> texts = {&arguments.name};
  std::transform(arguments.targets.begin(), arguments.targets.end(), std::back_inserter(texts),
                 [](std::string& target) { return &target; });
  return texts;
}

}  // namespace host
