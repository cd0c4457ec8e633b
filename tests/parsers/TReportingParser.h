// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "tests/parsers/TParsersTestAccess.h"

/// A parser that also writes down its reports, in their order, and which element was the current
/// one after each start and end.
template <typename TParser>
class TReportingParser : public TParser {
 public:
  void StartElement(const char* name, NZEPQEL20::TXmlAttributes& attributes) override {
    TParser::StartElement(name, attributes);
    m_elements.push_back(TParsersTestAccess::GetCurrentElement(*this));
  }
  void EndElement(const char* name) override {
    TParser::EndElement(name);
    m_elements.push_back(TParsersTestAccess::GetCurrentElement(*this));
  }
  void FatalError(const char* message) override {
    TParser::FatalError(message);
    m_reports.emplace_back(message);
  }

  std::vector<std::string> m_reports;
  std::vector<std::string> m_elements;
};
