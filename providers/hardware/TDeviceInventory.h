// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "providers/hardware/TDevice.h"
#include "providers/hardware/THostFiles.h"

namespace hardware {

/// Finds the devices of a machine in what its kernel and firmware tell about them.
///
/// Threads: any.
class TDeviceInventory {
 public:
  explicit TDeviceInventory(const THostFiles& files) : m_files(files) {}

  /// Processors, memory, disks and network ports, in this order, each kind in the kernel's order.
  std::vector<TDevice> FindDevices() const;

  /// The processors that are online, one device per logical processor.
  std::vector<TDevice> FindProcessors() const;

  /// All memory as one device; none when its size is not known.
  std::vector<TDevice> FindMemory() const;

  /// Whole disks with a medium: nothing that is made of other devices, memory or files.
  std::vector<TDevice> FindDisks() const;

  /// Ethernet ports backed by hardware: no bridges, bonds, VLANs, and no wireless ones.
  std::vector<TDevice> FindNetworkPorts() const;

 private:
  TDevice DescribeDisk(const std::string& name) const;
  TDevice DescribePort(const std::string& name) const;
  std::string ReadMachineName() const;

  const THostFiles& m_files;
};

/// Numbers of a kernel list such as "0-3,8"; malformed parts are left out, at most 8192 numbers
/// are given.
std::vector<unsigned int> ParseCpuList(std::string_view list);

}  // namespace hardware
