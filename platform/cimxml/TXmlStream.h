// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace NZEPQEL20::cimxml {

/// What an XML stream reports, in document order. `attributes` holds names and values in turn and
/// ends with a null pointer; nothing that is passed outlives the call. May throw.
class IXmlEvents {
 public:
  virtual ~IXmlEvents() = default;
  virtual void OnStart(std::string_view element, const char* const* attributes) = 0;
  virtual void OnEnd() = 0;
  /// Part of the text between two tags.
  virtual void OnText(std::string_view text) = 0;
};

/// An XML document that arrives in pieces, on expat.
///
/// A document type may be named, but nothing be declared in the document, and nothing is loaded;
/// elements nest to kMaxDepth at most: a reply has no use for more.
/// Errors: TQELException (kFailed) with line and reason; what an event throws leaves unchanged.
/// After either the stream is over.
/// Threads: one.
class TXmlStream {
 public:
  static constexpr unsigned int kMaxDepth = 64;

  /// `events` must outlive the stream.
  explicit TXmlStream(IXmlEvents& events);
  ~TXmlStream();
  TXmlStream(const TXmlStream&) = delete;
  TXmlStream& operator=(const TXmlStream&) = delete;

  void Take(std::string_view piece);
  /// Fails when the document is not complete.
  void Finish();

 private:
  struct TParts;
  std::unique_ptr<TParts> m_parts;
};

}  // namespace NZEPQEL20::cimxml
