// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/contract/Export.h"

namespace NZEPQEL20 {

/// The host's log. Implementations take calls from several threads and never throw.
class DIAGSPLATFORM_EXPORT ILogger {
 public:
  enum EQELLogSeverity {
    kError = 0,    ///< Something the user must mend.
    kWarning = 1,  ///< Something was left out; the rest goes on.
    kInfo = 2,     ///< What was done, in a few lines.
    kTrace = 3     ///< Every step.
  };

  virtual ~ILogger() = default;
  virtual void Log(EQELLogSeverity severity, const std::string& text) = 0;
};

}  // namespace NZEPQEL20
