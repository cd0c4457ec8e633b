// SPDX-License-Identifier: Apache-2.0
#include "parsers/ExcludeParser.h"

#include <boost/algorithm/string/case_conv.hpp>

#include "platform/contract/TRootObject.h"

using NZEPQEL20::ILogger;
using NZEPQEL20::TRootObject;
using NZEPQEL20::TXmlAttributes;

namespace {

void Report(ILogger::EQELLogSeverity severity, const std::string& text) {
  ILogger* const logger = TRootObject::GetCoreLogger();
  if (logger != nullptr) logger->Log(severity, text);
}

}  // namespace

ExcludeParser::~ExcludeParser() = default;

std::vector<std::string> ExcludeParser::GetRequestedData() const {
  return m_testNames;
}

void ExcludeParser::DebugOutput(
    ILogger::EQELLogSeverity severity,
    std::string text) {  // NOLINT(performance-unnecessary-value-param): the type is fixed.
  Report(severity, "ExcludeParser line " + std::to_string(GetCurLine()) + ":" + text);
}

void ExcludeParser::StartElement(const char* name, TXmlAttributes& attributes) {
  m_currentElement = name;
  boost::algorithm::to_lower(m_currentElement);

  if (m_currentElement == "qel") {
    StartList(attributes);
  } else if (m_currentElement == "test") {
    StartTest(attributes);
  } else {
    FatalError("Unrecognized identifier");
  }
}

void ExcludeParser::StartList(const TXmlAttributes& attributes) {
  if (attributes.count("version") == 0) {
    FatalError("No Version Specified for QEL identifier");
    return;
  }
  m_pendingTestName.clear();
}

void ExcludeParser::StartTest(const TXmlAttributes& attributes) {
  for (const auto& [name, value] : attributes) {
    if (name != "name") {
      FatalError("Unrecognized Attribute.");
    } else if (m_pendingTestName.empty()) {
      m_pendingTestName = value;
      return;
    } else {
      FatalError("Expecting End of Counter Before Beginning New Counter.");
    }
  }
  FatalError("No Name Specified for Counter identifier");
}

void ExcludeParser::EndElement(const char* name) {
  m_currentElement = name;
  boost::algorithm::to_lower(m_currentElement);
  if (m_currentElement == "qel") return;

  if (m_currentElement == "test") {
    m_testNames.push_back(m_pendingTestName);
    m_pendingTestName.clear();
  } else {
    FatalError("Unrecognized identifier");
  }
  m_currentElement.clear();
}

void ExcludeParser::processingInstruction(const char*, const char*) {}

void ExcludeParser::characters(const char*, unsigned int) {}

void ExcludeParser::notationDecl(const char*, const char*, const char*) {}

void ExcludeParser::FatalError(const char* message) {
  Report(ILogger::kError, "TPrebootTest Parser line " + std::to_string(GetCurLine()) + ":" +
                              (message == nullptr ? "" : message));
}
