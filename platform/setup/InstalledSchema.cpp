// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/InstalledSchema.h"

#include <algorithm>

#include "platform/contract/ILogger.h"
#include "platform/contract/TRootObject.h"
#include "platform/setup/InstalledFiles.h"
#include "platform/setup/SchemaCachePlace.h"

namespace NZEPQEL20::setup {
namespace {

TLoadedSchema LoadClasses(const TInstalledFiles& files, const std::string& root) {
  TSchemaInputs inputs;
  inputs.folders = {root + "/schema"};
  inputs.folders.insert(inputs.folders.end(), files.providerFolders.begin(),
                        files.providerFolders.end());
  inputs.files = files.schema;
  inputs.files.insert(inputs.files.end(), files.providerSchema.begin(), files.providerSchema.end());
  TLoadedSchema schema = LoadSchema(inputs, ChooseSchemaCache(root));
  ILogger* logger = TRootObject::GetCoreLogger();
  for (const std::string& note : schema.notes) {
    if (logger != nullptr) logger->Log(ILogger::kTrace, note);
  }
  return schema;
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

TInstalledSchema LoadInstalledSchema(const std::string& root) {
  TInstalledSchema installed;
  TInstalledFiles files = FindInstalledFiles(root);
  installed.registrations = LoadRegistrations(files, root);
  installed.schema = LoadClasses(files, root);
  installed.problems = files.problems;
  return installed;
}

}  // namespace NZEPQEL20::setup
