// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <iosfwd>
#include <string>

#include "host/ExitStatus.h"

namespace host {

/// What the commands use of the process that they run in.
struct TSurroundings {
  std::ostream& out;
  std::ostream& err;
  std::function<bool()> isInterrupted;
  std::function<bool()> isOutputGood;  ///< Whether all that was written to `out` arrived.
  std::function<std::chrono::system_clock::time_point()> wallClock;
  std::function<std::chrono::steady_clock::time_point()> steadyClock;
  std::function<void()> beginTests = [] {};  ///< Called once, before the first test is started.
  std::function<bool()> isReaderGone = [] { return false; };  ///< Nobody will read `out` any more.

  /// Writes one line to `err`, made safe for a terminal.
  void Complain(const std::string& text) const;

  /// `status`, or kNotFinished with a complaint when not all of `out` arrived: whoever reads the
  /// results must not take a cut output for a whole one.
  EExitStatus CheckOutput(EExitStatus status) const;

  /// The same for a command that only shows something: a reader that goes away before the end, as
  /// head(1) does, has what it wanted, and there is nothing to complain of.
  EExitStatus CheckListing(EExitStatus status) const;
};

}  // namespace host
