// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "parsers/TDiagnosticAction.h"

/// What the vendor message catalogue says about one outcome of one test.
///
/// A plain value. Several entries may speak of the same test, told apart by state and error code.
struct TDiagnosticResultMessage {
  std::string testName;               ///< Lower case.
  std::string errorCode;              ///< The vendor's code that this entry is for; empty for any.
  std::string state;                  ///< Lower-case completion state: "ok", "failed", "aborted".
  std::vector<std::string> messages;  ///< Explanations, in file order.
  std::vector<TDiagnosticAction> actions;  ///< Advice, in file order.

  /// The entry as a person reads it: the last message on a line of its own, then a line
  /// "priority. text" for each action. Empty when there is neither.
  std::string getMessage() const;
};
