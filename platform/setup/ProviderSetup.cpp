// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/ProviderSetup.h"

#include <utility>

#include "platform/model/CoreLog.h"
#include "platform/setup/ClassCheck.h"
#include "platform/setup/FolderInstall.h"
#include "platform/setup/InstalledSchema.h"

namespace NZEPQEL20::setup {
namespace {

// A warning names nothing that is missing, so only the log has it. An error in a vendor's file says
// which rule for vendors it is about.
void TakeErrors(const std::vector<TMofError>& errors, const std::string& root,
                std::vector<std::string>& problems) {
  for (const TMofError& error : errors) {
    const std::string text = error.ToString();
    if (error.isWarning) {
      LogToCore(ILogger::kWarning, text);
      continue;
    }
    const bool isVendors = IsBelow(error.file, root + "/providers");
    problems.push_back(text + (isVendors ? std::string("; see rule ") + kMofRule : ""));
    LogToCore(ILogger::kError, problems.back());
  }
}

}  // namespace

TProviderSetup OpenProviders(const std::string& root, const std::string& nameSpace) {
  TProviderSetup setup;
  TInstalledSchema installed = LoadInstalledSchema(root);
  for (const std::string& problem : installed.problems) LogToCore(ILogger::kError, problem);
  setup.problems = std::move(installed.problems);
  TakeErrors(installed.schema.problems, root, setup.problems);
  setup.classes = std::move(installed.schema.classes);
  setup.operations = std::make_shared<TCMPIOperations>(
      setup.classes, std::move(installed.registrations), nameSpace);
  setup.operations->OpenLibraries();
  return setup;
}

}  // namespace NZEPQEL20::setup
