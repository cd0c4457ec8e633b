// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace hardware {

/// Bytes of a mebibyte.
constexpr std::uint64_t kMib = std::uint64_t{1024} * 1024;

/// Bytes of the unit in which the system counts: /sys/block/*/size of every disk, and st_blocks.
constexpr std::uint64_t kSectorBytes = 512;

}  // namespace hardware
