// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/ProviderSetup.h"

#include "platform/cmpi/TRegistrations.h"
#include "platform/contract/ILogger.h"
#include "platform/contract/TRootObject.h"
#include "platform/setup/InstalledFiles.h"

namespace NZEPQEL20::setup {
namespace {

void Log(ILogger::EQELLogSeverity severity, const std::string& text) {
  ILogger* logger = TRootObject::GetCoreLogger();
  if (logger != nullptr) logger->Log(severity, text);
}

// A warning names nothing that is missing, so only the log has it.
void TakeErrors(const std::vector<TMofError>& errors, std::vector<std::string>& problems) {
  for (const TMofError& error : errors) {
    Log(error.isWarning ? ILogger::kWarning : ILogger::kError, error.ToString());
    if (!error.isWarning) problems.push_back(error.ToString());
  }
}

std::shared_ptr<const TClassRepository> LoadClasses(const TInstalledFiles& files,
                                                    const std::string& root,
                                                    std::vector<std::string>& problems) {
  auto classes = std::make_shared<TClassRepository>();
  classes->AddSearchPath(root + "/schema");
  for (const std::string& folder : files.providerFolders) classes->AddSearchPath(folder);
  for (const std::string& file : files.schema) TakeErrors(classes->Load(file), problems);
  for (const std::string& file : files.providerSchema) TakeErrors(classes->Load(file), problems);
  TakeErrors(classes->Check(), problems);
  return classes;
}

TRegistrations LoadRegistrations(const TInstalledFiles& files) {
  TRegistrations registrations;
  for (const std::string& file : files.registrations) registrations.Load(file);
  return registrations;
}

}  // namespace

TProviderSetup OpenProviders(const std::string& root, const std::string& nameSpace) {
  TProviderSetup setup;
  const TInstalledFiles files = FindInstalledFiles(root);
  for (const std::string& problem : files.problems) Log(ILogger::kError, problem);
  setup.problems = files.problems;
  setup.classes = LoadClasses(files, root, setup.problems);
  setup.operations =
      std::make_shared<TCMPIOperations>(setup.classes, LoadRegistrations(files), nameSpace);
  setup.operations->OpenLibraries();
  return setup;
}

}  // namespace NZEPQEL20::setup
