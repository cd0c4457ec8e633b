// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace hardware {

/// What the system lets this process do, as far as tests depend on it.
struct TCallerRights {
  bool isRoot = false;              ///< Runs with the user number 0.
  bool canAdministerNet = false;    ///< Holds CAP_NET_ADMIN.
  bool canLockAnyMemory = false;    ///< Holds CAP_IPC_LOCK.
  std::uint64_t lockableBytes = 0;  ///< Memory that may be locked without that.

  /// The rights of this process, now.
  static TCallerRights Read();
};

}  // namespace hardware
