// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/TXmlRepair.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "platform/cimxml/XmlText.h"

namespace NZEPQEL20::cimxml {
namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";
constexpr std::size_t kLongestCharacter = 4;
// `&#x` with more digits than any character needs, and the semicolon.
constexpr std::size_t kLongestReference = 16;

enum EByte : unsigned char { kPlain, kSuspect };

// Suspect are the bytes that may have to be mended, or begin what may have to.
constexpr std::array<EByte, 256> MakeTable() {
  std::array<EByte, 256> table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    const bool isControl = i < 0x20 && i != '\t' && i != '\n' && i != '\r';
    table[i] = isControl || i >= 0x80 || i == '&' ? kSuspect : kPlain;
  }
  return table;
}

constexpr std::array<EByte, 256> kBytes = MakeTable();

// Where the next suspect byte stands; the end when there is none.
std::size_t FindSuspect(std::string_view text, std::size_t from) {
  while (from < text.size() && kBytes[static_cast<unsigned char>(text[from])] == kPlain) ++from;
  return from;
}

// The number between "&#" and ";", npos-like maximum for what is no number that fits.
std::uint32_t ReadCode(std::string_view digits) {
  const bool isHex = !digits.empty() && digits.front() == 'x';
  if (isHex) digits.remove_prefix(1);
  std::uint32_t code = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), code, isHex ? 16 : 10);
  const bool isWhole = error == std::errc() && end == digits.data() + digits.size();
  return isWhole ? code : std::numeric_limits<std::uint32_t>::max();
}

bool IsXmlCharacter(std::uint32_t code) {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  if (code >= 0xD800 && code <= 0xDFFF) return false;
  return code <= 0x10FFFF && code != 0xFFFE && code != 0xFFFF;
}

}  // namespace

void TXmlRepair::Replace() {
  m_output += kReplacement;
  ++m_count;
}

// How many bytes of `text` were dealt with; 0 when more is needed to tell.
std::size_t TXmlRepair::MendReference(std::string_view text, bool isLast) {
  const std::string_view start = text.substr(0, kLongestReference);
  if (start.size() == 1 && !isLast) return 0;
  if (start.substr(0, 2) != "&#") {
    m_output += '&';
    return 1;
  }
  const std::size_t end = start.find_first_not_of("0123456789abcdefABCDEFx", 2);
  if (end == std::string_view::npos && text.size() < kLongestReference && !isLast) return 0;
  // What is no reference at all is for the parser to refuse.
  const bool isReference = end != std::string_view::npos && start[end] == ';';
  if (!isReference || IsXmlCharacter(ReadCode(start.substr(2, end - 2)))) {
    m_output += '&';
    return 1;
  }
  Replace();
  return end + 1;
}

std::size_t TXmlRepair::MendCharacter(std::string_view text, bool isLast) {
  const std::size_t size = GetXmlCharacterSize(text);
  if (size != 0) {
    m_output.append(text.data(), size);
    return size;
  }
  // A character that is cut short may go on in the next piece.
  const bool mayGoOn =
      text.size() < kLongestCharacter && static_cast<unsigned char>(text.front()) >= 0xC2 &&
      std::all_of(text.begin() + 1, text.end(),
                  [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; });
  if (mayGoOn && !isLast) return 0;
  Replace();
  return 1;
}

std::size_t TXmlRepair::MendOne(std::string_view text, bool isLast) {
  return text.front() == '&' ? MendReference(text, isLast) : MendCharacter(text, isLast);
}

void TXmlRepair::Mend(std::string_view text, bool isLast) {
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t suspect = FindSuspect(text, at);
    m_output.append(text.data() + at, suspect - at);
    at = suspect;
    if (at == text.size()) break;
    const std::size_t done = MendOne(text.substr(at), isLast);
    if (done == 0) {
      m_rest.assign(text.data() + at, text.size() - at);
      return;
    }
    at += done;
  }
}

std::string_view TXmlRepair::Take(std::string_view piece) {
  if (m_rest.empty() && FindSuspect(piece, 0) == piece.size()) return piece;
  m_output.clear();
  if (m_rest.empty()) {
    Mend(piece, false);
    return m_output;
  }
  std::string joined;
  joined.swap(m_rest);
  joined.append(piece);
  Mend(joined, false);
  return m_output;
}

std::string_view TXmlRepair::Finish() {
  m_output.clear();
  std::string rest;
  rest.swap(m_rest);
  Mend(rest, true);
  return m_output;
}

}  // namespace NZEPQEL20::cimxml
