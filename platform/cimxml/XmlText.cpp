// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/XmlText.h"

#include <cstdint>

#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cimxml {
namespace {

unsigned char ByteAt(std::string_view text, std::size_t index) {
  return static_cast<unsigned char>(text[index]);
}

// Length that the first byte announces, 0 for one that starts no character.
std::size_t GetAnnouncedSize(unsigned char first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  if (first >= 0xF0 && first <= 0xF4) return 4;
  return 0;
}

// Overlong forms of the longer sequences, surrogates, and what XML 1.0 leaves out beside them.
bool IsAllowed(std::uint32_t code, std::size_t size) {
  if (size == 1) return code >= 0x20 || code == '\t' || code == '\n' || code == '\r';
  if (size == 3 && code < 0x800) return false;
  if (size == 4 && (code < 0x10000 || code > 0x10FFFF)) return false;
  return (code < 0xD800 || code > 0xDFFF) && code != 0xFFFE && code != 0xFFFF;
}

// What stands for a character that has a meaning of its own in XML; null for any other.
const char* FindEntity(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    // A parser would read these as a blank in an attribute, and a return as a line feed anywhere.
    case '\t':
      return "&#9;";
    case '\n':
      return "&#10;";
    case '\r':
      return "&#13;";
    default:
      return nullptr;
  }
}

}  // namespace

std::size_t GetXmlCharacterSize(std::string_view text) {
  const unsigned char first = ByteAt(text, 0);
  const std::size_t size = GetAnnouncedSize(first);
  if (size == 0 || size > text.size()) return 0;
  std::uint32_t code = size == 1 ? first : first & (0x7FU >> size);
  for (std::size_t i = 1; i < size; ++i) {
    const unsigned char next = ByteAt(text, i);
    if ((next & 0xC0U) != 0x80U) return 0;
    code = (code << 6U) | (next & 0x3FU);
  }
  return IsAllowed(code, size) ? size : 0;
}

void AppendEscaped(std::string& document, std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t size = GetXmlCharacterSize(text.substr(i));
    if (size == 0) {
      throw TQELException(
          TQELStatusCode::kInvalidArgument,
          "byte " + std::to_string(i) + " of a text is no UTF-8 character that " + "XML can hold");
    }
    const char* const entity = FindEntity(text[i]);
    if (entity != nullptr) {
      document += entity;
    } else {
      document.append(text, i, size);
    }
    i += size;
  }
}

}  // namespace NZEPQEL20::cimxml
