// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/cmpi/TRegistrations.h"
#include "platform/schema/SchemaLoad.h"

namespace NZEPQEL20::setup {

/// What an installation root declares and registers.
struct TInstalledSchema {
  TRegistrations registrations;
  TLoadedSchema schema;
  std::vector<std::string> problems;  ///< With folders and files, not with what stands in them.
};

/// Reads registrations and classes below `root` (an absolute path), the classes from the cache
/// where there is one. What is said of the cache is in the log.
TInstalledSchema LoadInstalledSchema(const std::string& root);

}  // namespace NZEPQEL20::setup
