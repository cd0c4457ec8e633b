// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/schema/SchemaLoad.h"

namespace NZEPQEL20::setup {

/// Where the cache of the schema below `root` (an absolute path) lies: in `root`/cache, or, where
/// that is not ours to write, in the user's own folder for caches. The environment variable
/// DIAGSRUNNER_SCHEMA_CACHE names another folder, or says "off".
TSchemaCachePlace ChooseSchemaCache(const std::string& root);

}  // namespace NZEPQEL20::setup
