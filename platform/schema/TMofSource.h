// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

#include "platform/schema/TFolderNames.h"
#include "platform/schema/TSchemaSources.h"

namespace NZEPQEL20 {

/// A MOF text in memory, as UTF-8, with the file that it came from.
struct TMofSource {
  /// Largest file that is read, in bytes.
  static constexpr std::size_t kMaxSize = std::size_t{256} * 1024 * 1024;

  /// Reads a regular file.
  /// Errors: TQELException with the reason alone ("No such file or directory", "is a directory",
  /// "larger than 256 MiB"), for the caller to put beside the file's name. A file that was read
  /// is added to `sources`.
  static TMofSource ReadFile(const std::string& path, TSchemaSources* sources = nullptr);

  /// Takes `bytes` as they come: a byte order mark is dropped, UTF-16 with one is converted, and
  /// each byte that is not UTF-8 counts as Windows-1252.
  static TMofSource FromText(const std::string& name, std::string bytes);

  std::string name;
  std::string text;
};

/// Whether the beginning of `text` is that of binary data, such as a library or an archive. One
/// stray control character does not make it so.
bool IsBinary(const std::string& text);

/// The bytes of a regular file as they are; `stamp` is from before the first of them was read.
/// Errors: like TMofSource::ReadFile().
std::string ReadMofBytes(const std::string& path, TFileStamp& stamp);

/// The file that `path` means, seen from the folder of `includingFile`: `\` separates like `/`,
/// and a name that is not there is looked for without case. A path that leads to nothing comes
/// back in its plain form.
std::string ResolveMofPath(const std::string& path, const std::string& includingFile,
                           TFolderNames& names);

}  // namespace NZEPQEL20
