// SPDX-License-Identifier: Apache-2.0
#include "runner/DebugLog.h"

#include "platform/contract/ILogger.h"
#include "platform/contract/TRootObject.h"

void DebugLog(const std::string& message) {
  NZEPQEL20::ILogger* const logger = NZEPQEL20::TRootObject::GetCoreLogger();
  if (logger != nullptr) logger->Log(NZEPQEL20::ILogger::kTrace, message);
}

void DebugLog(std::initializer_list<std::string_view> parts) {
  if (NZEPQEL20::TRootObject::GetCoreLogger() == nullptr) return;
  std::string message;
  for (const std::string_view part : parts) message += part;
  DebugLog(message);
}
