// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>

#include "platform/contract/Export.h"

namespace NZEPQEL20 {

/// Attributes of one element, in byte order of their names.
using TXmlAttributes = std::map<std::string, std::string>;

/// Reads one XML document and reports it, in document order, to a derived class.
///
/// The input is not trusted: malformed XML, nesting deeper than kMaxDepth and runaway entities are
/// reported once through FatalError() and end the parse; external entities are never loaded. What
/// a callback throws leaves Parse(). Binary order of the virtual operations is fixed.
/// Threads: one object, one document, one thread.
class DIAGSPLATFORM_EXPORT TXmlParser {
 public:
  static constexpr unsigned int kMaxDepth = 256;

  TXmlParser();
  virtual ~TXmlParser();
  TXmlParser(const TXmlParser&) = delete;
  TXmlParser& operator=(const TXmlParser&) = delete;

  virtual void StartElement(const char* name, TXmlAttributes& attributes) = 0;
  virtual void EndElement(const char* name) = 0;
  virtual void processingInstruction(const char* target, const char* data) = 0;

  /// All character data between two tags, NUL-terminated; `length` bytes without the NUL.
  virtual void characters(const char* text, unsigned int length) = 0;
  virtual void notationDecl(const char* name, const char* publicId, const char* systemId) = 0;
  virtual void FatalError(const char* message) = 0;

  /// Parses the whole NUL-terminated `document`. To be called once.
  void Parse(char* document);

  /// The same for a buffer of `size` bytes without a terminator: nothing behind them is read, and
  /// a NUL among them ends the document.
  void Parse(char* document, std::size_t size);

  /// Line that the parse has reached, counted from 1.
  unsigned int GetCurLine() const;

 protected:
  /// Hands the next piece of the document to the tokeniser.
  virtual void ParseJSSP();
  /// Delivers the character data gathered so far as one event.
  virtual void ParseCharData();
  /// Gathers the attributes of the start tag that is being read.
  virtual void GetAttributeNValue();

 private:
  struct TTokeniser;
  std::unique_ptr<TTokeniser> m_tokeniser;
};

}  // namespace NZEPQEL20
