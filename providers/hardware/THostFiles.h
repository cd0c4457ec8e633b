// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace hardware {

/// The files in which the kernel and the firmware describe the machine, seen through a root
/// folder, so that the description of another machine can be read instead.
///
/// All paths are absolute, as on the machine described. What cannot be read reads as absent.
/// Threads: any.
class THostFiles {
 public:
  /// `root` is put before every path; empty: this machine.
  explicit THostFiles(std::string root) : m_root(std::move(root)) {}

  /// Text of a regular file without blanks at its ends; at most 4 MiB are read.
  std::optional<std::string> ReadText(const std::string& path) const;

  /// A file that holds one decimal number.
  std::optional<std::uint64_t> ReadNumber(const std::string& path) const;

  /// Names in a folder, in ascending order, without "." and "..".
  std::vector<std::string> ListNames(const std::string& folder) const;

  /// Last component of what the link `path` points to; empty when it is no link.
  std::string ReadLinkName(const std::string& path) const;

  bool Exists(const std::string& path) const;

  /// Where `path` really is, for programs that are handed it.
  std::string Locate(const std::string& path) const { return m_root + path; }

 private:
  std::string m_root;
};

}  // namespace hardware
