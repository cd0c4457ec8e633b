// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "providers/hardware/TDevice.h"
#include "providers/hardware/THostFiles.h"

namespace hardware {

/// A mounted file system, as the kernel lists it.
struct TMount {
  std::string device;  ///< "major:minor" of its files; major 0 is no block device's.
  std::string point;   ///< Where it is mounted, as on the machine described.
  std::string type;    ///< "ext4"
  std::string source;  ///< What was mounted: "/dev/sda1", but any text is possible.
};

/// Reads the kernel's list of mounts; malformed lines are left out.
std::vector<TMount> ParseMountInfo(std::string_view text);

/// Finds the file systems whose files lie on one disk.
///
/// Threads: any.
class TDiskMounts {
 public:
  explicit TDiskMounts(const THostFiles& files) : m_files(files) {}

  /// The mounts this process sees of file systems on `disk` or on one of its partitions alone, in
  /// the kernel's order: nothing that is spread over several devices or made of mapped ones, and
  /// nothing that is hidden under another mount.
  std::vector<TMount> Find(const TDevice& disk) const;

 private:
  std::vector<std::string> ListBlockNames(const TDevice& disk) const;
  bool IsOnBlock(const TMount& mount, const std::vector<std::string>& names) const;
  bool IsAlone(const std::string& name) const;

  const THostFiles& m_files;
};

}  // namespace hardware
