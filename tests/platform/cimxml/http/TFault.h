// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <ostream>
#include <string>

#include "tests/platform/cimxml/http/SessionTest.h"

namespace diagstest {

/// One way for a server to fail, and what the session must make of it.
struct TFault {
  const char* name;
  TPlay play;
  TOutcome::EKind kind;
  unsigned int code;  ///< A TQELStatusCode.
  std::string text;   ///< Behind the URL; with a "~" at its end only the start of it.
  std::chrono::milliseconds timeout{3000};
  std::uint64_t maxReplyBytes = 1U << 20U;
  /// Follows the text as long as the server has given no good answer.
  std::string hint = std::string();
};

std::ostream& operator<<(std::ostream& out, const TFault& fault);

/// The longest time that any failure may take, on a machine that has other things to do.
constexpr std::chrono::milliseconds kMostTime{5000};

/// Plays `fault` on a server of its own over plain HTTP and expects what it says; then that the
/// same session goes on with a good answer. Runs it twice, the second time on a connection that
/// has served a good request before.
void ExpectFault(const TFault& fault);

/// Expects an outcome as a fault describes it.
void ExpectOutcome(const TOutcome& outcome, const TFault& fault, const std::string& url);

}  // namespace diagstest
