// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/contract/ILogger.h"
#include "platform/contract/TRootObject.h"

namespace NZEPQEL20 {

/// While it lives, keeps what the process logs about a word.
class TKeptLog : public ILogger {
 public:
  explicit TKeptLog(std::string word) : m_word(std::move(word)) {
    TRootObject::SetCoreLogger(this);
  }
  ~TKeptLog() override { TRootObject::SetCoreLogger(nullptr); }
  TKeptLog(const TKeptLog&) = delete;
  TKeptLog& operator=(const TKeptLog&) = delete;

  void Log(EQELLogSeverity /*severity*/, const std::string& text) override {
    if (text.find(m_word) != std::string::npos) lines.push_back(text);
  }

  std::vector<std::string> lines;

 private:
  const std::string m_word;
};

}  // namespace NZEPQEL20
