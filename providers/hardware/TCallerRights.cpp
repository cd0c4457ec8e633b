// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TCallerRights.h"

#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>

namespace hardware {
namespace {

// Asked of the kernel itself: libcap would be one more library for two bits.
std::uint64_t ReadEffectiveCapabilities() {
  struct __user_cap_header_struct header {};
  header.version = _LINUX_CAPABILITY_VERSION_3;
  std::array<struct __user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> data{};
  if (::syscall(SYS_capget, &header, data.data()) != 0) return 0;
  return data[0].effective | (std::uint64_t{data[1].effective} << 32U);
}

}  // namespace

TCallerRights TCallerRights::Read() {
  TCallerRights rights;
  rights.isRoot = ::geteuid() == 0;
  const std::uint64_t capabilities = ReadEffectiveCapabilities();
  rights.canAdministerNet = ((capabilities >> CAP_NET_ADMIN) & 1U) != 0;
  rights.canLockAnyMemory = ((capabilities >> CAP_IPC_LOCK) & 1U) != 0;
  struct rlimit limit {};
  if (::getrlimit(RLIMIT_MEMLOCK, &limit) == 0) rights.lockableBytes = limit.rlim_cur;
  return rights;
}

}  // namespace hardware
