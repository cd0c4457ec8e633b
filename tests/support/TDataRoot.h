// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "tests/support/TTemporaryFolder.h"

namespace scripted {

/// Paths of the runner's data files below the installation root.
extern const char kExcludedTests[];
extern const char kMatrix[];
extern const char kCatalogue[];

/// An installation root of its own, with an empty data folder; removed with all its content.
class TDataRoot {
 public:
  TDataRoot();

  const std::string& GetPath() const { return m_folder.GetPath(); }

  /// Writes the file `name`, one of the names above.
  void Write(const std::string& name, const std::string& content) const;
  /// A file of `bytes` zero bytes that take no room on the disk.
  void WriteSparse(const std::string& name, long bytes) const;
  void MakeDirectory(const std::string& name) const;
  void Remove(const std::string& name) const;

 private:
  TTemporaryFolder m_folder;
};

}  // namespace scripted
