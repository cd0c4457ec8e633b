// SPDX-License-Identifier: Apache-2.0
#include "parsers/TDiagnosticResultMessage.h"

std::string TDiagnosticResultMessage::getMessage() const {
  std::string text;
  // A later message stands in place of the earlier ones.
  if (!messages.empty()) text = messages.back() + "\n";
  for (const TDiagnosticAction& action : actions) {
    text.append(action.priority).append(". ").append(action.text).append("\n");
  }
  return text;
}
