// SPDX-License-Identifier: Apache-2.0
// What a value looks like as text, and as a value of another type.
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <system_error>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TCIMReference.h"
#include "platform/contract/TCIMValue.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {

namespace {

constexpr std::size_t kShownText = 80;
constexpr unsigned char kDecimal = 10;

/// Any integer of 64 bits, signed or not.
struct TInteger {
  bool isNegative = false;
  std::uint64_t magnitude = 0;
};

template <typename TNumber, typename... TForm>
std::string PrintNumber(TNumber number, TForm... form) {
  // 64 binary digits and a sign are the longest; reals in shortest form need less.
  char buffer[72];
  const auto result = std::to_chars(buffer, buffer + sizeof(buffer), number, form...);
  return {buffer, result.ptr};
}

std::string PrintReal(ECIMType type, double number) {
  return type == ECIMType::kReal32 ? PrintNumber(static_cast<float>(number)) : PrintNumber(number);
}

std::string PrintUnit(std::uint64_t unit) {
  const auto byte = [](std::uint64_t bits) { return static_cast<char>(bits); };
  if (unit < 0x80) {
    return {byte(unit)};
  }
  if (unit < 0x800) {
    return {byte(0xC0 | (unit >> 6)), byte(0x80 | (unit & 0x3F))};
  }
  // Half of a surrogate pair is no character of its own.
  const std::uint64_t point = unit >= 0xD800 && unit < 0xE000 ? 0xFFFD : unit;
  return {byte(0xE0 | (point >> 12)), byte(0x80 | ((point >> 6) & 0x3F)),
          byte(0x80 | (point & 0x3F))};
}

std::string PrintInstance(const TCIMInstanceData& instance, unsigned char radix) {
  std::string text = "instance of " + instance.path.GetClassName() + " {";
  for (const TCIMPropertyData& property : instance.properties) {
    text += " " + property.name + " = " + property.value.ToString(radix) + ";";
  }
  return text + " }";
}

std::string PrintArray(const TCIMValue::TArray& array, unsigned char radix) {
  std::string text;
  for (std::size_t i = 0; i < array.size(); ++i) {
    text += (i == 0 ? "" : ",") + array[i].ToString(radix);
  }
  return text;
}

std::optional<TInteger> FromSigned(std::int64_t number) {
  const auto bits = static_cast<std::uint64_t>(number);
  return TInteger{number < 0, number < 0 ? ~bits + 1 : bits};
}

std::optional<TInteger> FromReal(double number) {
  constexpr double kTwoTo64 = 18446744073709551616.0;
  if (!std::isfinite(number) || std::trunc(number) != number || std::fabs(number) >= kTwoTo64) {
    return std::nullopt;
  }
  return TInteger{number < 0, static_cast<std::uint64_t>(std::fabs(number))};
}

std::optional<TInteger> FromText(const std::string& text) {
  const bool isNegative = !text.empty() && text[0] == '-';
  const char* const first = text.data() + (isNegative ? 1 : 0);
  const char* const last = text.data() + text.size();
  TInteger integer;
  const auto [end, error] = std::from_chars(first, last, integer.magnitude);
  if (error != std::errc() || end != last) {
    return std::nullopt;
  }
  integer.isNegative = isNegative && integer.magnitude != 0;
  return integer;
}

/// The integer that the content of a value of `type` stands for, if any.
template <typename TData>
std::optional<TInteger> ReadInteger(ECIMType type, const TData& data) {
  if (std::holds_alternative<std::monostate>(data)) {
    return TInteger{};
  }
  if (const auto* flag = std::get_if<bool>(&data)) {
    return TInteger{false, *flag ? 1U : 0U};
  }
  if (const auto* number = std::get_if<std::uint64_t>(&data)) {
    return TInteger{false, *number};
  }
  if (const auto* number = std::get_if<std::int64_t>(&data)) {
    return FromSigned(*number);
  }
  if (const auto* number = std::get_if<double>(&data)) {
    return FromReal(*number);
  }
  const auto* text = std::get_if<std::string>(&data);
  return text != nullptr && type == ECIMType::kString ? FromText(*text) : std::nullopt;
}

/// The same as an unsigned number of at most `maximum`.
template <typename TData>
std::optional<std::uint64_t> ReadUnsigned(ECIMType type, const TData& data, std::uint64_t maximum) {
  const std::optional<TInteger> integer = ReadInteger(type, data);
  if (!integer || integer->isNegative || integer->magnitude > maximum) {
    return std::nullopt;
  }
  return integer->magnitude;
}

std::optional<double> ReadReal(const std::string& text) {
  double number = 0;
  const char* const last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, number);
  if (error != std::errc() || end != last || !std::isfinite(number)) {
    return std::nullopt;
  }
  return number;
}

}  // namespace

std::string TCIMValue::ToString(unsigned char radix) const {
  const int base = radix < 2 || radix > 36 ? kDecimal : radix;
  if (const auto* array = std::get_if<std::shared_ptr<const TArray>>(&m_data)) {
    return PrintArray(**array, radix);
  }
  if (const auto* flag = std::get_if<bool>(&m_data)) {
    return *flag ? "TRUE" : "FALSE";
  }
  if (const auto* number = std::get_if<std::uint64_t>(&m_data)) {
    return m_type == ECIMType::kChar16 ? PrintUnit(*number) : PrintNumber(*number, base);
  }
  if (const auto* number = std::get_if<std::int64_t>(&m_data)) {
    return PrintNumber(*number, base);
  }
  if (const auto* number = std::get_if<double>(&m_data)) {
    return PrintReal(m_type, *number);
  }
  if (const auto* text = std::get_if<std::string>(&m_data)) {
    return *text;
  }
  if (const auto* reference = std::get_if<std::shared_ptr<const TCIMReference>>(&m_data)) {
    return (*reference)->GetPath();
  }
  if (const auto* instance = std::get_if<std::shared_ptr<const TCIMInstanceData>>(&m_data)) {
    return PrintInstance(**instance, radix);
  }
  return {};
}

void TCIMValue::Refuse(const char* wanted) const {
  std::string shown = ToString(kDecimal);
  if (shown.size() > kShownText) {
    shown = shown.substr(0, kShownText) + "...";
  }
  throw TQELException(TQELStatusCode::kTypeMismatch, "the " + DescribeType() + " \"" + shown +
                                                         "\" cannot be converted to " + wanted);
}

TCIMValue::operator unsigned short() const {
  const auto number = ReadUnsigned(m_type, m_data, std::numeric_limits<unsigned short>::max());
  if (!number) {
    Refuse("uint16");
  }
  return static_cast<unsigned short>(*number);
}

TCIMValue::operator unsigned int() const {
  const auto number = ReadUnsigned(m_type, m_data, std::numeric_limits<unsigned int>::max());
  if (!number) {
    Refuse("uint32");
  }
  return static_cast<unsigned int>(*number);
}

std::uint64_t TCIMValue::ToUnsigned() const {
  const auto number = ReadUnsigned(m_type, m_data, std::numeric_limits<std::uint64_t>::max());
  if (!number) {
    Refuse("uint64");
  }
  return *number;
}

std::int64_t TCIMValue::ToSigned() const {
  constexpr std::uint64_t kTwoTo63 = std::uint64_t{1} << 63U;
  const std::optional<TInteger> integer = ReadInteger(m_type, m_data);
  if (!integer || integer->magnitude > kTwoTo63 - (integer->isNegative ? 0 : 1)) {
    Refuse("sint64");
  }
  return static_cast<std::int64_t>(integer->isNegative ? ~integer->magnitude + 1
                                                       : integer->magnitude);
}

double TCIMValue::ToReal() const {
  if (const auto* number = std::get_if<double>(&m_data)) {
    return *number;
  }
  if (m_type == ECIMType::kString && std::holds_alternative<std::string>(m_data)) {
    const std::optional<double> number = ReadReal(std::get<std::string>(m_data));
    if (!number) {
      Refuse("real64");
    }
    return *number;
  }
  const std::optional<TInteger> integer = ReadInteger(m_type, m_data);
  if (!integer) {
    Refuse("real64");
  }
  const auto magnitude = static_cast<double>(integer->magnitude);
  return integer->isNegative ? -magnitude : magnitude;
}

bool TCIMValue::ToBoolean() const {
  if (m_type == ECIMType::kString && std::holds_alternative<std::string>(m_data)) {
    const auto& text = std::get<std::string>(m_data);
    if (!IsSameName(text, "TRUE") && !IsSameName(text, "FALSE")) {
      Refuse("boolean");
    }
    return text.size() == 4;
  }
  const auto number = ReadUnsigned(m_type, m_data, 1);
  if (!number) {
    Refuse("boolean");
  }
  return *number != 0;
}

TCIMValue::operator std::string() const {
  return ToString(kDecimal);
}

TCIMValue::operator TCIMReference() const {
  if (IsNull()) {
    return {};
  }
  if (const auto* reference = std::get_if<std::shared_ptr<const TCIMReference>>(&m_data)) {
    return **reference;
  }
  if (m_type != ECIMType::kString || m_isArray) {
    Refuse("reference");
  }
  return TCIMReference::Parse(std::get<std::string>(m_data));
}

TCIMValue::operator std::vector<TCIMValue>() const {
  if (IsNull()) {
    return {};
  }
  if (!m_isArray) {
    Refuse("array");
  }
  return *std::get<std::shared_ptr<const TArray>>(m_data);
}

std::shared_ptr<const TCIMInstanceData> TCIMValue::ToInstance() const {
  if (IsNull()) {
    return nullptr;
  }
  const auto* instance = std::get_if<std::shared_ptr<const TCIMInstanceData>>(&m_data);
  if (instance == nullptr) {
    Refuse("instance");
  }
  return *instance;
}

}  // namespace NZEPQEL20
