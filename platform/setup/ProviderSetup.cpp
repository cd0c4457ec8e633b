// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/ProviderSetup.h"

#include <algorithm>
#include <utility>

#include "platform/cmpi/TRegistrations.h"
#include "platform/contract/ILogger.h"
#include "platform/contract/TRootObject.h"
#include "platform/setup/ClassCheck.h"
#include "platform/setup/FolderInstall.h"
#include "platform/setup/InstalledFiles.h"
#include "platform/setup/SchemaCachePlace.h"

namespace NZEPQEL20::setup {
namespace {

void Log(ILogger::EQELLogSeverity severity, const std::string& text) {
  ILogger* logger = TRootObject::GetCoreLogger();
  if (logger != nullptr) logger->Log(severity, text);
}

// A warning names nothing that is missing, so only the log has it. An error in a vendor's file says
// which rule for vendors it is about.
void TakeErrors(const std::vector<TMofError>& errors, const std::string& root,
                std::vector<std::string>& problems) {
  for (const TMofError& error : errors) {
    const std::string text = error.ToString();
    if (error.isWarning) {
      Log(ILogger::kWarning, text);
      continue;
    }
    const bool isVendors = IsBelow(error.file, root + "/providers");
    problems.push_back(text + (isVendors ? std::string("; see rule ") + kMofRule : ""));
    Log(ILogger::kError, problems.back());
  }
}

std::shared_ptr<const TClassRepository> LoadClasses(const TInstalledFiles& files,
                                                    const std::string& root,
                                                    std::vector<std::string>& problems) {
  TSchemaInputs inputs;
  inputs.folders = {root + "/schema"};
  inputs.folders.insert(inputs.folders.end(), files.providerFolders.begin(),
                        files.providerFolders.end());
  inputs.files = files.schema;
  inputs.files.insert(inputs.files.end(), files.providerSchema.begin(), files.providerSchema.end());
  const TLoadedSchema schema = LoadSchema(inputs, ChooseSchemaCache(root));
  for (const std::string& note : schema.notes) Log(ILogger::kTrace, note);
  TakeErrors(schema.problems, root, problems);
  return schema.classes;
}

// Takes the files out that hold nothing but registrations.
TRegistrations LoadRegistrations(TInstalledFiles& files, const std::string& root) {
  TRegistrations registrations;
  for (const TInstalledFolder& vendor : files.vendors) {
    registrations.LoadFolder(vendor.path, vendor.files);
  }
  if (registrations.GetFiles().empty()) {
    files.problems.push_back(root +
                             "/providers: holds no provider; add one with \"diagsrun provider "
                             "add\"; see rule R1");
  }
  const std::vector<std::string>& pure = registrations.GetPureFiles();
  std::vector<std::string>& schema = files.providerSchema;
  const auto isPure = [&pure](const std::string& file) {
    return std::find(pure.begin(), pure.end(), file) != pure.end();
  };
  schema.erase(std::remove_if(schema.begin(), schema.end(), isPure), schema.end());
  return registrations;
}

}  // namespace

TProviderSetup OpenProviders(const std::string& root, const std::string& nameSpace) {
  TProviderSetup setup;
  TInstalledFiles files = FindInstalledFiles(root);
  TRegistrations registrations = LoadRegistrations(files, root);
  for (const std::string& problem : files.problems) Log(ILogger::kError, problem);
  setup.problems = files.problems;
  setup.classes = LoadClasses(files, root, setup.problems);
  setup.operations =
      std::make_shared<TCMPIOperations>(setup.classes, std::move(registrations), nameSpace);
  setup.operations->OpenLibraries();
  return setup;
}

}  // namespace NZEPQEL20::setup
