// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/TXmlStream.h"

#include <expat.h>

#include <algorithm>
#include <exception>
#include <string>
#include <type_traits>
#include <utility>

#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cimxml {
namespace {

// Expat counts bytes in int and keeps a copy of what it is given.
constexpr std::size_t kPieceBytes = std::size_t{1} << 20U;

}  // namespace

struct TXmlStream::TParts {
  explicit TParts(IXmlEvents& sink) : events(sink) {
    if (handle == nullptr) throw TQELException(TQELStatusCode::kNoMemory, "XML parser: no memory");
    XML_SetUserData(handle.get(), this);
    XML_SetElementHandler(handle.get(), &OnStart, &OnEnd);
    XML_SetCharacterDataHandler(handle.get(), &OnText);
    XML_SetStartDoctypeDeclHandler(handle.get(), &OnDoctype);
  }

  // Expat is C: an exception waits in `thrown` until XML_Parse() has returned.
  template <typename TCall>
  void Guard(const TCall& call) noexcept {
    if (thrown) return;  // After a stop, expat may still deliver an event that was under way.
    try {
      call();
    } catch (...) {
      thrown = std::current_exception();
      XML_StopParser(handle.get(), XML_FALSE);
    }
  }

  [[noreturn]] void Refuse(const std::string& reason) const {
    throw TQELException(TQELStatusCode::kFailed,
                        "line " + std::to_string(XML_GetCurrentLineNumber(handle.get())) +
                            " of the reply: " + reason);
  }

  void Parse(std::string_view piece, bool isLast) {
    const auto status = XML_Parse(handle.get(), piece.data(), static_cast<int>(piece.size()),
                                  isLast ? XML_TRUE : XML_FALSE);
    if (thrown) std::rethrow_exception(thrown);
    if (status != XML_STATUS_OK) Refuse(XML_ErrorString(XML_GetErrorCode(handle.get())));
  }

  static TParts& Of(void* self) { return *static_cast<TParts*>(self); }

  static void XMLCALL OnStart(void* self, const XML_Char* name, const XML_Char** attributes) {
    TParts& me = Of(self);
    me.Guard([&me, name, attributes] {
      if (++me.depth > kMaxDepth) me.Refuse("nested too deeply");
      me.events.OnStart(name, attributes);
    });
  }

  static void XMLCALL OnEnd(void* self, const XML_Char*) {
    TParts& me = Of(self);
    me.Guard([&me] {
      --me.depth;
      me.events.OnEnd();
    });
  }

  static void XMLCALL OnText(void* self, const XML_Char* text, int length) {
    TParts& me = Of(self);
    me.Guard([&] { me.events.OnText({text, static_cast<std::size_t>(length)}); });
  }

  // Entities and defaults of attributes make a little text into any amount of it.
  static void XMLCALL OnDoctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*,
                                int hasDeclarations) {
    TParts& me = Of(self);
    me.Guard([&me, hasDeclarations] {
      if (hasDeclarations != 0) me.Refuse("brings declarations of its own");
    });
  }

  IXmlEvents& events;
  // Named here, an encoding holds over whatever the document says of itself.
  std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> handle{
      XML_ParserCreate("UTF-8"), &XML_ParserFree};
  unsigned int depth = 0;
  std::exception_ptr thrown;
};

TXmlStream::TXmlStream(IXmlEvents& events) : m_parts(std::make_unique<TParts>(events)) {}

TXmlStream::~TXmlStream() = default;

void TXmlStream::Take(std::string_view piece) {
  while (!piece.empty()) {
    const std::string_view next = piece.substr(0, kPieceBytes);
    m_parts->Parse(next, false);
    piece.remove_prefix(next.size());
  }
}

void TXmlStream::Finish() {
  m_parts->Parse({}, true);
}

}  // namespace NZEPQEL20::cimxml
