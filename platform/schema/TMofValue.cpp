// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TMofValue.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>
#include <utility>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TCIMReference.h"
#include "platform/schema/TMofLexer.h"
#include "platform/schema/Utf8.h"

namespace NZEPQEL20 {

namespace {

using ELiteral = TMofLiteral::EKind;

std::string Describe(const TMofLiteral& literal) {
  constexpr std::size_t kLongest = 40;
  switch (literal.kind) {
    case ELiteral::kBoolean:
      return literal.magnitude != 0 ? "TRUE" : "FALSE";
    case ELiteral::kInteger:
      return literal.isOverflow
                 ? "a number of more than 64 bits"
                 : (literal.isNegative ? "-" : "") + std::to_string(literal.magnitude);
    case ELiteral::kReal:
      return std::to_string(literal.real);
    case ELiteral::kString:
      return "\"" + literal.text.substr(0, kLongest) +
             (literal.text.size() > kLongest ? "...\"" : "\"");
    case ELiteral::kChar:
      return "a character";
    case ELiteral::kAlias:
      return "the alias " + literal.text.substr(0, kLongest);
    case ELiteral::kNull:
      break;
  }
  return "NULL";
}

[[noreturn]] void Refuse(const TMofLiteral& literal, ECIMType type) {
  throw TMofValueError(literal.position,
                       Describe(literal) + " is not a value of type " + GetTypeName(type));
}

unsigned int GetBits(ECIMType type) {
  switch (type) {
    case ECIMType::kUInt8:
    case ECIMType::kSInt8:
      return 8;
    case ECIMType::kUInt16:
    case ECIMType::kSInt16:
      return 16;
    case ECIMType::kUInt32:
    case ECIMType::kSInt32:
      return 32;
    default:
      return 64;
  }
}

TCIMValue ConvertUnsigned(const TMofLiteral& literal, ECIMType type) {
  const std::uint64_t most = std::numeric_limits<std::uint64_t>::max() >> (64U - GetBits(type));
  const bool isBelow = literal.isNegative && literal.magnitude != 0;
  if (literal.kind != ELiteral::kInteger || literal.isOverflow || isBelow ||
      literal.magnitude > most) {
    Refuse(literal, type);
  }
  return TCIMValue::Unsigned(type, literal.magnitude);
}

TCIMValue ConvertSigned(const TMofLiteral& literal, ECIMType type) {
  const std::uint64_t most = std::numeric_limits<std::uint64_t>::max() >> (65U - GetBits(type));
  if (literal.kind != ELiteral::kInteger || literal.isOverflow ||
      literal.magnitude > most + (literal.isNegative ? 1U : 0U)) {
    Refuse(literal, type);
  }
  // In unsigned arithmetic, as the smallest value has no positive counterpart.
  const std::uint64_t bits = literal.isNegative ? 0U - literal.magnitude : literal.magnitude;
  return TCIMValue::Signed(type, static_cast<std::int64_t>(bits));
}

TCIMValue ConvertReal(const TMofLiteral& literal, ECIMType type) {
  const bool isNumber = literal.kind == ELiteral::kReal || literal.kind == ELiteral::kInteger;
  if (!isNumber || literal.isOverflow) {
    Refuse(literal, type);
  }
  double value = literal.real;
  if (literal.kind == ELiteral::kInteger) {
    value = static_cast<double>(literal.magnitude) * (literal.isNegative ? -1.0 : 1.0);
  }
  if (type == ECIMType::kReal64) {
    return TCIMValue::Real64(value);
  }
  if (std::fabs(value) > static_cast<double>(std::numeric_limits<float>::max())) {
    Refuse(literal, type);
  }
  return TCIMValue::Real32(static_cast<float>(value));
}

TCIMValue ConvertChar(const TMofLiteral& literal) {
  if (literal.kind == ELiteral::kChar) {
    return TCIMValue::Char16(static_cast<std::uint16_t>(literal.magnitude));
  }
  // Some files write the character as a string of one.
  std::size_t length = 0;
  const unsigned int unit = DecodeUtf8(literal.text, length);
  if (literal.kind == ELiteral::kString && !literal.text.empty() && length == literal.text.size() &&
      unit <= 0xFFFF) {
    return TCIMValue::Char16(static_cast<std::uint16_t>(unit));
  }
  Refuse(literal, ECIMType::kChar16);
}

TCIMValue ConvertDateTime(const TMofLiteral& literal) {
  const std::string& text = literal.text;
  const bool isTime = literal.kind == ELiteral::kString && text.size() == 25 && text[14] == '.' &&
                      (text[21] == '+' || text[21] == '-' || text[21] == ':');
  if (!isTime) {
    Refuse(literal, ECIMType::kDateTime);
  }
  return TCIMValue::DateTime(text);
}

TCIMValue ConvertReference(const TMofLiteral& literal) {
  if (literal.kind != ELiteral::kString) {
    Refuse(literal, ECIMType::kReference);
  }
  try {
    return TCIMValue(TCIMReference::Parse(literal.text));
  } catch (const TQELException& exception) {
    throw TMofValueError(literal.position, exception.what());
  }
}

TCIMValue ConvertArray(const TMofInitializer& initializer, ECIMType type) {
  TCIMValue::TArray elements;
  elements.reserve(initializer.literals.size());
  for (const TMofLiteral& literal : initializer.literals) {
    elements.push_back(ConvertLiteral(literal, type));
  }
  return TCIMValue::Array(type, std::move(elements));
}

bool IsNull(const TMofInitializer& initializer) {
  return !initializer.isArray && initializer.literals.front().kind == ELiteral::kNull;
}

bool IsNumber(ECIMType type) {
  switch (type) {
    case ECIMType::kUInt8:
    case ECIMType::kUInt16:
    case ECIMType::kUInt32:
    case ECIMType::kUInt64:
    case ECIMType::kSInt8:
    case ECIMType::kSInt16:
    case ECIMType::kSInt32:
    case ECIMType::kSInt64:
    case ECIMType::kReal32:
    case ECIMType::kReal64:
      return true;
    default:
      return false;
  }
}

/// A text of decimal digits, maybe behind a sign, as the number.
bool ReadNumber(TMofLiteral& literal) {
  const std::string& text = literal.text;
  const bool isNegative = text.compare(0, 1, "-") == 0;
  const char* const first = text.data() + (isNegative ? 1 : 0);
  const char* const last = text.data() + text.size();
  std::uint64_t magnitude = 0;
  const auto [end, error] = std::from_chars(first, last, magnitude);
  if (error != std::errc() || end != last) {
    return false;
  }
  literal.kind = ELiteral::kInteger;
  literal.isNegative = isNegative;
  literal.magnitude = magnitude;
  return true;
}

/// A text that names a truth value as that.
bool ReadBoolean(TMofLiteral& literal) {
  const bool isTrue = IsSameName(literal.text, "true");
  if (!isTrue && !IsSameName(literal.text, "false")) {
    return false;
  }
  literal.kind = ELiteral::kBoolean;
  literal.magnitude = isTrue ? 1 : 0;
  return true;
}

/// Whether the constant was of another kind, and suits the type now.
bool MendLiteral(TMofLiteral& literal, ECIMType type) {
  if (type == ECIMType::kString && literal.kind == ELiteral::kInteger && !literal.isOverflow) {
    literal.text = Describe(literal);
    literal.kind = ELiteral::kString;
    return true;
  }
  if (type == ECIMType::kString && literal.kind == ELiteral::kReal) {
    literal.kind = ELiteral::kString;
    return true;
  }
  if (type == ECIMType::kBoolean && literal.kind == ELiteral::kInteger && literal.magnitude <= 1 &&
      !literal.isOverflow && !literal.isNegative) {
    literal.kind = ELiteral::kBoolean;
    return true;
  }
  if (type == ECIMType::kBoolean && literal.kind == ELiteral::kString) {
    return ReadBoolean(literal);
  }
  return IsNumber(type) && literal.kind == ELiteral::kString && ReadNumber(literal);
}

/// MaxValue of a uint64 property is beyond sint64, its declared type.
bool IsBeyondSigned(const TMofInitializer& initializer, ECIMType type) {
  return type == ECIMType::kSInt64 && initializer.literals.size() == 1 &&
         initializer.literals[0].kind == ELiteral::kInteger &&
         !initializer.literals[0].isNegative &&
         initializer.literals[0].magnitude >
             static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
}

}  // namespace

TCIMValue ConvertLiteral(const TMofLiteral& literal, ECIMType type) {
  if (literal.kind == ELiteral::kNull) {
    return TCIMValue::Null(type);
  }
  switch (type) {
    case ECIMType::kBoolean:
      if (literal.kind != ELiteral::kBoolean) {
        Refuse(literal, type);
      }
      return TCIMValue::Boolean(literal.magnitude != 0);
    case ECIMType::kChar16:
      return ConvertChar(literal);
    case ECIMType::kUInt8:
    case ECIMType::kUInt16:
    case ECIMType::kUInt32:
    case ECIMType::kUInt64:
      return ConvertUnsigned(literal, type);
    case ECIMType::kSInt8:
    case ECIMType::kSInt16:
    case ECIMType::kSInt32:
    case ECIMType::kSInt64:
      return ConvertSigned(literal, type);
    case ECIMType::kReal32:
    case ECIMType::kReal64:
      return ConvertReal(literal, type);
    case ECIMType::kDateTime:
      return ConvertDateTime(literal);
    case ECIMType::kReference:
      return ConvertReference(literal);
    default:
      if (literal.kind != ELiteral::kString) {
        Refuse(literal, type);
      }
      return TCIMValue(literal.text);
  }
}

TCIMValue ConvertInitializer(const TMofInitializer& initializer, ECIMType type, bool isArray) {
  if (IsNull(initializer)) {
    return TCIMValue::Null(type, isArray);
  }
  if (initializer.isArray != isArray) {
    throw TMofValueError(initializer.position, isArray ? "expected an array between '{' and '}'"
                                                       : "expected one constant, found an array");
  }
  return isArray ? ConvertArray(initializer, type)
                 : ConvertLiteral(initializer.literals.front(), type);
}

TCIMValue ConvertQualifierValue(const TMofInitializer& initializer, ECIMType type, bool isArray) {
  if (IsBeyondSigned(initializer, type)) {
    return ConvertQualifierValue(initializer, ECIMType::kUInt64, isArray);
  }
  if (IsNull(initializer)) {
    return TCIMValue::Null(type, isArray);
  }
  if (isArray) {
    return ConvertArray(initializer, type);
  }
  if (initializer.literals.size() != 1) {
    throw TMofValueError(initializer.position, "expected one constant, found an array");
  }
  return ConvertLiteral(initializer.literals.front(), type);
}

std::optional<TMofInitializer> MendInitializer(const TMofInitializer& initializer, ECIMType type,
                                               bool isArray) {
  TMofInitializer mended = initializer;
  bool isMended = isArray && !initializer.isArray;
  mended.isArray = mended.isArray || isMended;
  for (TMofLiteral& literal : mended.literals) {
    isMended = MendLiteral(literal, type) || isMended;
  }
  if (!isMended) {
    return std::nullopt;
  }
  return mended;
}

std::optional<TMofInitializer> MendQualifierValue(const TMofInitializer& initializer, ECIMType type,
                                                  bool isArray) {
  if (type != ECIMType::kString) {
    return MendInitializer(initializer, type, isArray);
  }
  TMofInitializer spelt = initializer;
  bool isMended = false;
  for (TMofLiteral& literal : spelt.literals) {
    if (literal.kind == ELiteral::kBoolean) {
      literal.text = Describe(literal);
      literal.kind = ELiteral::kString;
      isMended = true;
    }
  }
  auto mended = MendInitializer(spelt, type, isArray);
  return mended || !isMended ? mended : spelt;
}

ECIMType GuessType(const TMofInitializer& initializer) {
  const auto known =
      std::find_if(initializer.literals.begin(), initializer.literals.end(),
                   [](const TMofLiteral& literal) { return literal.kind != ELiteral::kNull; });
  if (known == initializer.literals.end()) {
    return ECIMType::kString;
  }
  switch (known->kind) {
    case ELiteral::kBoolean:
      return ECIMType::kBoolean;
    case ELiteral::kInteger:
      return std::any_of(initializer.literals.begin(), initializer.literals.end(),
                         [](const TMofLiteral& literal) { return literal.isNegative; })
                 ? ECIMType::kSInt64
                 : ECIMType::kUInt64;
    case ELiteral::kReal:
      return ECIMType::kReal64;
    case ELiteral::kChar:
      return ECIMType::kChar16;
    case ELiteral::kAlias:
      return ECIMType::kReference;
    default:
      return ECIMType::kString;
  }
}

}  // namespace NZEPQEL20
