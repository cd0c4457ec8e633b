// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/schema/TClassRepository.h"
#include "platform/schema/TSchemaCache.h"
#include "platform/schema/TSchemaCachePlace.h"

namespace NZEPQEL20 {

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
