// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/Catalogue.h"
#include "host/ExitStatus.h"
#include "host/IDiagnostics.h"

namespace host {

/// What `list` found.
struct TListReport {
  std::vector<TTest> tests;
  std::vector<NZEPQEL20::TUnofferedTest> unoffered;
  std::vector<std::string> problems;
  std::size_t found = 0;  ///< Tests that there are, whether they match or not.
};

/// One selected test and how it ended.
struct TTestReport {
  TTest test;
  EOutcome outcome = EOutcome::kNotRun;
  std::string answer;  ///< The runner's, without white space at its ends; empty for kNotRun.
  std::optional<TRecordText> record;
  std::chrono::system_clock::time_point started;
  double seconds = 0;
  std::string reason;  ///< What kept the server from running it to its end; empty: nothing known.
};

/// Why a test has no verdict, in place of an answer that cannot know of the server's failure; empty
/// when no failure of a server is known.
std::string DescribeReason(const TTestReport& report);

/// What `run` did.
struct TRunReport {
  std::vector<TTestReport> tests;
  std::vector<std::string> problems;
  bool isInterrupted = false;
  EExitStatus status = EExitStatus::kNotFinished;

  std::size_t Count(EOutcome outcome) const;
};

/// What `inspect` found.
struct TInspectReport {
  std::string className;
  bool isKnown = false;
  std::vector<TInstanceText> instances;
  std::vector<std::string> problems;
};

/// Renders what the commands found on standard output.
class IReport {
 public:
  virtual ~IReport() = default;

  virtual void ShowList(const TListReport& list) = 0;
  /// `position` counts from 1.
  virtual void ShowTestStart(const TTest& test, std::size_t position, std::size_t total) = 0;
  virtual void ShowTestEnd(const TTestReport& report) = 0;
  virtual void ShowRunEnd(const TRunReport& run) = 0;
};

}  // namespace host
