// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/InstalledSchema.h"

#include <algorithm>

#include "platform/model/CoreLog.h"
#include "platform/setup/InstalledFiles.h"
#include "platform/setup/SchemaCachePlace.h"

namespace NZEPQEL20::setup {
namespace {

void Log(const std::vector<std::string>& notes) {
  for (const std::string& note : notes) LogToCore(ILogger::kTrace, note);
}

TLoadedSchema LoadClasses(const TInstalledFiles& files, const std::string& root,
                          const TSchemaCachePlace& place) {
  TSchemaInputs inputs;
  inputs.folders = {root + "/schema"};
  inputs.folders.insert(inputs.folders.end(), files.providerFolders.begin(),
                        files.providerFolders.end());
  inputs.files = files.schema;
  inputs.files.insert(inputs.files.end(), files.providerSchema.begin(), files.providerSchema.end());
  TLoadedSchema schema = LoadSchema(inputs, place);
  Log(schema.notes);
  return schema;
}

// Takes the files out that hold nothing but registrations.
TRegistrations LoadRegistrations(TInstalledFiles& files, const std::string& root,
                                 TMofOutlines& outlines) {
  TRegistrations registrations;
  for (const TInstalledFolder& vendor : files.vendors) {
    registrations.LoadFolder(vendor.path, vendor.files, outlines);
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
  const TSchemaCachePlace place = ChooseSchemaCache(root);
  TMofOutlines outlines(place);
  TInstalledFiles files = FindInstalledFiles(root, outlines);
  installed.registrations = LoadRegistrations(files, root, outlines);
  outlines.Store();
  Log(outlines.GetNotes());
  installed.schema = LoadClasses(files, root, place);
  installed.problems = files.problems;
  return installed;
}

}  // namespace NZEPQEL20::setup
