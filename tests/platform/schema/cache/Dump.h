// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/schema/TClassRepository.h"

namespace cachetest {

/// Everything that a repository answers, as text: two with the same text cannot be told apart.
std::string Dump(const NZEPQEL20::TClassRepository& repository);

/// A value with its type, whether it is an array or NULL, and what it holds.
std::string Dump(const NZEPQEL20::TCIMValue& value);

}  // namespace cachetest
