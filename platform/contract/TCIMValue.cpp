// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TCIMValue.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TCIMReference.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {
namespace {

// A text may be a whole file; an error shows its beginning.
constexpr std::string::size_type kLongestShown = 80;

struct TBits {
  ECIMType type;
  unsigned int bits;
};
constexpr std::array<TBits, 8> kWidths{{{ECIMType::kUInt8, 8},
                                        {ECIMType::kUInt16, 16},
                                        {ECIMType::kUInt32, 32},
                                        {ECIMType::kUInt64, 64},
                                        {ECIMType::kSInt8, 8},
                                        {ECIMType::kSInt16, 16},
                                        {ECIMType::kSInt32, 32},
                                        {ECIMType::kSInt64, 64}}};

unsigned int GetBits(ECIMType type) {
  for (const TBits& width : kWidths) {
    if (width.type == type) return width.bits;
  }
  return 0;
}

bool IsUnsignedType(ECIMType type) {
  return type >= ECIMType::kUInt8 && type <= ECIMType::kUInt64;
}

bool IsSignedType(ECIMType type) {
  return type >= ECIMType::kSInt8 && type <= ECIMType::kSInt64;
}

[[noreturn]] void ThrowMismatch(const std::string& from, const std::string& to) {
  throw TQELException(TQELStatusCode::kTypeMismatch,
                      "cannot convert a value of type " + from + " to " + to);
}

// The whole of `text` as a decimal number.
template <typename TNumber>
bool ParseWhole(const std::string& text, TNumber& number) {
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || rest != end || text.empty()) return false;
  // The library also reads "inf" and "nan" as reals.
  return !std::is_floating_point_v<TNumber> || std::isfinite(static_cast<double>(number));
}

template <typename TNumber>
std::string Print(TNumber number, int radix) {
  std::array<char, 72> buffer{};
  const auto [end, error] =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, radix);
  return std::string(buffer.data(), end);
}

std::string PrintReal(double number, bool isSingle) {
  std::array<char, 64> buffer{};
  char* const last = buffer.data() + buffer.size();
  const auto [end, error] = isSingle
                                ? std::to_chars(buffer.data(), last, static_cast<float>(number))
                                : std::to_chars(buffer.data(), last, number);
  return std::string(buffer.data(), end);
}

// One UCS-2 unit as UTF-8; half of a surrogate pair cannot stand alone and becomes U+FFFD.
std::string PrintChar16(std::uint64_t unit) {
  if (unit >= 0xD800 && unit <= 0xDFFF) unit = 0xFFFD;
  if (unit < 0x80) return std::string(1, static_cast<char>(unit));
  std::string text;
  if (unit < 0x800) {
    text += static_cast<char>(0xC0U | (unit >> 6U));
  } else {
    text += static_cast<char>(0xE0U | (unit >> 12U));
    text += static_cast<char>(0x80U | ((unit >> 6U) & 0x3FU));
  }
  text += static_cast<char>(0x80U | (unit & 0x3FU));
  return text;
}

std::string PrintInstance(const TCIMInstanceData& instance, unsigned char radix) {
  std::string text = "instance of " + instance.path.GetClassName() + " {";
  for (const TCIMPropertyData& property : instance.properties) {
    text += " " + property.name + " = " +
            (property.value.IsNull() ? "NULL" : property.value.ToString(radix)) + ";";
  }
  return text + " }";
}

bool IsSameInstance(const TCIMInstanceData& left, const TCIMInstanceData& right) {
  if (!IsSameName(left.path.GetClassName(), right.path.GetClassName()) ||
      left.properties.size() != right.properties.size()) {
    return false;
  }
  for (const TCIMPropertyData& property : left.properties) {
    const TCIMPropertyData* const other = right.Find(property.name);
    if (other == nullptr || !(other->value == property.value)) return false;
  }
  return true;
}

}  // namespace

const char* GetTypeName(ECIMType type) {
  static constexpr std::array<const char*, 17> kNames{
      "null",   "boolean", "char16",   "uint8",     "uint16",  "uint32",
      "uint64", "sint8",   "sint16",   "sint32",    "sint64",  "real32",
      "real64", "string",  "datetime", "reference", "instance"};
  return kNames.at(static_cast<std::size_t>(type));
}

TCIMValue::TCIMValue(ECIMType type, bool isArray, TData data)
    : m_type(type), m_isArray(isArray), m_data(std::move(data)) {}

TCIMValue::TCIMValue(const char* text) : m_type(ECIMType::kString) {
  if (text != nullptr) m_data = std::string(text);
}

TCIMValue::TCIMValue(const std::string& text) : m_type(ECIMType::kString), m_data(text) {}

TCIMValue::TCIMValue(std::string&& text) : m_type(ECIMType::kString), m_data(std::move(text)) {}

TCIMValue::TCIMValue(const TCIMReference& reference)
    : m_type(ECIMType::kReference), m_data(std::make_shared<const TCIMReference>(reference)) {}

TCIMValue TCIMValue::Null(ECIMType type, bool isArray) {
  return {type, isArray, std::monostate()};
}

TCIMValue TCIMValue::Boolean(bool value) {
  return {ECIMType::kBoolean, false, value};
}

TCIMValue TCIMValue::Char16(std::uint16_t unit) {
  return {ECIMType::kChar16, false, std::uint64_t{unit}};
}

TCIMValue TCIMValue::Unsigned(ECIMType type, std::uint64_t value) {
  if (!IsUnsignedType(type)) ThrowMismatch("unsigned integer", GetTypeName(type));
  const unsigned int bits = GetBits(type);
  if (bits < 64 && (value >> bits) != 0) ThrowMismatch(Print(value, 10), GetTypeName(type));
  return {type, false, value};
}

TCIMValue TCIMValue::Signed(ECIMType type, std::int64_t value) {
  const unsigned int bits = GetBits(type);
  if (!IsSignedType(type) || bits == 0) ThrowMismatch("signed integer", GetTypeName(type));
  const std::int64_t most = std::numeric_limits<std::int64_t>::max() >> (64U - bits);
  if (value > most || value < -most - 1) ThrowMismatch(Print(value, 10), GetTypeName(type));
  return {type, false, value};
}

TCIMValue TCIMValue::Real32(float value) {
  return {ECIMType::kReal32, false, static_cast<double>(value)};
}

TCIMValue TCIMValue::Real64(double value) {
  return {ECIMType::kReal64, false, value};
}

TCIMValue TCIMValue::DateTime(const std::string& text) {
  return {ECIMType::kDateTime, false, text};
}

TCIMValue TCIMValue::Instance(std::shared_ptr<const TCIMInstanceData> instance) {
  if (!instance) return Null(ECIMType::kInstance);
  return {ECIMType::kInstance, false, std::move(instance)};
}

TCIMValue TCIMValue::Array(ECIMType type, TArray elements) {
  for (const TCIMValue& element : elements) {
    const bool fits = element.m_type == type && !element.m_isArray;
    const bool isUntypedNull = element.m_type == ECIMType::kNone && element.IsNull();
    if (!fits && !isUntypedNull) {
      ThrowMismatch(element.DescribeType(), std::string(GetTypeName(type)) + " array element");
    }
  }
  return {type, true, std::make_shared<const TArray>(std::move(elements))};
}

bool TCIMValue::IsNull() const {
  return std::holds_alternative<std::monostate>(m_data);
}

std::string TCIMValue::DescribeType() const {
  return std::string(GetTypeName(m_type)) + (m_isArray ? "[]" : "");
}

void TCIMValue::Refuse(const char* wanted) const {
  std::string from = DescribeType();
  if (!m_isArray && m_type <= ECIMType::kDateTime) {
    const std::string text = ToString(10);
    from +=
        " (" + (text.size() <= kLongestShown ? text : text.substr(0, kLongestShown) + "...") + ")";
  }
  ThrowMismatch(from, wanted);
}

std::string TCIMValue::ToString(unsigned char radix) const {
  const int base = radix >= 2 && radix <= 36 ? radix : 10;
  struct TPrinter {
    ECIMType type;
    int base;
    std::string operator()(std::monostate) const { return ""; }
    std::string operator()(bool value) const { return value ? "TRUE" : "FALSE"; }
    std::string operator()(std::uint64_t value) const {
      return type == ECIMType::kChar16 ? PrintChar16(value) : Print(value, base);
    }
    std::string operator()(std::int64_t value) const { return Print(value, base); }
    std::string operator()(double value) const {
      return PrintReal(value, type == ECIMType::kReal32);
    }
    std::string operator()(const std::string& value) const { return value; }
    std::string operator()(const std::shared_ptr<const TCIMReference>& value) const {
      return value->GetPath();
    }
    std::string operator()(const std::shared_ptr<const TCIMInstanceData>& value) const {
      return PrintInstance(*value, static_cast<unsigned char>(base));
    }
    std::string operator()(const std::shared_ptr<const TArray>& value) const {
      std::string text;
      bool isFirst = true;
      for (const TCIMValue& element : *value) {
        if (!isFirst) text += ",";
        isFirst = false;
        text += element.ToString(static_cast<unsigned char>(base));
      }
      return text;
    }
  };
  return std::visit(TPrinter{m_type, base}, m_data);
}

std::uint64_t TCIMValue::ToUnsigned() const {
  if (IsNull()) return 0;
  if (const auto* flag = std::get_if<bool>(&m_data)) return *flag ? 1 : 0;
  if (const auto* number = std::get_if<std::uint64_t>(&m_data)) return *number;
  if (const auto* signedNumber = std::get_if<std::int64_t>(&m_data)) {
    if (*signedNumber >= 0) return static_cast<std::uint64_t>(*signedNumber);
  } else if (const auto* real = std::get_if<double>(&m_data)) {
    constexpr double kLimit = 18446744073709551616.0;
    if (*real >= 0 && *real < kLimit && std::trunc(*real) == *real) {
      return static_cast<std::uint64_t>(*real);
    }
  } else if (m_type == ECIMType::kString && !m_isArray) {
    std::uint64_t number = 0;
    if (ParseWhole(std::get<std::string>(m_data), number)) return number;
  }
  Refuse("an unsigned integer");
}

std::int64_t TCIMValue::ToSigned() const {
  if (IsNull()) return 0;
  if (const auto* number = std::get_if<std::int64_t>(&m_data)) return *number;
  if (const auto* real = std::get_if<double>(&m_data)) {
    constexpr double kLimit = 9223372036854775808.0;
    if (*real >= -kLimit && *real < kLimit && std::trunc(*real) == *real) {
      return static_cast<std::int64_t>(*real);
    }
    Refuse("a signed integer");
  }
  if (m_type == ECIMType::kString && !m_isArray) {
    std::int64_t number = 0;
    if (ParseWhole(std::get<std::string>(m_data), number)) return number;
    Refuse("a signed integer");
  }
  const std::uint64_t number = ToUnsigned();
  if (number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
    Refuse("a signed integer");
  }
  return static_cast<std::int64_t>(number);
}

double TCIMValue::ToReal() const {
  if (const auto* real = std::get_if<double>(&m_data)) return *real;
  if (const auto* number = std::get_if<std::uint64_t>(&m_data)) return static_cast<double>(*number);
  if (m_type == ECIMType::kString && !m_isArray && !IsNull()) {
    double number = 0;
    if (ParseWhole(std::get<std::string>(m_data), number)) return number;
    Refuse("a real number");
  }
  return static_cast<double>(ToSigned());
}

bool TCIMValue::ToBoolean() const {
  if (IsNull()) return false;
  if (const auto* flag = std::get_if<bool>(&m_data)) return *flag;
  if (m_type == ECIMType::kString && !m_isArray) {
    const auto& text = std::get<std::string>(m_data);
    if (IsSameName(text, "TRUE")) return true;
    if (IsSameName(text, "FALSE")) return false;
  } else if (std::holds_alternative<std::uint64_t>(m_data) ||
             std::holds_alternative<std::int64_t>(m_data)) {
    const std::int64_t number = ToSigned();
    if (number == 0 || number == 1) return number == 1;
  }
  Refuse("boolean");
}

TCIMValue::operator unsigned short() const {
  const std::uint64_t number = ToUnsigned();
  if (number > std::numeric_limits<unsigned short>::max()) Refuse("uint16");
  return static_cast<unsigned short>(number);
}

TCIMValue::operator unsigned int() const {
  const std::uint64_t number = ToUnsigned();
  if (number > std::numeric_limits<unsigned int>::max()) Refuse("uint32");
  return static_cast<unsigned int>(number);
}

TCIMValue::operator std::string() const {
  return ToString(10);
}

TCIMValue::operator TCIMReference() const {
  if (IsNull()) return {};
  if (const auto* path = std::get_if<std::shared_ptr<const TCIMReference>>(&m_data)) return **path;
  if (m_type != ECIMType::kString || m_isArray) Refuse("reference");
  return TCIMReference::Parse(std::get<std::string>(m_data));
}

TCIMValue::operator std::vector<TCIMValue>() const {
  if (IsNull()) return {};
  const auto* const elements = std::get_if<std::shared_ptr<const TArray>>(&m_data);
  if (elements == nullptr) Refuse("an array");
  return **elements;
}

std::shared_ptr<const TCIMInstanceData> TCIMValue::ToInstance() const {
  if (IsNull()) return nullptr;
  const auto* const instance = std::get_if<std::shared_ptr<const TCIMInstanceData>>(&m_data);
  if (instance == nullptr) Refuse("instance");
  return *instance;
}

bool operator==(const TCIMValue& left, const TCIMValue& right) {
  if (left.m_type != right.m_type || left.m_isArray != right.m_isArray) return false;
  if (left.IsNull() || right.IsNull()) return left.IsNull() && right.IsNull();
  if (left.m_isArray) {
    return *std::get<std::shared_ptr<const TCIMValue::TArray>>(left.m_data) ==
           *std::get<std::shared_ptr<const TCIMValue::TArray>>(right.m_data);
  }
  if (left.m_type == ECIMType::kReference) return left.ToString(10) == right.ToString(10);
  if (left.m_type == ECIMType::kInstance) {
    return IsSameInstance(*left.ToInstance(), *right.ToInstance());
  }
  return left.m_data == right.m_data;
}

}  // namespace NZEPQEL20
