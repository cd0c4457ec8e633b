// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string_view>

namespace NZEPQEL20 {

/// A checksum of 64 bits that takes a word at a time. It finds accidents and changes; it does not
/// stand up to somebody who wants two texts to have the same one.
std::uint64_t HashBytes(std::string_view bytes);

}  // namespace NZEPQEL20
