// SPDX-License-Identifier: Apache-2.0
#include "parsers/FilterDiagsParser.h"

#include <boost/algorithm/string/case_conv.hpp>

using NZEPQEL20::ILogger;
using NZEPQEL20::TXmlAttributes;

FilterDiagsParser::~FilterDiagsParser() = default;

std::map<std::string, std::vector<std::string>> FilterDiagsParser::getDiagnosticMatrix() const {
  return m_matrix;
}

// The text's type is fixed.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void FilterDiagsParser::DebugOutput(ILogger::EQELLogSeverity, std::string) {}

void FilterDiagsParser::StartElement(const char* name, TXmlAttributes& attributes) {
  m_currentElement = name;
  boost::algorithm::to_lower(m_currentElement);

  if (m_currentElement == "biosid") {
    TakeName(attributes, m_currentBiosID);
  } else if (m_currentElement == "diagnostictest") {
    TakeName(attributes, m_currentTest);
  } else {
    FatalError("Unrecognized identifier");
  }
}

// Without a "name" the target keeps what it had.
void FilterDiagsParser::TakeName(const TXmlAttributes& attributes, std::string& target) {
  for (const auto& [name, value] : attributes) {
    if (name == "name") {
      target = value;
      return;
    }
    FatalError("Unrecognized Attribute.");
  }
}

void FilterDiagsParser::EndElement(const char* name) {
  m_currentElement = name;
  boost::algorithm::to_lower(m_currentElement);

  if (m_currentElement == "biosid") {
    m_matrix.emplace(m_currentBiosID, m_tests);
    m_currentBiosID.clear();
    m_tests.clear();
    return;
  }
  if (m_currentElement == "diagnostictest") {
    m_tests.push_back(m_currentTest);
    m_currentTest.clear();
  } else {
    FatalError("Unrecognized identifier");
  }
  m_currentElement.clear();
}

void FilterDiagsParser::processingInstruction(const char*, const char*) {}

void FilterDiagsParser::characters(const char*, unsigned int) {}

void FilterDiagsParser::notationDecl(const char*, const char*, const char*) {}

void FilterDiagsParser::FatalError(const char* message) {
  DebugOutput(ILogger::kError, message == nullptr ? "" : message);
}
