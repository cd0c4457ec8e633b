// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/contract/TRootObject.h"

/// Is the core logger for as long as it lives, and keeps the lines as "severity text".
class TLogCapture final : public NZEPQEL20::ILogger {
 public:
  TLogCapture() { NZEPQEL20::TRootObject::SetCoreLogger(this); }
  ~TLogCapture() override { NZEPQEL20::TRootObject::SetCoreLogger(nullptr); }
  TLogCapture(const TLogCapture&) = delete;
  TLogCapture& operator=(const TLogCapture&) = delete;

  void Log(EQELLogSeverity severity, const std::string& text) override {
    m_lines.push_back(std::to_string(severity) + " " + text);
  }

  std::vector<std::string> m_lines;
};
