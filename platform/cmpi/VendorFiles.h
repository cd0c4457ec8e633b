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

/// Folders below each other that are looked through.
inline constexpr unsigned int kMaxVendorDepth = 8;

/// Looks through `folder`, and `depth` folders below. Names with a dot in front are left out, links
/// are followed, and each folder is visited once, however many links lead to it. The number of
/// files is bounded; what is deeper than kMaxVendorDepth is a problem.
TVendorFiles ListVendorFiles(const std::string& folder, unsigned int depth = kMaxVendorDepth);

/// The folder that `file` is named in; "." when it is named without one.
std::string GetFolderOf(const std::string& file);

/// Whether the name is that of a shared library: `x.so`, `x.so.1.2`.
bool IsLibraryName(const std::string& file);
/// Whether the name ends in `.mof`, in any case.
bool IsMofName(const std::string& file);
/// Whether the name ends in `.registration` or `.reg`, in any case.
bool IsRegistrationName(const std::string& file);

/// Whether both names lead to one file, or to two with the same bytes.
bool IsSameFile(const std::string& left, const std::string& right);

}  // namespace NZEPQEL20
