// SPDX-License-Identifier: Apache-2.0
#include "platform/model/Typing.h"

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TQELException.h"
#include "platform/model/DateTimeText.h"
#include "platform/model/ValueText.h"

namespace NZEPQEL20 {

namespace {

TCIMValue ConvertDateTime(const TCIMValue& value) {
  const auto text = static_cast<std::string>(value);
  if (!IsDateTimeText(text)) {
    throw TQELException(TQELStatusCode::kTypeMismatch, "not a CIM datetime: " + text);
  }
  return TCIMValue::DateTime(text);
}

TCIMValue ConvertReference(const TCIMValue& value) {
  if (value.GetType() == ECIMType::kString) {
    return TCIMValue(TCIMReference::Parse(static_cast<std::string>(value)));
  }
  return TCIMValue(static_cast<TCIMReference>(value));
}

TCIMValue ConvertScalar(ECIMType type, const TCIMValue& value) {
  if (value.IsNull()) return TCIMValue::Null(type);
  if (value.GetType() == type && !value.IsArray()) return value;
  switch (type) {
    case ECIMType::kBoolean:
      return TCIMValue::Boolean(value.ToBoolean());
    case ECIMType::kChar16:
      return TCIMValue::Char16(static_cast<unsigned short>(value));
    case ECIMType::kUInt8:
    case ECIMType::kUInt16:
    case ECIMType::kUInt32:
    case ECIMType::kUInt64:
      return TCIMValue::Unsigned(type, value.ToUnsigned());
    case ECIMType::kSInt8:
    case ECIMType::kSInt16:
    case ECIMType::kSInt32:
    case ECIMType::kSInt64:
      return TCIMValue::Signed(type, value.ToSigned());
    case ECIMType::kReal32:
      return TCIMValue::Real32(static_cast<float>(value.ToReal()));
    case ECIMType::kReal64:
      return TCIMValue::Real64(value.ToReal());
    case ECIMType::kString:
      return TCIMValue(static_cast<std::string>(value));
    case ECIMType::kDateTime:
      return ConvertDateTime(value);
    case ECIMType::kReference:
      return ConvertReference(value);
    case ECIMType::kInstance:
      return TCIMValue::Instance(value.ToInstance());
    default:
      return value;
  }
}

TCIMValue Convert(const TCIMElementDeclaration& declared, const TCIMValue& value) {
  if (!declared.isArray) return ConvertScalar(declared.type, value);
  if (value.IsNull()) return TCIMValue::Null(declared.type, true);
  TCIMValue::TArray elements;
  for (const TCIMValue& element : static_cast<std::vector<TCIMValue>>(value)) {
    elements.push_back(ConvertScalar(declared.type, element));
  }
  return TCIMValue::Array(declared.type, std::move(elements));
}

/// A word of Values as the text of its number.
TCIMValue ReplaceWord(const TCIMElementDeclaration& declared, const TCIMValue& value) {
  if (value.GetType() != ECIMType::kString || value.IsArray() || value.IsNull()) return value;
  const auto text = static_cast<std::string>(value);
  const bool isNumber = text.find_first_not_of("-0123456789") == std::string::npos;
  const auto number = isNumber ? std::nullopt : FindNumberOf(declared, text);
  return number ? TCIMValue(*number) : value;
}

/// The same for each element of an array.
TCIMValue ReplaceWords(const TCIMElementDeclaration& declared, const TCIMValue& value) {
  if (!IsIntegerType(declared.type) || declared.values.empty()) return value;
  if (!value.IsArray()) return ReplaceWord(declared, value);
  if (value.GetType() != ECIMType::kString || value.IsNull()) return value;
  TCIMValue::TArray elements;
  for (const TCIMValue& element : static_cast<std::vector<TCIMValue>>(value)) {
    elements.push_back(ReplaceWord(declared, element));
  }
  return TCIMValue::Array(ECIMType::kString, std::move(elements));
}

/// A scalar as an array of one element, or the element of such an array.
TCIMValue Reshape(const TCIMElementDeclaration& declared, const TCIMValue& value) {
  if (declared.isArray == value.IsArray()) return value;
  if (declared.isArray) return TCIMValue::Array(value.GetType(), {value});
  const auto elements = static_cast<std::vector<TCIMValue>>(value);
  return elements.size() == 1 ? elements.front() : value;
}

bool IsAsDeclared(const TCIMElementDeclaration& declared, const TCIMValue& value) {
  if (value.IsNull() || declared.type == ECIMType::kNone) return true;
  if (value.GetType() == ECIMType::kInstance || declared.type == ECIMType::kInstance) return true;
  if (value.GetType() == declared.type) return declared.isArray == value.IsArray();
  return value.GetType() == ECIMType::kReference;
}

}  // namespace

TCIMValue ConvertGiven(const TCIMElementDeclaration& declared, const TCIMValue& value,
                       const std::string& what) {
  if (IsAsDeclared(declared, value)) return value;
  return ConvertTo(declared, ReplaceWords(declared, Reshape(declared, value)), what);
}

TCIMValue ConvertTo(const TCIMElementDeclaration& declared, const TCIMValue& value,
                    const std::string& what) {
  if (declared.type == ECIMType::kNone) return value;
  try {
    return Convert(declared, value);
  } catch (const TQELException& failure) {
    throw TQELException(TQELStatusCode::kTypeMismatch,
                        what + " should be a " + GetTypeName(declared.type) +
                            (declared.isArray ? " array: " : ": ") + failure.what());
  }
}

TCIMReference ConvertKeys(const TCIMReference& path, const TCIMClassDeclaration* declaration) {
  if (declaration == nullptr) return path;
  TCIMReference converted = path;
  for (const auto& [name, value] : path.GetKeys()) {
    const TCIMPropertyDeclaration* declared = declaration->FindProperty(name);
    if (declared == nullptr) continue;
    try {
      converted.SetKey(name, ConvertTo(*declared, value, name));
    } catch (const TQELException&) {
      continue;
    }
  }
  return converted;
}

const TCIMParameterDeclaration* FindParameter(const TCIMMethodDeclaration* method,
                                              const std::string& name) {
  if (method == nullptr) return nullptr;
  for (const TCIMParameterDeclaration& parameter : method->parameters) {
    if (IsSameName(parameter.name, name)) return &parameter;
  }
  return nullptr;
}

}  // namespace NZEPQEL20
