// SPDX-License-Identifier: Apache-2.0
#include "platform/model/CoreLog.h"

#include "platform/contract/TRootObject.h"

namespace NZEPQEL20 {

void LogToCore(ILogger::EQELLogSeverity severity, const std::string& text) {
  ILogger* const logger = TRootObject::GetCoreLogger();
  if (logger != nullptr) logger->Log(severity, text);
}

}  // namespace NZEPQEL20
