// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/contract/ILogger.h"
#include "platform/contract/TXmlParser.h"

/// Reads which tests to withhold on which BIOS:
///
///     <matrix> <biosid name="n2eet58w"> <diagnostictest name="MemoryQuick"/> </biosid> </matrix>
///
/// Element names compare without case, attribute names exactly; nesting is not enforced: a test
/// belongs to the next "biosid" that ends. What is wrong is passed over without a word.
class FilterDiagsParser : public NZEPQEL20::TXmlParser {
 public:
  FilterDiagsParser() = default;
  ~FilterDiagsParser() override;

  /// For each BIOS identifier, as written, the path fragments of the tests in document order.
  /// Where an identifier stands twice, the first entry counts.
  std::map<std::string, std::vector<std::string>> getDiagnosticMatrix() const;

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
  std::string m_currentTest;
  std::string m_currentBiosID;
  std::vector<std::string> m_tests;  // Of the "biosid" that is open or comes next.
  std::map<std::string, std::vector<std::string>> m_matrix;
};
