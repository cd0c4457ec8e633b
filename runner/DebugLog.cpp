// SPDX-License-Identifier: Apache-2.0
#include "runner/DebugLog.h"

#include "platform/contract/ILogger.h"
#include "platform/contract/TRootObject.h"

void DebugLog(const std::string& message) {
  NZEPQEL20::ILogger* const logger = NZEPQEL20::TRootObject::GetCoreLogger();
  if (logger != nullptr) logger->Log(NZEPQEL20::ILogger::kTrace, message);
}
