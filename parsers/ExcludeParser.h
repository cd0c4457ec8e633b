// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/contract/ILogger.h"
#include "platform/contract/TXmlParser.h"

/// Reads the list of tests that are not to be offered:
///
///     <qel version="1.0"> <test name="MemoryQuickTest"/> </qel>
///
/// Element names compare without case, attribute names exactly; nesting is not enforced. An
/// element in error is reported and the ones after it are still read; a "test" without a usable
/// name adds an empty one. Without a core logger nothing is reported.
class ExcludeParser : public NZEPQEL20::TXmlParser {
 public:
  ExcludeParser() = default;
  ~ExcludeParser() override;

  /// The names so far, in document order and as written, duplicates included.
  std::vector<std::string> GetRequestedData() const;

  /// Logs "ExcludeParser line N:" and `text`.
  void DebugOutput(NZEPQEL20::ILogger::EQELLogSeverity severity, std::string text);

  void StartElement(const char* name, NZEPQEL20::TXmlAttributes& attributes) override;
  void EndElement(const char* name) override;
  void processingInstruction(const char* target, const char* data) override;
  void characters(const char* text, unsigned int length) override;
  void notationDecl(const char* name, const char* publicId, const char* systemId) override;

  /// Logs "TPrebootTest Parser line N:" and `message` as an error; null stands for no text.
  void FatalError(const char* message) override;

 private:
  friend struct TParsersTestAccess;

  void StartList(const NZEPQEL20::TXmlAttributes& attributes);
  void StartTest(const NZEPQEL20::TXmlAttributes& attributes);

  std::vector<std::string> m_testNames;
  std::string m_currentElement;
  std::string m_pendingTestName;  // Of the open "test"; empty when none is.
};
