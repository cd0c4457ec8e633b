// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "tests/providers/TFakeMachine.h"

namespace hardware {

/// A folder with real files of a fake machine, as a mount point to look through.
class TFileFolder {
 public:
  /// `path`: the folder on the machine, which outlives this object.
  TFileFolder(const TFakeMachine& machine, std::string path);

  /// Where the folder really is.
  std::string GetPlace() const { return m_machine.GetRoot() + m_path; }

  /// "major:minor" of the files in it.
  std::string GetDevice() const;

  /// Whether files in it can be read past the page cache; some file systems cannot do that.
  bool CanReadDirectly() const;

  /// Makes a file of so many bytes, none of them a hole.
  void AddFile(const std::string& name, std::uint64_t bytes) const;

  /// Makes a file that has a size, but nothing in it.
  void AddHole(const std::string& name, std::uint64_t bytes) const;

 private:
  const TFakeMachine& m_machine;
  std::string m_path;
};

}  // namespace hardware
