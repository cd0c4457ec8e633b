// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

/// One thing that a vendor advises to do about a test's outcome.
struct TDiagnosticAction {
  std::string priority;  ///< Printed in front of the text; normally a small number. Lower case.
  std::string text;      ///< The advice, one line.
};
