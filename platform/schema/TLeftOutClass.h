// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace NZEPQEL20 {

/// A class that a file declares otherwise than another one, whose declaration holds.
struct TLeftOutClass {
  std::string name;
  std::string file;    ///< The one that it was left out of.
  std::string holder;  ///< The one whose declaration holds.
};

}  // namespace NZEPQEL20
