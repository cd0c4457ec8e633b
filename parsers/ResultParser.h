// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

#include "parsers/TDiagnosticAction.h"
#include "parsers/TDiagnosticResultMessage.h"
#include "platform/contract/ILogger.h"
#include "platform/contract/TXmlParser.h"

/// Reads the vendors' catalogue of messages and advice:
///
///     <diaganalysis version="1.0"> <diagnostictest name="DiskVerify"> <result state="failed">
///       <errorcode>0x12</errorcode> <msg>The disk has bad sectors.</msg>
///       <action priority="1">Replace the disk.</action>
///     </result> </diagnostictest> </diaganalysis>
///
/// An "action" counts unless the host is an OEM build, an "oemaction" only then. Element names
/// compare without case, attribute names exactly; nesting is not enforced, and text that no
/// element took is put in front of the next one that is taken. What is wrong is passed over
/// without a word.
class ResultParser : public NZEPQEL20::TXmlParser {
 public:
  /// Entries by lower-cased test name, those of one test in document order.
  using TResultMsgs = std::multimap<std::string, TDiagnosticResultMessage>;

  /// Asks the platform once whether this is an OEM build.
  ResultParser();
  ~ResultParser() override;

  /// The entries that were complete.
  TResultMsgs getResultMsgs() const&;
  /// The same, taken out of a parser that is no longer needed.
  TResultMsgs getResultMsgs() &&;

  /// Discards `text`.
  void DebugOutput(NZEPQEL20::ILogger::EQELLogSeverity severity, std::string text);

  void StartElement(const char* name, NZEPQEL20::TXmlAttributes& attributes) override;
  void EndElement(const char* name) override;
  void processingInstruction(const char* target, const char* data) override;
  /// Takes `text` up to its NUL, without the blanks around it.
  void characters(const char* text, unsigned int length) override;
  void notationDecl(const char* name, const char* publicId, const char* systemId) override;

  /// Hands `message` to DebugOutput() as an error; null stands for no text.
  void FatalError(const char* message) override;

 private:
  friend struct TParsersTestAccess;

  void TraceStart(const NZEPQEL20::TXmlAttributes& attributes);
  void StartTest(const NZEPQEL20::TXmlAttributes& attributes);
  void StartResult(const NZEPQEL20::TXmlAttributes& attributes);
  void StartAction(const NZEPQEL20::TXmlAttributes& attributes);
  void EndResult();
  void EndAction(bool applies);

  std::string m_currentElement;
  std::string m_characterData;
  TDiagnosticResultMessage m_message;
  TDiagnosticAction m_action;
  TResultMsgs m_resultMsgs;
  const bool m_isOEM;
};
