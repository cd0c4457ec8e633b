// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string>

namespace host {

/// The command line asks for something that cannot be meant; what() names the argument and the
/// reason. Thrown before any test has run.
class TUsageError : public std::runtime_error {
 public:
  TUsageError(const std::string& argument, const std::string& reason)
      : std::runtime_error(argument + ": " + reason) {}
};

}  // namespace host
