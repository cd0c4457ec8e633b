// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace NZEPQEL20::setup {

/// Hands a record from the child process to the parent.
using TTell = std::function<void(const std::string& record)>;

/// What came of work in a child process.
struct TChildOutcome {
  std::vector<std::string> records;
  std::string ending;   ///< How the process ended before the work did, "ended by signal 11
                        ///< (Segmentation fault)"; empty when the work was done.
  bool isLate = false;  ///< It was ended because the limit was over.
};

/// In front of a record: the work begins with its next step.
inline constexpr char kStepMark = '>';

/// Does `work` in a process of its own, with nothing to read and nowhere to write but the records,
/// and ends that process and all that it started when the work is done or `limit` is over. A core
/// is not dumped. Work of several `steps` tells a record with kStepMark before each but the first,
/// and has the limit for each.
/// Errors: TQELException when no process can be made.
TChildOutcome RunInChild(const std::function<void(const TTell&)>& work,
                         std::chrono::milliseconds limit, std::size_t steps = 1);

}  // namespace NZEPQEL20::setup
