// SPDX-License-Identifier: Apache-2.0
#include "host/TCommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <ostream>
#include <sstream>

#include "host/Label.h"
#include "host/TUsageError.h"
#include "host/Text.h"

namespace host {
namespace {

using NZEPQEL20::ILogger;

const std::map<std::string, ILogger::EQELLogSeverity>& GetLevels() {
  static const std::map<std::string, ILogger::EQELLogSeverity> levels = {
      {"error", ILogger::kError},
      {"warning", ILogger::kWarning},
      {"info", ILogger::kInfo},
      {"trace", ILogger::kTrace}};
  return levels;
}

const std::map<std::string, EProgress>& GetProgressModes() {
  static const std::map<std::string, EProgress> modes = {
      {"auto", EProgress::kAuto}, {"always", EProgress::kAlways}, {"never", EProgress::kNever}};
  return modes;
}

constexpr char kGlobals[] =
    "The options of every command (see diagsrun --help) may stand behind this one as well.\n\n";

constexpr char kRules[] =
    "The rules that a line names are in share/doc/diagsrunner/provider-rules.md below the install "
    "prefix.\n\n";

std::string MakeFooter() {
  std::string footer = "Exit status:";
  for (const TExitStatusText& text : GetExitStatusTexts()) {
    footer += "\n  " + std::to_string(static_cast<int>(text.status)) + "  " + text.meaning;
  }
  return footer;
}

// An option whose value is one of the map's words, which the help names as `words`.
template <typename TValue>
void AddChoice(CLI::App& app, const std::string& name, TValue& value, const std::string& text,
               const std::map<std::string, TValue>& choices, const std::string& words) {
  app.add_option_function<std::string>(
         name, [&value, &choices](const std::string& word) { value = choices.at(word); }, text)
      ->check(CLI::Validator(
          [&choices, words](const std::string& word) {
            return choices.count(word) != 0 ? std::string() : "is not one of " + words;
          },
          std::string()))
      ->type_name(words);
}

CLI::Option* AddText(CLI::App& app, const std::string& name, std::string& value,
                     const std::string& type, const std::string& text) {
  return app.add_option(name, value, text)->type_name(type);
}

// The parser splits a value like "[a,b]" at its commas, which test ids have. A character behind
// the bracket keeps it from that.
constexpr char kGuard = '\x01';

std::string Guard(const std::string& argument) {
  const bool isBracketed = argument.size() > 1 && argument.front() == '[' && argument.back() == ']';
  return isBracketed ? argument + kGuard : argument;
}

void TakeGuardOff(std::string& value) {
  if (value.size() > 2 && value.front() == '[' && value.back() == kGuard) value.pop_back();
}

void TakeGuardsOff(TOptions& options) {
  for (std::string* value :
       {&options.root, &options.nameSpace, &options.logFile, &options.selection.device,
        &options.selection.match, &options.className}) {
    TakeGuardOff(*value);
  }
  for (std::string& id : options.selection.ids) TakeGuardOff(id);
  if (options.label) TakeGuardOff(*options.label);
}

// "/root//cimv2/" is root/cimv2.
void TakeSpareSlashesOff(std::string& nameSpace) {
  const auto areSlashes = [](char left, char right) { return left == '/' && right == '/'; };
  nameSpace.erase(std::unique(nameSpace.begin(), nameSpace.end(), areSlashes), nameSpace.end());
  if (!nameSpace.empty() && nameSpace.back() == '/') nameSpace.pop_back();
  if (!nameSpace.empty() && nameSpace.front() == '/') nameSpace.erase(0, 1);
}

// The commands below one of which the arguments name none, with how to ask for one; empty when
// none is missing.
std::string DescribeMissingCommand(const CLI::App& app) {
  if (app.get_subcommands().empty()) return "is no command; say list, run, inspect or provider";
  const CLI::App& command = *app.get_subcommands().front();
  if (command.get_subcommands({}).empty() || !command.get_subcommands().empty()) return {};
  return "is no command of " + command.get_name() + "; say add, remove, list or check";
}

// An unknown option alone, since a password may stand behind it; else what the parser says.
std::string DescribeExtras(const std::vector<std::string>& extras, const char* what,
                           const std::string& missing) {
  const auto isOption = [](const std::string& extra) { return extra.rfind('-', 0) == 0; };
  const auto option = std::find_if(extras.begin(), extras.end(), isOption);
  if (option == extras.end() && !missing.empty() && !extras.empty()) {
    return extras.front() + ": " + missing;
  }
  if (option == extras.end()) return what;
  return "The following argument was not expected: " + option->substr(0, option->find('='));
}

// The parser counts: "--log: At Most 1 required but received 2".
std::string DescribeMismatch(const std::string& what) {
  const std::size_t end = what.find(": At Most 1 ");
  return end == std::string::npos ? what : what.substr(0, end) + ": is given more than once";
}

void AddFilters(CLI::App& app, TSelection& selection) {
  AddText(app, "--device", selection.device, "ID", "Only tests of the device with this id");
  AddText(app, "--match", selection.match, "TEXT",
          "Only tests whose id contains TEXT, whatever the case of its letters");
}

void RefuseEmpty(const CLI::App& app, const char* name) {
  const CLI::Option* option = app.get_option_no_throw(name);
  if (option == nullptr) return;
  for (const std::string& value : option->results()) {
    if (value.empty()) throw TUsageError(name, "needs a text that is not empty");
  }
}

}  // namespace

TCommandLine::TCommandLine()
    : m_app(std::make_unique<CLI::App>(
          "Finds and runs the hardware tests of this machine or behind a CIM server.",
          "diagsrun")) {
  m_app->require_subcommand(0, 1);
  m_app->fallthrough();
  m_app->set_version_flag("--version", "diagsrun " DIAGSRUNNER_VERSION, "Print the version");
  AddGlobalOptions();
  AddList();
  AddRun();
  AddInspect();
  AddProviderCommand(*m_app, m_provider, m_options.isJson);
  const std::string footer = MakeFooter();
  m_app->footer(footer);
  for (CLI::App* command : m_app->get_subcommands({})) {
    command->footer(kGlobals + footer);
    for (CLI::App* action : command->get_subcommands({})) {
      action->footer(std::string(kRules) + kGlobals + footer);
    }
  }
}

TCommandLine::~TCommandLine() = default;

void TCommandLine::AddGlobalOptions() {
  AddText(*m_app, "--root", m_options.root, "DIR",
          "Installation root (else $DIAGSRUNNER_ROOT, else below the install prefix)");
  AddText(*m_app, "--namespace", m_options.nameSpace, "NS",
          "CIM namespace to look in (root/cimv2)");
  AddText(*m_app, "--log", m_options.logFile, "FILE", "Append a log to FILE; - for standard error");
  AddChoice(*m_app, "--log-level", m_options.logLevel, "How much to log (info)", GetLevels(),
            "error|warning|info|trace");
  AddServerOptions(*m_app, m_server);
}

void TCommandLine::AddList() {
  CLI::App* list = m_app->add_subcommand("list", "List the tests that can be run here");
  list->callback([this] { m_options.command = ECommand::kList; });
  list->add_flag("--json", m_options.isJson, "Print one JSON document");
  AddFilters(*list, m_options.selection);
}

void TCommandLine::AddRun() {
  CLI::App* run = m_app->add_subcommand("run", "Run tests, one after the other");
  run->callback([this] { m_options.command = ECommand::kRun; });
  run->add_option("test", m_options.selection.ids,
                  "Test ids, or their numbers in the list (3 or '#3')")
      ->type_name("TEST");
  run->add_flag("--all", m_options.selection.isAll, "Run every test of the list");
  AddFilters(*run, m_options.selection);
  run->add_flag("--json", m_options.isJson, "Print one JSON document");
  run->add_option_function<std::string>(
         "--label", [this](const std::string& label) { m_options.label = label; },
         "Name under which the tests run (else each service's name); no quotes")
      ->type_name("TEXT");
  AddChoice(*run, "--progress", m_options.progress, "Show progress (auto: on a terminal)",
            GetProgressModes(), "auto|always|never");
}

void TCommandLine::AddInspect() {
  CLI::App* inspect = m_app->add_subcommand("inspect", "Show the instances of a CIM class");
  inspect->callback([this] { m_options.command = ECommand::kInspect; });
  AddText(*inspect, "class", m_options.className, "CLASS", "Name of the class")->required();
  inspect->add_flag("--json", m_options.isJson, "Print one JSON document");
}

const CLI::App& TCommandLine::FindApp(const std::string& command) const {
  const CLI::App* found = m_app.get();
  std::istringstream words(command);
  for (std::string word; words >> word;) found = found->get_subcommand(word);
  return *found;
}

std::string TCommandLine::GetHelp(const std::string& command) const {
  return FindApp(command).help();
}

std::vector<std::string> TCommandLine::GetOptionNames(const std::string& command) const {
  std::vector<std::string> names;
  for (const CLI::Option* option : FindApp(command).get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

// What the parser's own checks do not cover.
void TCommandLine::Check() const {
  if (m_app->get_subcommands().empty()) {
    throw TUsageError("command", "say which: list, run, inspect or provider");
  }
  for (const char* name : {"--root", "--namespace", "--log"}) RefuseEmpty(*m_app, name);
  for (const CLI::App* command : m_app->get_subcommands()) {
    for (const char* name : {"--device", "--match", "class"}) RefuseEmpty(*command, name);
  }
  if (SafeText(m_options.nameSpace, ELines::kOne) != m_options.nameSpace) {
    throw TUsageError("--namespace", "holds a control character");
  }
  if (m_options.nameSpace.empty()) throw TUsageError("--namespace", "holds no name");
  CheckServerOptions(*m_app, m_server);
  if (HasProvider(*m_app)) return CheckProviderArguments(*m_app, m_provider);
  if (m_options.command != ECommand::kRun) return;

  const TSelection& selection = m_options.selection;
  const bool hasFilter = !selection.device.empty() || !selection.match.empty();
  if (selection.ids.empty() && !selection.isAll && !hasFilter) {
    throw TUsageError("run", "say which tests: their ids, --all, --device or --match");
  }
  if (!selection.ids.empty() && (selection.isAll || hasFilter)) {
    throw TUsageError("run", "test ids cannot be combined with --all, --device or --match");
  }
  const std::string fault = FindLabelFault(m_options.label.value_or(""));
  if (!fault.empty()) throw TUsageError("--label", fault);
}

std::string TCommandLine::Explain(const CLI::ParseError& error) const {
  const bool isExtra = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError);
  if (!isExtra) return HideUserInfo(DescribeMismatch(error.what()));
  return HideUserInfo(
      DescribeExtras(m_app->remaining(true), error.what(), DescribeMissingCommand(*m_app)));
}

std::optional<TOptions> TCommandLine::Parse(const std::vector<std::string>& arguments,
                                            std::ostream& out, std::ostream& err) {
  m_status = EExitStatus::kWrongUsage;
  try {
    RefusePasswordOptions(arguments);
    // The parser takes the arguments from the back.
    std::vector<std::string> reversed;
    std::transform(arguments.rbegin(), arguments.rend(), std::back_inserter(reversed), Guard);
    m_app->parse(reversed);
    TakeGuardsOff(m_options);
    for (std::string* text : GetTexts(m_server)) TakeGuardOff(*text);
    for (std::string* text : GetTexts(m_provider)) TakeGuardOff(*text);
    TakeSpareSlashesOff(m_options.nameSpace);
    Check();
    if (HasServer(*m_app)) m_options.server = m_server;
    if (HasProvider(*m_app)) m_options.provider = m_provider;
    m_status = EExitStatus::kAllPassed;
    return m_options;
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
      m_status = EExitStatus::kAllPassed;
      m_app->exit(e, out, err);
    } else {
      err << "diagsrun: " << SafeText(Explain(e), ELines::kOne) << "; see diagsrun --help\n";
    }
  } catch (const TUsageError& e) {
    err << "diagsrun: " << e.what() << "; see diagsrun --help\n";
  }
  return std::nullopt;
}

}  // namespace host
