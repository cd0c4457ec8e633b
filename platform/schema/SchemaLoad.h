// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/schema/TClassRepository.h"
#include "platform/schema/TSchemaCache.h"

namespace NZEPQEL20 {

/// Where the cache of a schema may lie.
struct TSchemaCachePlace {
  /// In the order in which they are tried, for reading and for writing; none: no cache.
  std::vector<std::string> folders;
  std::string fileName;
  /// Bytes of MOF from which on a cache is written: below, reading the files is as quick.
  std::size_t leastSize = std::size_t{256} * 1024;
};

/// A schema, and what came of loading it.
struct TLoadedSchema {
  std::shared_ptr<const TClassRepository> classes;
  std::vector<TMofError> problems;     ///< The same, whether they were found now or before.
  std::vector<TLeftOutClass> leftOut;  ///< Likewise; see TClassRepository::GetLeftOut().
  bool isFromCache = false;
  std::vector<std::string> notes;  ///< What became of the cache, for a log.
};

/// Reads the files and checks the whole, or takes the same from a cache when everything that was
/// looked at then is unchanged. A cache that cannot be read or written is no error.
TLoadedSchema LoadSchema(const TSchemaInputs& inputs, const TSchemaCachePlace& place);

}  // namespace NZEPQEL20
