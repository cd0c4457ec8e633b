// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/schema/TMofError.h"
#include "platform/schema/TMofToken.h"

namespace NZEPQEL20 {

/// Collects what is wrong in MOF files, in the order of finding, and bounds how much of it.
class TMofProblems {
 public:
  /// Errors of one file after which the rest of it is not read.
  static constexpr std::size_t kMaxErrors = 1000;

  /// Errors that are kept, and as many warnings; what comes behind them is only counted.
  static constexpr std::size_t kMaxKept = 5000;

  void AddError(const std::string& file, TMofPosition position, const std::string& text);
  void AddWarning(const std::string& file, TMofPosition position, const std::string& text);

  /// Errors so far, without the warnings.
  std::size_t GetErrorCount() const { return m_errorCount; }

  /// Everything kept, with a last line about what was only counted: a warning when that is
  /// warnings alone. Leaves the collection empty.
  std::vector<TMofError> Take();

 private:
  void Add(TMofError&& error);

  std::vector<TMofError> m_errors;
  std::size_t m_errorCount = 0;
  std::size_t m_warningCount = 0;
};

}  // namespace NZEPQEL20
