// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace NZEPQEL20 {

/// Where the cache of a schema may lie.
struct TSchemaCachePlace {
  /// In the order in which they are tried, for reading and for writing; none: no cache.
  std::vector<std::string> folders;
  std::string fileName;
  /// Bytes of MOF from which on a cache is written: below, reading the files is as quick.
  std::size_t leastSize = std::size_t{256} * 1024;
};

}  // namespace NZEPQEL20
