// SPDX-License-Identifier: Apache-2.0
#include "host/ProviderReport.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <ostream>
#include <set>
#include <system_error>

#include "host/JsonDocument.h"
#include "host/Text.h"

namespace host {
namespace {

using NZEPQEL20::TProviderFinding;
using NZEPQEL20::TProviderPackage;
using NZEPQEL20::TProviderService;

constexpr std::size_t kColumns = 4;
using TRow = std::array<std::string, kColumns>;

std::string Count(std::size_t number, const std::string& one, const std::string& many) {
  return std::to_string(number) + " " + (number == 1 ? one : many);
}

std::string GetFileName(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

std::string Join(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
  return text;
}

std::size_t CountClasses(const TProviderPackage& package) {
  std::set<std::string> names;
  for (const TProviderService& service : package.services) {
    std::string name = service.className;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    names.insert(std::move(name));
  }
  return names.size();
}

TRow MakeRow(const TProviderService& service) {
  TRow row = {service.className, service.nameSpace, Join(service.types),
              service.library.empty() ? "(none)" : GetFileName(service.library)};
  for (std::string& text : row) text = SafeText(text, ELines::kOne);
  return row;
}

void ShowServices(std::ostream& out, const std::vector<TProviderService>& services) {
  if (services.empty()) return;
  std::vector<TRow> rows = {{"CLASS", "NAMESPACE", "TYPES", "LIBRARY"}};
  std::transform(services.begin(), services.end(), std::back_inserter(rows), MakeRow);
  std::array<std::size_t, kColumns> widths{};
  for (const TRow& row : rows) {
    for (std::size_t i = 0; i < kColumns; ++i) widths[i] = std::max(widths[i], GetWidth(row[i]));
  }
  for (const TRow& row : rows) {
    out << "  ";
    for (std::size_t i = 0; i + 1 < kColumns; ++i) out << PadTo(row[i], widths[i]) << "  ";
    out << row.back() << "\n";
  }
}

TJson MakeServices(const std::vector<TProviderService>& services) {
  TJson list = TJson::array();
  for (const TProviderService& service : services) {
    list.push_back({{"class", service.className},
                    {"namespace", service.nameSpace},
                    {"provider", service.providerName},
                    {"library", service.library},
                    {"types", service.types}});
  }
  return list;
}

TJson MakeFindings(const std::vector<TProviderFinding>& findings) {
  TJson list = TJson::array();
  for (const TProviderFinding& finding : findings) {
    list.push_back({{"severity", finding.isWarning ? "warning" : "error"},
                    {"rule", finding.rule},
                    {"text", finding.text},
                    {"remedy", finding.remedy}});
  }
  return list;
}

TJson MakeProvider(const TCheckedProvider& provider) {
  const TProviderPackage& package = provider.package;
  return {{"name", package.name},
          {"folder", package.folder},
          {"libraries", package.libraries},
          {"schema", package.schema},
          {"registrations", package.registrations},
          {"services", MakeServices(package.services)},
          {"errors", provider.CountErrors()},
          {"warnings", provider.CountWarnings()},
          {"findings", MakeFindings(provider.findings)}};
}

// Files, without the links to them.
std::size_t CountFiles(const std::vector<std::string>& names) {
  std::set<std::string> files;
  for (const std::string& name : names) {
    std::error_code error;
    const std::filesystem::path file = std::filesystem::canonical(name, error);
    files.insert(error ? name : file.string());
  }
  return files.size();
}

}  // namespace

std::size_t TCheckedProvider::CountErrors() const {
  return findings.size() - CountWarnings();
}

std::size_t TCheckedProvider::CountWarnings() const {
  return static_cast<std::size_t>(
      std::count_if(findings.begin(), findings.end(),
                    [](const TProviderFinding& finding) { return finding.isWarning; }));
}

std::string DescribeFinding(const TProviderFinding& finding) {
  std::string line = (finding.isWarning ? "warning: " : "error: ") + finding.text;
  if (!finding.remedy.empty()) line += "; " + finding.remedy;
  if (!finding.rule.empty()) line += "; see rule " + finding.rule;
  return line;
}

std::string DescribeContents(const TProviderPackage& package) {
  return Count(CountClasses(package), "class", "classes") + " in " +
         Count(CountFiles(package.libraries), "library", "libraries");
}

std::string DescribeResult(const TCheckedProvider& provider) {
  const std::size_t errors = provider.CountErrors();
  const std::size_t warnings = provider.CountWarnings();
  const std::string tail = warnings == 0 ? "" : ", " + Count(warnings, "warning", "warnings");
  if (errors > 0) return Count(errors, "error", "errors") + tail;
  return "ok" + tail + ", " + DescribeContents(provider.package);
}

void ShowCheckedProvider(std::ostream& out, const TCheckedProvider& provider) {
  const std::string name = SafeText(provider.package.name, ELines::kOne) + ": ";
  for (const TProviderFinding& finding : provider.findings) {
    out << name << SafeText(DescribeFinding(finding), ELines::kOne) << "\n";
  }
  out << name << DescribeResult(provider) << "\n";
  out.flush();
}

void ShowListedProvider(std::ostream& out, const TCheckedProvider& provider) {
  out << SafeText(provider.package.name, ELines::kOne) << ": " << DescribeResult(provider) << " ("
      << SafeText(provider.package.folder, ELines::kOne) << ")\n";
  ShowServices(out, provider.package.services);
  for (const TProviderFinding& finding : provider.findings) {
    out << "  " << SafeText(DescribeFinding(finding), ELines::kOne) << "\n";
  }
  out.flush();
}

void WriteProvidersDocument(std::ostream& out, const std::string& command, EExitStatus status,
                            const std::vector<TCheckedProvider>& providers) {
  TJson document = MakeDocument(command);
  document["status"] = static_cast<int>(status);
  document["providers"] = TJson::array();
  for (const TCheckedProvider& provider : providers) {
    document["providers"].push_back(MakeProvider(provider));
  }
  WriteDocument(out, document);
}

void WriteAddDocument(std::ostream& out, EExitStatus status, const TCheckedProvider& provider,
                      const std::string& folder) {
  TJson document = MakeDocument("provider add");
  document["status"] = static_cast<int>(status);
  document["added"] = !folder.empty();
  document["folder"] = folder.empty() ? TJson(nullptr) : TJson(folder);
  document["provider"] = MakeProvider(provider);
  WriteDocument(out, document);
}

void WriteRemoveDocument(std::ostream& out, EExitStatus status, const TProviderPackage& package) {
  TJson document = MakeDocument("provider remove");
  document["status"] = static_cast<int>(status);
  document["removed"] = status == EExitStatus::kAllPassed;
  document["name"] = package.name;
  document["folder"] = package.folder;
  WriteDocument(out, document);
}

}  // namespace host
