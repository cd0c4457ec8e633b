// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <string>

#include "platform/schema/SchemaLoad.h"

namespace NZEPQEL20::setup {

/// Where the cache of the schema below `root` (an absolute path) lies: in `root`/cache, or, where
/// that is not ours to write, in the user's own folder for caches. The environment variable
/// DIAGSRUNNER_SCHEMA_CACHE names another folder, or says "off". For root (`user` 0), a home that
/// belongs to somebody else is no place.
TSchemaCachePlace ChooseSchemaCache(const std::string& root, uid_t user = geteuid());

}  // namespace NZEPQEL20::setup
