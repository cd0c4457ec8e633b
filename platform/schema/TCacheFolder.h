// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/schema/TDescriptor.h"

namespace NZEPQEL20 {

/// A folder that holds caches.
///
/// What is read from it is believed, so folder and file must be regular ones that belong to root
/// or to the effective user, and that nobody else may write to. Nothing in here throws but for want
/// of memory.
class TCacheFolder {
 public:
  explicit TCacheFolder(std::string path) : m_path(std::move(path)) {}

  /// The file opened for reading; not open when it is not there or not to be trusted. `reason`
  /// becomes a text when it is there and is not taken.
  TDescriptor Open(const std::string& name, std::string& reason) const;

  /// Puts `parts`, one behind the other, in the place of the file: at once and as a whole, so that
  /// who reads meanwhile finds the old one or the new one, and of two who write the last one wins.
  /// The folder is made when it is not there. Answers with the reason why it cannot be done, or an
  /// empty text.
  std::string Write(const std::string& name, const std::vector<std::string_view>& parts) const;

  const std::string& GetPath() const { return m_path; }

 private:
  TDescriptor OpenFolder(std::string& reason) const;

  std::string m_path;
};

}  // namespace NZEPQEL20
