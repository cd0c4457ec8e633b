// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <ostream>

namespace host {

/// What is to come of one test of the provider for tests.
struct TEndingRow {
  const char* service;
  const char* answer;
  const char* outcome;
  int status;
};
inline void PrintTo(const TEndingRow& row, std::ostream* out) {
  *out << row.service;
}

/// Every ending that a test can have, wherever it runs.
inline auto EveryEnding() {
  return ::testing::Values(
      TEndingRow{"TestPass", "Pass", "passed", 0}, TEndingRow{"TestFail", "Fail", "failed", 1},
      TEndingRow{"TestAborted", "Aborted", "error", 2},
      TEndingRow{"TestIncomplete", "Incomplete", "error", 2},
      TEndingRow{"TestService", "Pass", "passed", 0},
      TEndingRow{"TestNone", "No Status", "error", 2}, TEndingRow{"TestPolls", "Pass", "passed", 0},
      TEndingRow{"TestNoRecord", "No Results.", "error", 2},
      TEndingRow{"TestTimed", "Pass", "passed", 0}, TEndingRow{"TestBadText", "Pass", "passed", 0});
}

/// The identifier of that provider's only device, as it stands behind a service's name.
constexpr char kEndingDevice[] = ",tst0,Test device";

}  // namespace host
