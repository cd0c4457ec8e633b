// SPDX-License-Identifier: Apache-2.0
// Expat declares the limits of its DTD support only to those who say that they want it.
#define XML_DTD
#include "platform/contract/TXmlParser.h"

#include <expat.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <exception>
#include <string_view>
#include <type_traits>
#include <utility>

#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {
namespace {

// Expat takes at most INT_MAX bytes at once, and needs room beside what it takes.
constexpr std::size_t kPieceBytes = std::size_t{1} << 20U;

// A document may expand to so many times its size, once it has expanded to so many bytes.
constexpr float kMaxAmplification = 8.0F;
constexpr unsigned long long kFreeExpansionBytes = 256ULL * 1024;

// Expat expands an entity within an entity by recursion; this bounds how deep that can go.
constexpr unsigned int kMaxEntities = 64;

}  // namespace

struct TXmlParser::TTokeniser {
  explicit TTokeniser(TXmlParser& parser);

  // Expat is C: an exception waits in `thrown` until XML_Parse() has returned.
  template <typename TCall>
  void Guard(const TCall& call) noexcept;
  void Stop();
  void Refuse(const char* message);
  bool AreDefaultsModest(const XML_Char** given);

  static TTokeniser& Of(void* self) { return *static_cast<TTokeniser*>(self); }
  static void XMLCALL OnStart(void* self, const XML_Char* name, const XML_Char** attributes);
  static void XMLCALL OnEnd(void* self, const XML_Char* name);
  static void XMLCALL OnText(void* self, const XML_Char* text, int length);
  static void XMLCALL OnInstruction(void* self, const XML_Char* target, const XML_Char* data);
  static void XMLCALL OnNotation(void* self, const XML_Char* name, const XML_Char* base,
                                 const XML_Char* systemId, const XML_Char* publicId);
  static void XMLCALL OnEntity(void* self, const XML_Char* name, int isParameter,
                               const XML_Char* value, int length, const XML_Char* base,
                               const XML_Char* systemId, const XML_Char* publicId,
                               const XML_Char* notation);
  static void XMLCALL OnSkippedEntity(void* self, const XML_Char* name, int isParameter);

  TXmlParser& owner;
  std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> handle{
      XML_ParserCreate(nullptr), &XML_ParserFree};
  std::string_view rest;      // What expat has not been given yet.
  bool isUnderWay = false;    // More is to be given.
  bool wasUsed = false;       // A parser reads one document.
  bool isStopped = false;     // By an exception or a limit.
  unsigned int depth = 0;     // Of open elements.
  unsigned int entities = 0;  // Declared so far.
  std::size_t filledIn = 0;   // Bytes of attributes that the DTD gave.
  std::string text;           // Since the last tag.
  TXmlAttributes attributes;  // Of the tag under way.
  const XML_Char** pairs = nullptr;
  std::exception_ptr thrown;
};

TXmlParser::TTokeniser::TTokeniser(TXmlParser& parser) : owner(parser) {
  if (handle == nullptr) {
    throw TQELException(TQELStatusCode::kNoMemory, "XML parser: no memory");
  }
  XML_SetUserData(handle.get(), this);
  XML_SetElementHandler(handle.get(), &OnStart, &OnEnd);
  XML_SetCharacterDataHandler(handle.get(), &OnText);
  XML_SetProcessingInstructionHandler(handle.get(), &OnInstruction);
  XML_SetNotationDeclHandler(handle.get(), &OnNotation);
  XML_SetEntityDeclHandler(handle.get(), &OnEntity);
  XML_SetSkippedEntityHandler(handle.get(), &OnSkippedEntity);
  // Text that only an outside file could give is missing: an error, as silence would lose it.
  XML_SetExternalEntityRefHandler(handle.get(),
                                  [](XML_Parser, const XML_Char*, const XML_Char*, const XML_Char*,
                                     const XML_Char*) -> int { return XML_STATUS_ERROR; });
  XML_SetBillionLaughsAttackProtectionMaximumAmplification(handle.get(), kMaxAmplification);
  XML_SetBillionLaughsAttackProtectionActivationThreshold(handle.get(), kFreeExpansionBytes);
}

template <typename TCall>
void TXmlParser::TTokeniser::Guard(const TCall& call) noexcept {
  if (isStopped) return;  // After a stop, expat may still deliver an event that was under way.
  try {
    call();
  } catch (...) {
    thrown = std::current_exception();
    Stop();
  }
}

void TXmlParser::TTokeniser::Stop() {
  isStopped = true;
  XML_StopParser(handle.get(), XML_FALSE);
}

void TXmlParser::TTokeniser::Refuse(const char* message) {
  Stop();
  owner.FatalError(message);
}

// Expat holds entities to a limit, but not attributes that a declaration fills in: few bytes of
// tags could bring any amount of them.
bool TXmlParser::TTokeniser::AreDefaultsModest(const XML_Char** given) {
  const XML_Char** pair = given + XML_GetSpecifiedAttributeCount(handle.get());
  for (; *pair != nullptr; pair += 2) filledIn += std::strlen(pair[0]) + std::strlen(pair[1]);
  if (filledIn <= kFreeExpansionBytes) return true;
  const auto read = static_cast<double>(XML_GetCurrentByteIndex(handle.get()));
  return static_cast<double>(filledIn) <= read * static_cast<double>(kMaxAmplification);
}

void XMLCALL TXmlParser::TTokeniser::OnStart(void* self, const XML_Char* name,
                                             const XML_Char** attributes) {
  TTokeniser& me = Of(self);
  me.Guard([&me, name, attributes] {
    if (++me.depth > kMaxDepth) return me.Refuse("nested too deeply");
    if (!me.AreDefaultsModest(attributes)) {
      return me.Refuse("attributes that the DTD fills in expand it too far");
    }
    me.owner.ParseCharData();
    me.pairs = attributes;
    me.owner.GetAttributeNValue();
    me.pairs = nullptr;
    me.owner.StartElement(name, me.attributes);
  });
}

void XMLCALL TXmlParser::TTokeniser::OnEnd(void* self, const XML_Char* name) {
  TTokeniser& me = Of(self);
  me.Guard([&me, name] {
    --me.depth;
    me.owner.ParseCharData();
    me.owner.EndElement(name);
  });
}

void XMLCALL TXmlParser::TTokeniser::OnText(void* self, const XML_Char* text, int length) {
  TTokeniser& me = Of(self);
  me.Guard([&me, text, length] { me.text.append(text, static_cast<std::size_t>(length)); });
}

void XMLCALL TXmlParser::TTokeniser::OnInstruction(void* self, const XML_Char* target,
                                                   const XML_Char* data) {
  TTokeniser& me = Of(self);
  me.Guard([&me, target, data] { me.owner.processingInstruction(target, data); });
}

void XMLCALL TXmlParser::TTokeniser::OnNotation(void* self, const XML_Char* name, const XML_Char*,
                                                const XML_Char* systemId,
                                                const XML_Char* publicId) {
  TTokeniser& me = Of(self);
  me.Guard([&] { me.owner.notationDecl(name, publicId, systemId); });
}

void XMLCALL TXmlParser::TTokeniser::OnEntity(void* self, const XML_Char*, int, const XML_Char*,
                                              int, const XML_Char*, const XML_Char*,
                                              const XML_Char*, const XML_Char*) {
  TTokeniser& me = Of(self);
  me.Guard([&me] {
    if (++me.entities > kMaxEntities) me.Refuse("too many entities");
  });
}

void XMLCALL TXmlParser::TTokeniser::OnSkippedEntity(void* self, const XML_Char* name,
                                                     int isParameter) {
  if (isParameter != 0) return;  // Declarations, not text.
  TTokeniser& me = Of(self);
  me.Guard([&me, name] { me.Refuse(("undefined entity: " + std::string(name)).c_str()); });
}

TXmlParser::TXmlParser() : m_tokeniser(std::make_unique<TTokeniser>(*this)) {}

TXmlParser::~TXmlParser() = default;

void TXmlParser::Parse(char* document) {
  Parse(document, std::strlen(document));
}

void TXmlParser::Parse(char* document, std::size_t size) {
  TTokeniser& tokeniser = *m_tokeniser;
  if (tokeniser.wasUsed) {
    FatalError("the parser has already read a document");
    return;
  }
  tokeniser.wasUsed = true;
  // An empty buffer may come as a null pointer, which memchr() does not take.
  const void* const nul = size == 0 ? nullptr : std::memchr(document, '\0', size);
  const std::size_t length =
      nul == nullptr ? size : static_cast<std::size_t>(static_cast<const char*>(nul) - document);
  tokeniser.rest = std::string_view(document, length);

  tokeniser.isUnderWay = true;
  while (tokeniser.isUnderWay) ParseJSSP();
}

void TXmlParser::ParseJSSP() {
  TTokeniser& tokeniser = *m_tokeniser;
  if (!tokeniser.isUnderWay) return;

  const std::string_view piece = tokeniser.rest.substr(0, kPieceBytes);
  tokeniser.rest.remove_prefix(piece.size());
  const bool isLast = tokeniser.rest.empty();
  const XML_Parser handle = tokeniser.handle.get();
  const bool isGood = XML_Parse(handle, piece.data(), static_cast<int>(piece.size()),
                                isLast ? XML_TRUE : XML_FALSE) == XML_STATUS_OK;
  tokeniser.isUnderWay = isGood && !isLast;

  if (tokeniser.thrown) std::rethrow_exception(std::exchange(tokeniser.thrown, nullptr));
  if (!isGood && !tokeniser.isStopped) FatalError(XML_ErrorString(XML_GetErrorCode(handle)));
}

void TXmlParser::ParseCharData() {
  std::string& text = m_tokeniser->text;
  if (text.empty()) return;
  characters(text.c_str(), static_cast<unsigned int>(std::min<std::size_t>(text.size(), UINT_MAX)));
  text.clear();
}

void TXmlParser::GetAttributeNValue() {
  TTokeniser& tokeniser = *m_tokeniser;
  tokeniser.attributes.clear();
  if (tokeniser.pairs == nullptr) return;
  for (const XML_Char** pair = tokeniser.pairs; *pair != nullptr; pair += 2) {
    tokeniser.attributes.emplace(pair[0], pair[1]);
  }
}

unsigned int TXmlParser::GetCurLine() const {
  return static_cast<unsigned int>(XML_GetCurrentLineNumber(m_tokeniser->handle.get()));
}

}  // namespace NZEPQEL20
