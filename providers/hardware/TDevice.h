// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

namespace hardware {

/// Kinds of devices that have tests.
enum class EDeviceKind { kProcessor, kMemory, kDisk, kNetworkPort };

/// One device of the machine. What is not known is empty or 0.
struct TDevice {
  EDeviceKind kind = EDeviceKind::kProcessor;
  std::string id;              ///< Unique on the machine: "cpu0", "memory0", "sda", "eth0".
  std::string name;            ///< For people; fit for a test identifier (see CleanName).
  std::string kernelName;      ///< What the kernel calls a disk or a network port.
  unsigned int number = 0;     ///< The kernel's number of a processor.
  unsigned int clockMHz = 0;   ///< Highest clock of a processor.
  std::uint64_t bytes = 0;     ///< Size of memory or of a disk.
  std::string node;            ///< Device file of a disk, as on the machine described.
  std::string controllerNode;  ///< Device file of an NVMe disk's controller.
  std::string address;         ///< Hardware address of a network port.
  std::uint64_t linkBitsPerSecond = 0;  ///< Present speed of a network port.
};

}  // namespace hardware
