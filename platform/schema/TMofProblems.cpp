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
  if (m_errors.size() < kMaxKept) {
    m_errors.push_back(std::move(error));
  } else {
    ++m_unkept;
  }
}

void TMofProblems::AddError(const std::string& file, TMofPosition position,
                            const std::string& text) {
  ++m_errorCount;
  Add({file, position.line, position.column, text, false});
}

void TMofProblems::AddWarning(const std::string& file, TMofPosition position,
                              const std::string& text) {
  Add({file, position.line, position.column, text, true});
}

std::vector<TMofError> TMofProblems::Take() {
  if (m_unkept != 0) {
    const std::string more = std::to_string(m_unkept);
    m_errors.push_back({m_errors.back().file, 0, 0, "further problems not listed: " + more, false});
  }
  m_errorCount = 0;
  m_unkept = 0;
  return std::exchange(m_errors, {});
}

}  // namespace NZEPQEL20
