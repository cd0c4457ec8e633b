// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/ProviderCheck.h"

#include "platform/cmpi/TRegistrations.h"

namespace NZEPQEL20::setup {

std::vector<TProviderFinding> CheckProvider(const std::string& /*root*/,
                                            const TProviderPackage& package) {
  std::vector<TProviderFinding> findings;
  TRegistrations registrations;
  for (const std::string& file : package.registrations) registrations.Load(file);
  for (const std::string& problem : registrations.GetProblems()) {
    findings.push_back({false, "R2", problem, "mend the line"});
  }
  for (const TProviderService& service : package.services) {
    if (!service.library.empty()) continue;
    findings.push_back({false, "R1",
                        "provider " + service.providerName + " of class " + service.className +
                            ": its library is not in " + package.folder,
                        "put it there"});
  }
  return findings;
}

}  // namespace NZEPQEL20::setup
