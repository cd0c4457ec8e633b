// SPDX-License-Identifier: Apache-2.0
#include "host/ProviderCommands.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <ostream>
#include <system_error>

#include "host/ProviderReport.h"
#include "host/TUsageError.h"
#include "host/Text.h"
#include "platform/contract/TQELException.h"

namespace host {
namespace {

using NZEPQEL20::TProviderPackage;
using NZEPQEL20::TQELException;
using NZEPQEL20::TQELStatusCode;
using TPackages = std::vector<TProviderPackage>;

TPackages::const_iterator FindName(const TPackages& packages, const std::string& name) {
  return std::find_if(packages.begin(), packages.end(),
                      [&](const TProviderPackage& package) { return package.name == name; });
}

// What the user could have meant.
std::string DescribeNames(const TPackages& packages) {
  if (packages.empty()) return "none is installed";
  std::string names;
  for (const TProviderPackage& package : packages) {
    names += (names.empty() ? "" : ", ") + package.name;
  }
  return "installed are " + names;
}

bool IsThere(const std::string& path) {
  std::error_code error;
  const bool isFound = std::filesystem::exists(path, error);
  // What cannot be looked at may be there; reading it tells why it cannot be.
  return isFound || error;
}

// The last name of a path; the path itself when it has none, like "..".
std::string GetLastPart(const std::string& path) {
  const std::size_t end = path.find_last_not_of('/');
  const std::string name = path.substr(0, end + 1);
  const std::string last = name.substr(name.rfind('/') + 1);
  return last.find_first_not_of('.') == std::string::npos ? path : last;
}

// `text` as a shell takes it for one word.
std::string QuoteWord(const std::string& text) {
  constexpr char kPlain[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._+-";
  if (text.find_first_not_of(kPlain) == std::string::npos) return text;
  std::string quoted = "'";
  for (const char letter : text) quoted += letter == '\'' ? "'\\''" : std::string(1, letter);
  return quoted + "'";
}

// One command about providers at work.
class TProviderCommand {
 public:
  TProviderCommand(const TOptions& options, IProviderStore& store, const TSurroundings& around)
      : m_isJson(options.isJson),
        m_root(options.root),
        m_arguments(*options.provider),
        m_store(store),
        m_around(around) {}

  EExitStatus List();
  EExitStatus Check();
  EExitStatus Add();
  EExitStatus Remove();

 private:
  using TShow = void (*)(std::ostream&, const TCheckedProvider&);

  TProviderPackage ReadPath(const std::string& path);
  TCheckedProvider ReadTarget(const TPackages& installed, const std::string& target);
  TCheckedProvider CheckOne(TCheckedProvider provider);
  EExitStatus ShowAll(const std::string& command, std::vector<TCheckedProvider> providers,
                      TShow show, EExitStatus withErrors);
  EExitStatus Refuse(const TCheckedProvider& provider);
  void Install(const TCheckedProvider& provider);
  std::string DescribeList(const TCheckedProvider& provider) const;

  bool m_isJson;
  const std::string& m_root;
  const TProviderArguments& m_arguments;
  IProviderStore& m_store;
  const TSurroundings& m_around;
};

TProviderPackage TProviderCommand::ReadPath(const std::string& path) {
  if (!IsThere(path)) {
    throw TUsageError(path, "there is no such folder or file");
  }
  return m_store.Read(path);
}

// An installed name comes before a folder of that name; "./name" is always the folder. What cannot
// be read is a finding, so that the others are looked at all the same.
TCheckedProvider TProviderCommand::ReadTarget(const TPackages& installed,
                                              const std::string& target) {
  const auto found = FindName(installed, target);
  if (found != installed.end()) return {*found, {}};
  if (!IsThere(target)) {
    throw TUsageError(target,
                      "is neither installed nor a folder or file; " + DescribeNames(installed));
  }
  try {
    return {m_store.Read(target), {}};
  } catch (const TQELException& e) {
    TCheckedProvider provider;
    provider.package.name = GetLastPart(target);
    provider.findings.push_back({false, {}, e.what(), {}});
    return provider;
  }
}

TCheckedProvider TProviderCommand::CheckOne(TCheckedProvider provider) {
  if (provider.findings.empty()) provider.findings = m_store.Check(provider.package);
  return provider;
}

EExitStatus TProviderCommand::ShowAll(const std::string& command,
                                      std::vector<TCheckedProvider> providers, TShow show,
                                      EExitStatus withErrors) {
  EExitStatus status = providers.empty() ? EExitStatus::kNotFinished : EExitStatus::kAllPassed;
  if (providers.empty() && !m_isJson) {
    m_around.out << "No providers found in " << SafeText(m_store.GetFolder(), ELines::kOne)
                 << ".\n";
  }
  for (TCheckedProvider& provider : providers) {
    provider = CheckOne(std::move(provider));
    if (provider.CountErrors() > 0) status = withErrors;
    if (!m_isJson) show(m_around.out, provider);
  }
  if (m_isJson) WriteProvidersDocument(m_around.out, command, status, providers);
  return m_around.CheckListing(status);
}

EExitStatus TProviderCommand::List() {
  std::vector<TCheckedProvider> providers;
  for (TProviderPackage& package : m_store.List()) providers.push_back({std::move(package), {}});
  return ShowAll("provider list", std::move(providers), &ShowListedProvider,
                 EExitStatus::kAllPassed);
}

EExitStatus TProviderCommand::Check() {
  const TPackages installed = m_store.List();
  std::vector<TCheckedProvider> providers;
  for (const std::string& target : m_arguments.targets) {
    providers.push_back(ReadTarget(installed, target));
  }
  if (m_arguments.targets.empty()) {
    for (const TProviderPackage& package : installed) providers.push_back({package, {}});
  }
  return ShowAll("provider check", std::move(providers), &ShowCheckedProvider,
                 EExitStatus::kNotFinished);
}

// The command that shows the tests of what is installed where this command has put it; nothing when
// a finding says that it does not.
std::string TProviderCommand::DescribeList(const TCheckedProvider& provider) const {
  const auto isAboutTests = [](const auto& finding) {
    return finding.rule.compare(0, 1, "T") == 0;
  };
  const auto& findings = provider.findings;
  if (provider.CountErrors() > 0 || std::any_of(findings.begin(), findings.end(), isAboutTests)) {
    return {};
  }
  const std::string root = m_root.empty() ? "" : "--root " + QuoteWord(m_root) + " ";
  return "; `diagsrun " + root + "list` shows its tests";
}

EExitStatus TProviderCommand::Refuse(const TCheckedProvider& provider) {
  m_around.Complain(provider.package.name + ": not installed: " + DescribeResult(provider) +
                    "; --force installs it all the same");
  if (m_isJson) WriteAddDocument(m_around.out, EExitStatus::kNotFinished, provider, {});
  return m_around.CheckOutput(EExitStatus::kNotFinished);
}

void TProviderCommand::Install(const TCheckedProvider& provider) {
  try {
    m_store.Add(provider.package, provider.package.name, m_arguments.isReplacing);
  } catch (const TQELException& e) {
    if (e.GetStatusCode() == TQELStatusCode::kInvalidArgument) {
      throw TUsageError("--name", e.what());
    }
    throw;
  }
}

EExitStatus TProviderCommand::Add() {
  TCheckedProvider provider;
  provider.package = ReadPath(m_arguments.targets.front());
  if (!m_arguments.name.empty()) provider.package.name = m_arguments.name;
  const std::string& name = provider.package.name;
  const TPackages installed = m_store.List();
  if (!m_arguments.isReplacing && FindName(installed, name) != installed.end()) {
    m_around.Complain(name +
                      ": is installed already; --replace puts the new one in its "
                      "place, --name NAME beside it");
    if (m_isJson) WriteAddDocument(m_around.out, EExitStatus::kNotFinished, provider, {});
    return m_around.CheckOutput(EExitStatus::kNotFinished);
  }
  provider.findings = m_store.Check(provider.package);
  for (const auto& finding : provider.findings) {
    m_around.Complain(name + ": " + DescribeFinding(finding));
  }
  if (provider.CountErrors() > 0 && !m_arguments.isForced) return Refuse(provider);
  Install(provider);
  const std::string folder = m_store.GetFolder() + "/" + name;
  if (m_isJson) {
    WriteAddDocument(m_around.out, EExitStatus::kAllPassed, provider, folder);
  } else {
    m_around.out << SafeText(name + ": installed " + DescribeContents(provider.package) + " in " +
                                 folder + DescribeList(provider),
                             ELines::kOne)
                 << "\n";
  }
  return m_around.CheckOutput(EExitStatus::kAllPassed);
}

EExitStatus TProviderCommand::Remove() {
  const std::string& name = m_arguments.targets.front();
  const TPackages installed = m_store.List();
  const auto found = FindName(installed, name);
  if (found == installed.end()) {
    throw TUsageError(name, "is not installed; " + DescribeNames(installed));
  }
  try {
    m_store.Remove(name, m_arguments.isForced);
  } catch (const TQELException& e) {
    if (!(e.GetStatusCode() == TQELStatusCode::kInvalidArgument)) throw;
    m_around.Complain(e.what() + std::string("; --force removes it all the same"));
    if (m_isJson) WriteRemoveDocument(m_around.out, EExitStatus::kNotFinished, *found);
    return m_around.CheckOutput(EExitStatus::kNotFinished);
  }
  if (m_isJson) {
    WriteRemoveDocument(m_around.out, EExitStatus::kAllPassed, *found);
  } else {
    m_around.out << SafeText(name + ": removed " + found->folder, ELines::kOne) << "\n";
  }
  return m_around.CheckOutput(EExitStatus::kAllPassed);
}

}  // namespace

EExitStatus RunProviderCommand(const TOptions& options, IProviderStore& store,
                               const TSurroundings& surroundings) {
  TProviderCommand command(options, store, surroundings);
  switch (options.provider->action) {
    case EProviderAction::kList:
      return command.List();
    case EProviderAction::kCheck:
      return command.Check();
    case EProviderAction::kAdd:
      return command.Add();
    case EProviderAction::kRemove:
      return command.Remove();
  }
  return EExitStatus::kWrongUsage;
}

}  // namespace host
