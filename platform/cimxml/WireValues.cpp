// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/WireValues.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "platform/cimxml/HttpText.h"
#include "platform/cimxml/XmlText.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/model/DateTimeText.h"

namespace NZEPQEL20::cimxml {
namespace {

struct TInteger {
  bool isNegative = false;
  std::uint64_t size = 0;
};

// Decimal, or hexadecimal after "0x"; both with a sign or without.
std::optional<TInteger> ReadInteger(std::string_view text) {
  TInteger number;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    number.isNegative = text.front() == '-';
    text.remove_prefix(1);
  }
  const bool isHex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  if (isHex) text.remove_prefix(2);
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number.size, isHex ? 16 : 10);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

constexpr std::uint64_t GetLargest(unsigned int bits) {
  return std::numeric_limits<std::uint64_t>::max() >> (64U - bits);
}

std::optional<TCIMValue> ReadUnsigned(ECIMType type, unsigned int bits, std::string_view text) {
  const std::optional<TInteger> number = ReadInteger(text);
  if (!number || number->size > GetLargest(bits)) return std::nullopt;
  if (number->isNegative && number->size != 0) return std::nullopt;
  return TCIMValue::Unsigned(type, number->size);
}

std::optional<TCIMValue> ReadSigned(ECIMType type, unsigned int bits, std::string_view text) {
  const std::optional<TInteger> number = ReadInteger(text);
  if (!number) return std::nullopt;
  const std::uint64_t largest = GetLargest(bits - 1) + (number->isNegative ? 1 : 0);
  if (number->size > largest) return std::nullopt;
  // Negated as unsigned: the smallest number has no positive twin.
  const std::uint64_t value = number->isNegative ? ~number->size + 1 : number->size;
  return TCIMValue::Signed(type, static_cast<std::int64_t>(value));
}

std::optional<TCIMValue> ReadReal(ECIMType type, std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end) return std::nullopt;
  if (type == ECIMType::kReal64) return TCIMValue::Real64(value);
  const auto narrow = static_cast<float>(value);
  if (std::isfinite(value) && !std::isfinite(narrow)) return std::nullopt;
  return TCIMValue::Real32(narrow);
}

std::optional<TCIMValue> ReadBoolean(std::string_view text) {
  const std::string word(text);
  if (IsSameName(word, "true")) return TCIMValue::Boolean(true);
  if (IsSameName(word, "false")) return TCIMValue::Boolean(false);
  return std::nullopt;
}

// One character of the Basic Multilingual Plane. Blanks count.
std::optional<TCIMValue> ReadChar16(const std::string& text) {
  const std::size_t size = GetXmlCharacterSize(text);
  if (size != text.size() || size > 3) return std::nullopt;
  const auto at = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  unsigned int unit = at(0);
  if (size == 2) unit = ((at(0) & 0x1FU) << 6U) | (at(1) & 0x3FU);
  if (size == 3) unit = ((at(0) & 0xFU) << 12U) | ((at(1) & 0x3FU) << 6U) | (at(2) & 0x3FU);
  return TCIMValue::Char16(static_cast<std::uint16_t>(unit));
}

std::optional<TCIMValue> ReadDateTime(std::string_view text) {
  if (!IsDateTimeText(text)) return std::nullopt;
  return TCIMValue::DateTime(std::string(text));
}

std::optional<TCIMValue> ReadTrimmed(ECIMType type, std::string_view text) {
  switch (type) {
    case ECIMType::kBoolean:
      return ReadBoolean(text);
    case ECIMType::kUInt8:
      return ReadUnsigned(type, 8, text);
    case ECIMType::kUInt16:
      return ReadUnsigned(type, 16, text);
    case ECIMType::kUInt32:
      return ReadUnsigned(type, 32, text);
    case ECIMType::kUInt64:
      return ReadUnsigned(type, 64, text);
    case ECIMType::kSInt8:
      return ReadSigned(type, 8, text);
    case ECIMType::kSInt16:
      return ReadSigned(type, 16, text);
    case ECIMType::kSInt32:
      return ReadSigned(type, 32, text);
    case ECIMType::kSInt64:
      return ReadSigned(type, 64, text);
    case ECIMType::kReal32:
    case ECIMType::kReal64:
      return ReadReal(type, text);
    case ECIMType::kDateTime:
      return ReadDateTime(text);
    default:
      return std::nullopt;
  }
}

struct TTypeName {
  std::string_view name;
  ECIMType type;
};

constexpr TTypeName kTypeNames[] = {
    {"string", ECIMType::kString},       {"uint16", ECIMType::kUInt16},
    {"uint32", ECIMType::kUInt32},       {"uint64", ECIMType::kUInt64},
    {"uint8", ECIMType::kUInt8},         {"boolean", ECIMType::kBoolean},
    {"datetime", ECIMType::kDateTime},   {"sint8", ECIMType::kSInt8},
    {"sint16", ECIMType::kSInt16},       {"sint32", ECIMType::kSInt32},
    {"sint64", ECIMType::kSInt64},       {"real32", ECIMType::kReal32},
    {"real64", ECIMType::kReal64},       {"char16", ECIMType::kChar16},
    {"reference", ECIMType::kReference},
};

// A whole number of the widest type that it fits into.
std::optional<TCIMValue> ReadNumericKey(std::string_view text) {
  const std::optional<TInteger> number = ReadInteger(text);
  if (!number) return ReadReal(ECIMType::kReal64, text);
  return number->isNegative ? ReadSigned(ECIMType::kSInt64, 64, text)
                            : ReadUnsigned(ECIMType::kUInt64, 64, text);
}

}  // namespace

ECIMType ReadWireType(std::string_view name) {
  for (const TTypeName& entry : kTypeNames) {
    if (entry.name == name) return entry.type;
  }
  const std::string folded(name);
  for (const TTypeName& entry : kTypeNames) {
    if (IsSameName(folded, std::string(entry.name))) return entry.type;
  }
  return ECIMType::kString;
}

std::optional<TCIMValue> ReadWireValue(ECIMType type, std::string& text) {
  if (type == ECIMType::kString) return TCIMValue(std::move(text));
  if (type == ECIMType::kChar16 && !text.empty()) return ReadChar16(text);
  const std::string_view trimmed = Trim(text);
  if (trimmed.empty()) return TCIMValue::Null(type);
  return ReadTrimmed(type, trimmed);
}

TCIMValue ReadKeyValue(std::string_view valueType, std::string_view type, std::string& text) {
  if (IsSameName(std::string(type), "string")) return TCIMValue(std::move(text));
  const std::string_view trimmed = Trim(text);
  std::optional<TCIMValue> value = ReadTrimmed(ReadWireType(type), trimmed);
  if (!value && IsSameName(std::string(valueType), "numeric")) value = ReadNumericKey(trimmed);
  if (!value && IsSameName(std::string(valueType), "boolean")) value = ReadBoolean(trimmed);
  return value ? std::move(*value) : TCIMValue(std::move(text));
}

}  // namespace NZEPQEL20::cimxml
