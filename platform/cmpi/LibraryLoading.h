// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace NZEPQEL20 {

/// What came of loading a library.
struct TLoadedLibrary {
  void* handle = nullptr;  ///< Null when it cannot be loaded; the rest says why then.
  std::string reason;      ///< In the loader's words where it was asked.
  std::string remedy;
  std::string rule;   ///< Number in the rules for provider authors.
  std::string doubt;  ///< "gets ... of another vendor ...", loaded all the same; mostly empty.
};

/// Loads the library at `path`, every symbol resolved and none shown to others. One that it needs
/// and that the loader does not find is looked for in `folder` and below, and loaded first. Neither
/// comes to the loader when it would end or hang the process: cut off, damaged, no regular file.
TLoadedLibrary LoadLibrary(const std::string& path, const std::string& folder);

/// The library that the loader misses by its own words, "x.so: cannot open shared object file: No
/// such file"; empty when they say something else.
std::string FindMissing(const std::string& reason);

/// The entry points that a library has, in the words " (it has A_Create_InstanceMI)"; what to
/// think of when it has none; empty when that cannot be told.
std::string DescribeFactories(const std::string& path);

/// The names among `symbols` that are those of entry points: `X_Create_TMI`.
std::vector<std::string> FindFactories(const std::vector<std::string>& symbols);

}  // namespace NZEPQEL20
