// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "providers/hardware/TProcessRunner.h"

namespace hardware {

/// Outcomes of a test; the numbers are those of CIM_DiagnosticCompletionRecord.CompletionState.
enum class ECompletion : std::uint16_t {
  kOk = 2,          ///< The device passed the whole test.
  kWarning = 3,     ///< It passed, but something about it wants attention.
  kIncomplete = 4,  ///< The test could not be made to the end; nothing is said of the device.
  kFailed = 5,      ///< The device failed.
  kAborted = 6,     ///< The test was ended at once.
  kStopped = 7      ///< The test was ended in order.
};

/// What a test found, in the words that go into its record.
struct TVerdict {
  ECompletion state = ECompletion::kIncomplete;
  std::string summary;    ///< One sentence: what was found, or why nothing could be found.
  std::string covered;    ///< How much of the device was tested; empty when nothing was.
  std::string tool;       ///< The program that tested, and its version.
  std::string command;    ///< The command line.
  std::string exit;       ///< How the program ended: "exit status 0".
  std::string excerpt;    ///< The part of its output that matters.
  bool isBroken = false;  ///< The test itself failed to run: there is a fault outside the device.
};

/// The verdict on a run that did not end by itself; nothing when it did, and the program's words
/// are to be judged.
std::optional<TVerdict> JudgeEnding(const TProcessOutcome& outcome);

/// Makes a verdict of its parts.
TVerdict MakeVerdict(ECompletion state, std::string summary);

/// Adds what every record of a program's run tells: its command line, how it ended, and the end
/// of its output where the verdict has no excerpt yet.
void DescribeRun(const TProcessOutcome& outcome, TVerdict& verdict);

}  // namespace hardware
