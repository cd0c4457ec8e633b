// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace NZEPQEL20 {

/// Something that is wrong, or doubtful, in a MOF file.
struct TMofError {
  std::string file;
  unsigned int line = 0;    ///< From 1; 0 when it is about the file as a whole.
  unsigned int column = 0;  ///< From 1, in characters; 0 like `line`.
  std::string text;         ///< What was expected, and what stood there.
  bool isWarning = false;   ///< The declaration was taken as it is; nothing is missing.

  /// "file:line:column: text", with "warning: " before the text of a warning; without the
  /// numbers where there are none.
  std::string ToString() const;
};

}  // namespace NZEPQEL20
