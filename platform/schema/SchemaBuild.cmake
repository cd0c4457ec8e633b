# Writes a header with a number that is another one for every state of the given sources.
set(digests "")
foreach(source IN LISTS SOURCES)
  file(SHA256 ${source} digest)
  string(APPEND digests ${digest})
endforeach()
string(SHA256 digest "${digests}")
string(SUBSTRING ${digest} 0 16 number)
file(WRITE ${OUTPUT} "// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace NZEPQEL20 {

/// Names the build of the MOF reader that is compiled.
constexpr std::uint64_t kSchemaBuild = 0x${number}U;

}  // namespace NZEPQEL20
")
