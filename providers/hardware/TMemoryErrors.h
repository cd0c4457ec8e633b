// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "providers/hardware/THostFiles.h"
#include "providers/hardware/TVerdict.h"

namespace hardware {

/// Sums of the error counters that the kernel keeps for all memory controllers. Machines without
/// such counters show zeros, which says nothing about their memory.
struct TMemoryErrors {
  std::uint64_t corrected = 0;
  std::uint64_t uncorrected = 0;

  static TMemoryErrors Read(const THostFiles& files);
};

/// Lets errors that came up between the two readings weigh in: corrected ones turn a pass into a
/// warning, uncorrected ones turn it into a failure.
void ApplyMemoryErrors(const TMemoryErrors& before, const TMemoryErrors& after, TVerdict& verdict);

}  // namespace hardware
