// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace scripted {

/// While it lives, the next array allocation of at least `minBytes` on any thread fails, once:
/// operator new[] throws std::bad_alloc, its nothrow form yields null.
class TAllocationFault {
 public:
  explicit TAllocationFault(std::size_t minBytes);
  ~TAllocationFault();
  TAllocationFault(const TAllocationFault&) = delete;
  TAllocationFault& operator=(const TAllocationFault&) = delete;

  /// Whether an allocation has failed.
  bool HasStruck() const;
};

}  // namespace scripted
