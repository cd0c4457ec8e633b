// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "platform/contract/TRootObject.h"
#include "platform/model/CoreLog.h"

namespace NZEPQEL20 {
namespace {

class TKeptLog : public ILogger {
 public:
  void Log(EQELLogSeverity severity, const std::string& text) override {
    lines += std::to_string(static_cast<int>(severity)) + ' ' + text + '\n';
  }
  std::string lines;
};

TEST(CoreLogTest, LinesReachTheLoggerOnlyWhileThereIsOne) {
  TKeptLog log;
  TRootObject::SetCoreLogger(nullptr);
  LogToCore(ILogger::kError, "before");
  TRootObject::SetCoreLogger(&log);
  LogToCore(ILogger::kError, "one");
  LogToCore(ILogger::kTrace, "two");
  TRootObject::SetCoreLogger(nullptr);
  LogToCore(ILogger::kError, "after");
  EXPECT_EQ(log.lines, std::to_string(static_cast<int>(ILogger::kError)) + " one\n" +
                           std::to_string(static_cast<int>(ILogger::kTrace)) + " two\n");
}

}  // namespace
}  // namespace NZEPQEL20
