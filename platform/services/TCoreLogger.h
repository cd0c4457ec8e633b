// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "platform/contract/ILogger.h"

namespace spdlog {
class logger;
}

namespace NZEPQEL20 {

/// The log of a host program: a file that is appended to, or standard error.
///
/// One line per call: local time as ISO 8601 with milliseconds, severity word, text. Control
/// characters in the text are written as \n, \r, \t or \xHH, so that what a provider sent cannot
/// pass for a line of its own. Lines are written through at every error and at the end.
/// Threads: safe from several.
class DIAGSPLATFORM_EXPORT TCoreLogger final : public ILogger {
 public:
  /// Keeps texts of `level` and of what is more severe. An empty `file` is standard error.
  /// Errors: TQELException naming the file and the system's reason when it cannot be written to.
  TCoreLogger(const std::string& file, EQELLogSeverity level);
  ~TCoreLogger() override;
  TCoreLogger(const TCoreLogger&) = delete;
  TCoreLogger& operator=(const TCoreLogger&) = delete;

  /// Never throws. A line that cannot be written, on a full disk for example, is lost.
  void Log(EQELLogSeverity severity, const std::string& text) override;

  /// The severity called "error", "warning", "info" or "trace".
  /// Errors: TQELException (kInvalidArgument) naming the word and those that are known.
  static EQELLogSeverity ParseLevel(const std::string& word);

 private:
  std::unique_ptr<spdlog::logger> m_logger;
};

}  // namespace NZEPQEL20
