// SPDX-License-Identifier: Apache-2.0
#include "parsers/ResultParser.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <utility>

#include "platform/contract/TOSSpecific.h"

using boost::algorithm::to_lower_copy;
using NZEPQEL20::ILogger;
using NZEPQEL20::TXmlAttributes;

ResultParser::ResultParser() : m_isOEM(NZEPQEL20::TOSSpecific::isOEMBuild()) {}

ResultParser::~ResultParser() = default;

ResultParser::TResultMsgs ResultParser::getResultMsgs() const& {
  return m_resultMsgs;
}

ResultParser::TResultMsgs ResultParser::getResultMsgs() && {
  return std::move(m_resultMsgs);
}

// The text's type is fixed.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void ResultParser::DebugOutput(ILogger::EQELLogSeverity, std::string) {}

void ResultParser::StartElement(const char* name, TXmlAttributes& attributes) {
  m_currentElement = name;
  boost::algorithm::to_lower(m_currentElement);
  TraceStart(attributes);

  if (m_currentElement == "diaganalysis") {
    if (attributes.count("version") == 0) {
      FatalError("No Version Specified for DIAGANALYSIS identifier");
    }
  } else if (m_currentElement == "diagnostictest") {
    StartTest(attributes);
  } else if (m_currentElement == "result") {
    StartResult(attributes);
  } else if (m_currentElement == "action") {
    if (!m_isOEM) StartAction(attributes);
  } else if (m_currentElement == "oemaction") {
    if (m_isOEM) StartAction(attributes);
  } else if (m_currentElement != "errorcode" && m_currentElement != "msg") {
    FatalError("Unrecognized identifier");
  }
}

void ResultParser::TraceStart(const TXmlAttributes& attributes) {
  DebugOutput(ILogger::kTrace, "++ ELEMENT: " + m_currentElement);
  for (const auto& [name, value] : attributes) {
    std::string line = "    ";
    DebugOutput(ILogger::kTrace, line.append(name).append(":").append(value));
  }
}

void ResultParser::StartTest(const TXmlAttributes& attributes) {
  for (const auto& [name, value] : attributes) {
    if (name == "name") {
      m_message.testName = to_lower_copy(value);
    } else {
      FatalError("Unrecognized Attribute.");
    }
  }
  if (m_message.testName.empty()) FatalError("No Name Specified for Object identifier");
}

void ResultParser::StartResult(const TXmlAttributes& attributes) {
  for (const auto& [name, value] : attributes) {
    if (name == "state") {
      m_message.state = to_lower_copy(value);
    } else {
      FatalError("Unrecognized Attribute.");
    }
  }
}

// Other attributes are let pass without a report.
void ResultParser::StartAction(const TXmlAttributes& attributes) {
  const auto priority = attributes.find("priority");
  if (priority != attributes.end()) m_action.priority = to_lower_copy(priority->second);
}

void ResultParser::characters(const char* text, unsigned int) {
  m_characterData += boost::algorithm::trim_copy(std::string(text));
}

void ResultParser::EndElement(const char* name) {
  m_currentElement = name;
  boost::algorithm::to_lower(m_currentElement);
  DebugOutput(ILogger::kTrace, "-- ELEMENT: " + m_currentElement);

  if (m_currentElement == "diagnostictest") {
    m_message.testName.clear();
  } else if (m_currentElement == "result") {
    EndResult();
  } else if (m_currentElement == "action") {
    EndAction(!m_isOEM);
  } else if (m_currentElement == "oemaction") {
    EndAction(m_isOEM);
  } else if (m_currentElement == "msg") {
    // Outside a test the text stays in the buffer, as it does for an error code.
    if (!m_message.testName.empty()) {
      m_message.messages.push_back(std::exchange(m_characterData, {}));
    }
  } else if (m_currentElement == "errorcode") {
    if (!m_message.testName.empty()) m_message.errorCode = std::exchange(m_characterData, {});
  } else if (m_currentElement != "diaganalysis") {
    FatalError("Unrecognized identifier");
  }
  m_currentElement.clear();
}

// The test's name stays: its next result belongs to it, too.
void ResultParser::EndResult() {
  m_resultMsgs.emplace(m_message.testName, m_message);
  m_message.messages.clear();
  m_message.actions.clear();
  m_message.state.clear();
  m_message.errorCode.clear();
}

void ResultParser::EndAction(bool applies) {
  std::string text = std::exchange(m_characterData, {});
  if (!applies) return;
  m_action.text = std::move(text);
  m_message.actions.push_back(std::exchange(m_action, {}));
}

void ResultParser::processingInstruction(const char*, const char*) {}

void ResultParser::notationDecl(const char*, const char*, const char*) {}

void ResultParser::FatalError(const char* message) {
  DebugOutput(ILogger::kError, message == nullptr ? "" : message);
}
