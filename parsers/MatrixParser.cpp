// SPDX-License-Identifier: Apache-2.0
#include "parsers/MatrixParser.h"

#include <boost/algorithm/string/case_conv.hpp>

using NZEPQEL20::ILogger;
using NZEPQEL20::TXmlAttributes;

MatrixParser::~MatrixParser() = default;

std::multimap<std::string, std::string> MatrixParser::getDiagnosticMatrix() const {
  return m_matrix;
}

// The text's type is fixed.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void MatrixParser::DebugOutput(ILogger::EQELLogSeverity, std::string) {}

void MatrixParser::StartElement(const char* name, TXmlAttributes& attributes) {
  m_currentElement = name;
  boost::algorithm::to_lower(m_currentElement);

  if (m_currentElement == "diaglist") {
    if (attributes.count("name") == 0) FatalError("No Version Specified for DIAGLIST identifier");
  } else if (m_currentElement == "diagnostictest") {
    TakeName(attributes, m_currentTest);
    if (m_currentTest.empty()) FatalError("No Name Specified for Object identifier");
  } else if (m_currentElement == "box") {
    TakeName(attributes, m_currentBox);
  } else {
    FatalError("Unrecognized identifier");
  }
}

// Without a "name" the target keeps what it had.
void MatrixParser::TakeName(const TXmlAttributes& attributes, std::string& target) {
  for (const auto& [name, value] : attributes) {
    if (name == "name") {
      target = value;
    } else {
      FatalError("Unrecognized Attribute.");
    }
  }
}

void MatrixParser::EndElement(const char* name) {
  m_currentElement = name;
  boost::algorithm::to_lower(m_currentElement);
  if (m_currentElement == "diaglist") return;

  if (m_currentElement == "diagnostictest") {
    m_currentTest.clear();
  } else if (m_currentElement == "box") {
    m_matrix.emplace(m_currentTest, m_currentBox);
    m_currentBox.clear();
  } else {
    FatalError("Unrecognized identifier");
    m_currentElement.clear();
  }
}

void MatrixParser::processingInstruction(const char*, const char*) {}

void MatrixParser::characters(const char* text, unsigned int) {
  m_characterData = text;
}

void MatrixParser::notationDecl(const char*, const char*, const char*) {}

void MatrixParser::FatalError(const char* message) {
  DebugOutput(ILogger::kError, message == nullptr ? "" : message);
}
