// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/cmpi/TBrokerObjectOf.h"

namespace NZEPQEL20::cmpi {

/// CMPIString: the bytes as the provider gave them; `hdl` is the text itself.
class TBrokerString : public TBrokerObjectOf<TBrokerString, CMPIString> {
 public:
  static const CMPIStringFT kTable;

  /// Old headers read the text from here without asking.
  static constexpr const char* kEndedHandle = kEndedText;

  explicit TBrokerString(std::string text) : m_text(std::move(text)) { hdl = m_text.c_str(); }

  const std::string& GetText() const { return m_text; }
  std::string Describe() const override { return m_text; }
  std::unique_ptr<TBrokerString> Copy() const { return std::make_unique<TBrokerString>(m_text); }

 private:
  const std::string m_text;
};

/// A string of the current scope, as providers take it.
inline CMPIString* MakeString(const std::string& text) {
  return Make<TBrokerString>(text);
}

}  // namespace NZEPQEL20::cmpi
