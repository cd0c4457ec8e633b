// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "providers/hardware/TFileDescriptor.h"

namespace hardware {

/// A file to be read from its start, kept open so that its name cannot come to mean another one.
struct TChosenFile {
  std::string path;
  std::uint64_t bytes = 0;  ///< How much of it is to be read, in whole MiB.
  TFileDescriptor file;
};

/// Finds files below a mount point that this process may read past the page cache.
///
/// Only regular files that take up the space their size tells, from 1 MiB on, count. No link is
/// followed, no other mount entered, nothing is changed.
class TFileFinder {
 public:
  /// Where a search ends, whatever it has found by then.
  struct TLimits {
    std::size_t entries = 100000;
    std::chrono::milliseconds time{2000};
    std::size_t files = 32;
  };

  /// `device`: "major:minor" that the files are expected to have; a mount point that shows another
  /// one is not searched. With major 0 any such one will do.
  TFileFinder(std::string mountPoint, std::string device, TLimits limits);
  TFileFinder(std::string mountPoint, std::string device)
      : TFileFinder(std::move(mountPoint), std::move(device), TLimits()) {}

  /// Whether there is any such file; looks no further than the first one.
  bool HasAny() const;

  /// The largest of the files found, with `bytes` shared out among them: evenly, and what one file
  /// is too small for goes to the larger ones. Largest first.
  std::vector<TChosenFile> Choose(std::uint64_t bytes) const;

 private:
  struct TCandidate {
    std::string path;  // Below the mount point.
    std::uint64_t bytes = 0;
  };
  /// Takes a candidate; false ends the search.
  using TVisitor = std::function<bool(TCandidate)>;
  class TWalk;

  TFileDescriptor OpenMountPoint() const;
  std::optional<TChosenFile> Open(int mountPoint, const TCandidate& candidate) const;

  std::string m_mountPoint;
  std::string m_device;
  TLimits m_limits;
};

}  // namespace hardware
