// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/contract/Export.h"
#include "platform/contract/ILogger.h"

namespace NZEPQEL20 {

/// Holds what is one per process.
class DIAGSPLATFORM_EXPORT TRootObject {
 public:
  /// Null while no logger is configured.
  static ILogger* GetCoreLogger();

  /// `logger` stays the caller's and must outlive its use; null turns logging off.
  static void SetCoreLogger(ILogger* logger);
};

}  // namespace NZEPQEL20
