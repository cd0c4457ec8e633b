// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace NZEPQEL20::services {

/// The installation root that belongs to the library in `libraryFile`: the directory
/// lib/diagsrunner below the nearest of its install prefixes (`<prefix>/lib/X.so` or
/// `<prefix>/lib/<multiarch>/X.so`) that has one, so that an installed tree can be moved as a
/// whole. `fallback` where none has.
std::string FindInstalledRoot(const std::string& libraryFile, const std::string& fallback);

}  // namespace NZEPQEL20::services
