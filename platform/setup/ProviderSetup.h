// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/cmpi/TCMPIOperations.h"
#include "platform/schema/TClassRepository.h"

namespace NZEPQEL20::setup {

/// The providers of an installation root, and what they are served by.
struct TProviderSetup {
  std::shared_ptr<const TClassRepository> classes;
  std::shared_ptr<TCMPIOperations> operations;  ///< Its libraries are open.
  std::vector<std::string> problems;            ///< One line per file or folder at fault.
};

/// Reads classes and registrations below `root` (an absolute path) and opens the libraries. A
/// fault in one of them is a problem and a line of the log; everything else goes on.
TProviderSetup OpenProviders(const std::string& root, const std::string& nameSpace);

}  // namespace NZEPQEL20::setup
