// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace NZEPQEL20 {

/// What lies in a vendor's folder and the folders below it.
struct TVendorFiles {
  std::vector<std::string> files;     ///< A folder's own before those below it, by name.
  std::vector<std::string> problems;  ///< One line each: what was not looked at, and why.
};

/// Looks through `folder`. Names with a dot in front are left out, links are followed, and each
/// folder is visited once, however many links lead to it. Depth and number are bounded.
TVendorFiles ListVendorFiles(const std::string& folder);

/// Whether the name is that of a shared library: `x.so`, `x.so.1.2`.
bool IsLibraryName(const std::string& file);
/// Whether the name ends in `.mof`, in any case.
bool IsMofName(const std::string& file);
/// Whether the name ends in `.registration` or `.reg`, in any case.
bool IsRegistrationName(const std::string& file);

}  // namespace NZEPQEL20
