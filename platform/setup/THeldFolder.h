// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/schema/TDescriptor.h"

namespace NZEPQEL20::setup {

/// The folder of all vendors, held against other installations while this lives.
///
/// Whoever installs or removes holds it from before a hidden folder is made until that is gone, and
/// the system lets go of it when the process ends, in whatever way. So a hidden folder that the
/// holder finds belongs to no living process; what an installation that was cut off has left goes,
/// and a vendor's folder that it had put aside comes back, as soon as the next one holds it.
class THeldFolder {
 public:
  /// Tidies up.
  /// Errors: TQELException: it cannot be opened, or another one holds it.
  explicit THeldFolder(const std::string& folder);

  /// Has the disk know the names in the folder. They are what they are by then: that the disk does
  /// not take them is a warning in the log.
  void Sync() const;

  /// Tidies up when there is anything to tidy and nobody holds the folder; else does nothing.
  static void Tidy(const std::string& folder) noexcept;

 private:
  std::string m_folder;
  TDescriptor m_file;
};

}  // namespace NZEPQEL20::setup
