// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace hardware {

/// Finds programs: in the folders of PATH first, then in the system administrator's folders, which
/// an ordinary user's PATH lacks.
///
/// Threads: any.
class TToolFinder {
 public:
  /// Looks in the folders of `path` (colons between them; relative ones are not used).
  explicit TToolFinder(const std::string& path);

  /// Looks in the folders of this process's PATH.
  TToolFinder();

  /// Absolute path of the program, empty when there is none that may be executed.
  std::string Find(const std::string& name) const;

 private:
  std::vector<std::string> m_folders;
};

}  // namespace hardware
