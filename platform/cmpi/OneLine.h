// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace NZEPQEL20 {

/// `text` as one line that a person can read: control characters become blanks, and what is beyond
/// 2000 bytes becomes "...". Vendors' files and libraries may have put anything into it.
std::string ToOneLine(std::string text);

}  // namespace NZEPQEL20
