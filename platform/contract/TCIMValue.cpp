// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TCIMValue.h"

#include <limits>
#include <utility>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TCIMReference.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {

namespace {

[[noreturn]] void RefuseType(const char* what, ECIMType type) {
  throw TQELException(TQELStatusCode::kTypeMismatch,
                      std::string(what) + " cannot be of type " + GetTypeName(type));
}

[[noreturn]] void RefuseRange(const std::string& number, ECIMType type) {
  throw TQELException(TQELStatusCode::kTypeMismatch,
                      "the number " + number + " does not fit into " + GetTypeName(type));
}

std::uint64_t GetMaximum(ECIMType type) {
  switch (type) {
    case ECIMType::kUInt8:
      return std::numeric_limits<std::uint8_t>::max();
    case ECIMType::kUInt16:
      return std::numeric_limits<std::uint16_t>::max();
    case ECIMType::kUInt32:
      return std::numeric_limits<std::uint32_t>::max();
    case ECIMType::kUInt64:
      return std::numeric_limits<std::uint64_t>::max();
    case ECIMType::kSInt8:
      return std::numeric_limits<std::int8_t>::max();
    case ECIMType::kSInt16:
      return std::numeric_limits<std::int16_t>::max();
    case ECIMType::kSInt32:
      return std::numeric_limits<std::int32_t>::max();
    case ECIMType::kSInt64:
      return std::numeric_limits<std::int64_t>::max();
    default:
      return 0;
  }
}

bool IsUnsigned(ECIMType type) {
  return type >= ECIMType::kUInt8 && type <= ECIMType::kUInt64;
}
bool IsSigned(ECIMType type) {
  return type >= ECIMType::kSInt8 && type <= ECIMType::kSInt64;
}

bool IsSameInstance(const TCIMInstanceData& left, const TCIMInstanceData& right) {
  if (!IsSameName(left.path.GetClassName(), right.path.GetClassName()) ||
      left.properties.size() != right.properties.size()) {
    return false;
  }
  for (const TCIMPropertyData& property : left.properties) {
    const TCIMPropertyData* other = right.Find(property.name);
    if (other == nullptr || other->value != property.value) {
      return false;
    }
  }
  return true;
}

}  // namespace

const char* GetTypeName(ECIMType type) {
  static const char* const kNames[] = {"null",      "boolean", "char16", "uint8",  "uint16",
                                       "uint32",    "uint64",  "sint8",  "sint16", "sint32",
                                       "sint64",    "real32",  "real64", "string", "datetime",
                                       "reference", "instance"};
  const auto index = static_cast<std::size_t>(type);
  return index < sizeof(kNames) / sizeof(kNames[0]) ? kNames[index] : "unknown";
}

TCIMValue::TCIMValue(ECIMType type, bool isArray, TData data)
    : m_type(type), m_isArray(isArray), m_data(std::move(data)) {}

TCIMValue::TCIMValue(const char* text) : m_type(ECIMType::kString) {
  if (text != nullptr) {
    m_data = std::string(text);
  }
}

TCIMValue::TCIMValue(const std::string& text) : m_type(ECIMType::kString), m_data(text) {}

TCIMValue::TCIMValue(const TCIMReference& reference)
    : m_type(ECIMType::kReference), m_data(std::make_shared<const TCIMReference>(reference)) {}

TCIMValue TCIMValue::Null(ECIMType type, bool isArray) {
  return {type, isArray, TData()};
}

TCIMValue TCIMValue::Boolean(bool value) {
  return {ECIMType::kBoolean, false, value};
}

TCIMValue TCIMValue::Char16(std::uint16_t unit) {
  return {ECIMType::kChar16, false, std::uint64_t{unit}};
}

TCIMValue TCIMValue::Unsigned(ECIMType type, std::uint64_t value) {
  if (!IsUnsigned(type)) {
    RefuseType("an unsigned integer", type);
  }
  if (value > GetMaximum(type)) {
    RefuseRange(std::to_string(value), type);
  }
  return {type, false, value};
}

TCIMValue TCIMValue::Signed(ECIMType type, std::int64_t value) {
  if (!IsSigned(type)) {
    RefuseType("a signed integer", type);
  }
  const auto maximum = static_cast<std::int64_t>(GetMaximum(type));
  if (value > maximum || value < -maximum - 1) {
    RefuseRange(std::to_string(value), type);
  }
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
  if (!instance) {
    return Null(ECIMType::kInstance);
  }
  return {ECIMType::kInstance, false, std::move(instance)};
}

TCIMValue TCIMValue::Array(ECIMType type, TArray elements) {
  for (const TCIMValue& element : elements) {
    const bool fits = element.IsNull() || element.m_type == type;
    if (element.m_isArray || !fits) {
      throw TQELException(TQELStatusCode::kTypeMismatch,
                          "an array of " + std::string(GetTypeName(type)) + " cannot hold " +
                              element.DescribeType());
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

bool operator==(const TCIMValue& left, const TCIMValue& right) {
  if (left.m_type != right.m_type || left.m_isArray != right.m_isArray ||
      left.m_data.index() != right.m_data.index()) {
    return false;
  }
  // What is held by pointer compares by what it points to.
  if (const auto* reference = std::get_if<std::shared_ptr<const TCIMReference>>(&left.m_data)) {
    return **reference == *std::get<std::shared_ptr<const TCIMReference>>(right.m_data);
  }
  if (const auto* instance = std::get_if<std::shared_ptr<const TCIMInstanceData>>(&left.m_data)) {
    return IsSameInstance(**instance,
                          *std::get<std::shared_ptr<const TCIMInstanceData>>(right.m_data));
  }
  if (const auto* array = std::get_if<std::shared_ptr<const TCIMValue::TArray>>(&left.m_data)) {
    return **array == *std::get<std::shared_ptr<const TCIMValue::TArray>>(right.m_data);
  }
  return left.m_data == right.m_data;
}

}  // namespace NZEPQEL20
