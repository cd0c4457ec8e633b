// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TMofProblems.h"

#include <utility>

namespace NZEPQEL20 {

std::string TMofError::ToString() const {
  std::string result = file;
  if (line != 0) {
    result += ":" + std::to_string(line) + ":" + std::to_string(column);
  }
  return result + (isWarning ? ": warning: " : ": ") + text;
}

void TMofProblems::Add(TMofError&& error) {
  // A flood of the one must not hide where the other is.
  std::size_t& count = error.isWarning ? m_warningCount : m_errorCount;
  if (++count <= kMaxKept) {
    m_errors.push_back(std::move(error));
  }
}

void TMofProblems::AddError(const std::string& file, TMofPosition position,
                            const std::string& text) {
  Add({file, position.line, position.column, text, false});
}

void TMofProblems::AddWarning(const std::string& file, TMofPosition position,
                              const std::string& text) {
  Add({file, position.line, position.column, text, true});
}

std::vector<TMofError> TMofProblems::Take() {
  const std::size_t unkept = m_errorCount + m_warningCount - m_errors.size();
  if (unkept != 0) {
    const bool isWarning = m_errorCount <= kMaxKept;
    m_errors.push_back({m_errors.back().file, 0, 0,
                        "further problems not listed: " + std::to_string(unkept), isWarning});
  }
  m_errorCount = 0;
  m_warningCount = 0;
  return std::exchange(m_errors, {});
}

}  // namespace NZEPQEL20
