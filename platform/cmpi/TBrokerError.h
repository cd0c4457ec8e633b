// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/cmpi/TBrokerObjectOf.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20::cmpi {

/// CMPIError. What was not set reads as NULL or 0.
class TBrokerError : public TBrokerObjectOf<TBrokerError, CMPIError> {
 public:
  static const CMPIErrorFT kTable;

  /// A text that may be missing.
  struct TText {
    bool isSet = false;
    std::string text;
  };
  struct TContent {
    TText owningEntity;
    TText messageId;
    TText message;
    CMPIErrorSeverity severity = ErrorSevUnknown;
    CMPIErrorProbableCause cause = ErrorProbCauseUnknown;
    CMPIrc code = CMPI_RC_OK;
    CMPIErrorType type = UnknownErrorType;
    TText otherType;
    TText causeDescription;
    TText source;
    CMPIErrorSrcFormat sourceFormat = CMPIErrSrcUnknown;
    TText otherSourceFormat;
    TText codeDescription;
    TCIMValue recommendedActions;  ///< Array of strings, or NULL.
    TCIMValue messageArguments;    ///< Array of strings, or NULL.
  };

  explicit TBrokerError(TContent content) : m_content(std::move(content)) {}

  static TText ToText(const char* text) { return {text != nullptr, TextOrEmpty(text)}; }

  TContent& GetContent() { return m_content; }
  const std::string& GetMessage() const { return m_content.message.text; }
  std::string Describe() const override { return m_content.message.text; }
  std::unique_ptr<TBrokerError> Copy() const { return std::make_unique<TBrokerError>(m_content); }

 private:
  TContent m_content;
};

}  // namespace NZEPQEL20::cmpi
