// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

#include "platform/contract/ILogger.h"
#include "platform/contract/TXmlParser.h"

/// Reads which tests apply to which machine types:
///
///     <diaglist name="2024"> <diagnostictest name="CpuStress"> <box name="7X06"/>
///     </diagnostictest> </diaglist>
///
/// Element names compare without case, attribute names exactly; nesting is not enforced. What is
/// wrong is passed over without a word.
class MatrixParser : public NZEPQEL20::TXmlParser {
 public:
  MatrixParser() = default;
  ~MatrixParser() override;

  /// One pair of test name and machine type for each "box", those of one test in document order.
  /// Either may be empty where the document names none.
  std::multimap<std::string, std::string> getDiagnosticMatrix() const;

  /// Discards `text`.
  void DebugOutput(NZEPQEL20::ILogger::EQELLogSeverity severity, std::string text);

  void StartElement(const char* name, NZEPQEL20::TXmlAttributes& attributes) override;
  void EndElement(const char* name) override;
  void processingInstruction(const char* target, const char* data) override;
  void characters(const char* text, unsigned int length) override;
  void notationDecl(const char* name, const char* publicId, const char* systemId) override;

  /// Hands `message` to DebugOutput() as an error; null stands for no text.
  void FatalError(const char* message) override;

 private:
  friend struct TParsersTestAccess;

  void TakeName(const NZEPQEL20::TXmlAttributes& attributes, std::string& target);

  std::string m_currentElement;
  std::string m_characterData;
  std::string m_currentTest;
  std::string m_currentBox;
  std::multimap<std::string, std::string> m_matrix;
};
