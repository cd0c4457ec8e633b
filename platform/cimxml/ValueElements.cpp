// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/ValueElements.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <vector>

#include "platform/cimxml/XmlText.h"

namespace NZEPQEL20::cimxml {
namespace {

bool IsNumber(ECIMType type) {
  return type >= ECIMType::kUInt8 && type <= ECIMType::kReal64;
}

// Shortest form that reads back as the same number, always with a point: some readers want one.
std::string GetRealText(double value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-INF" : "INF";
  char digits[64];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), value).ptr;
  std::string text(digits, end);
  const std::size_t exponent = text.find('e');
  if (text.find('.') == std::string::npos) {
    text.insert(exponent == std::string::npos ? text.size() : exponent, ".0");
  }
  return text;
}

std::string GetChar16Text(const TCIMValue& value) {
  const auto unit = static_cast<unsigned int>(static_cast<unsigned short>(value));
  std::string text;
  if (unit < 0x80) {
    text += static_cast<char>(unit);
  } else if (unit < 0x800) {
    text += static_cast<char>(0xC0U | (unit >> 6U));
    text += static_cast<char>(0x80U | (unit & 0x3FU));
  } else {
    text += static_cast<char>(0xE0U | (unit >> 12U));
    text += static_cast<char>(0x80U | ((unit >> 6U) & 0x3FU));
    text += static_cast<char>(0x80U | (unit & 0x3FU));
  }
  return text;
}

std::string GetScalarText(const TCIMValue& value) {
  switch (value.GetType()) {
    case ECIMType::kReal32:
    case ECIMType::kReal64:
      return GetRealText(value.ToReal());
    case ECIMType::kChar16:
      return GetChar16Text(value);
    case ECIMType::kInstance: {
      std::string text;
      AppendInstance(text, *value.ToInstance());
      return text;
    }
    default:
      return value.ToString(10);
  }
}

void AppendScalar(std::string& document, const TCIMValue& value) {
  document += "<VALUE>";
  AppendEscaped(document, GetScalarText(value));
  document += "</VALUE>";
}

void AppendReference(std::string& document, const TCIMValue& value) {
  document += "<VALUE.REFERENCE>";
  const auto path = static_cast<TCIMReference>(value);
  if (!path.GetNamespaceName().empty()) {
    AppendLocalPath(document, path);
  } else if (!path.GetKeys().empty()) {
    AppendInstanceName(document, path);
  } else {
    document += "<CLASSNAME";
    AppendAttribute(document, "NAME", path.GetClassName());
    document += "/>";
  }
  document += "</VALUE.REFERENCE>";
}

void AppendArray(std::string& document, const TCIMValue& value) {
  const bool isReference = value.GetType() == ECIMType::kReference;
  document += isReference ? "<VALUE.REFARRAY>" : "<VALUE.ARRAY>";
  for (const TCIMValue& element : static_cast<std::vector<TCIMValue>>(value)) {
    if (element.IsNull()) {
      document += "<VALUE.NULL/>";
    } else {
      AppendValue(document, element);
    }
  }
  document += isReference ? "</VALUE.REFARRAY>" : "</VALUE.ARRAY>";
}

const char* GetKeyType(const TCIMValue& value) {
  if (value.GetType() == ECIMType::kBoolean) return "boolean";
  return IsNumber(value.GetType()) ? "numeric" : "string";
}

void AppendKeyValue(std::string& document, const TCIMValue& value) {
  if (value.GetType() == ECIMType::kReference && !value.IsNull()) {
    AppendReference(document, value);
  } else {
    document += "<KEYVALUE";
    AppendAttribute(document, "VALUETYPE", GetKeyType(value));
    document += '>';
    AppendEscaped(document, value.IsNull() ? std::string() : GetScalarText(value));
    document += "</KEYVALUE>";
  }
}

// The one key of a singleton may be without a name.
void AppendKey(std::string& document, const std::string& name, const TCIMValue& value) {
  if (name.empty()) return AppendKeyValue(document, value);
  document += "<KEYBINDING";
  AppendAttribute(document, "NAME", name);
  document += '>';
  AppendKeyValue(document, value);
  document += "</KEYBINDING>";
}

void AppendProperty(std::string& document, const TCIMPropertyData& property) {
  const TCIMValue& value = property.value;
  const bool isReference = value.GetType() == ECIMType::kReference && !value.IsArray();
  const char* element = value.IsArray() ? "PROPERTY.ARRAY" : "PROPERTY";
  if (isReference) element = "PROPERTY.REFERENCE";
  document.append("<").append(element);
  AppendAttribute(document, "NAME", property.name);
  if (!isReference) AppendAttribute(document, "TYPE", GetWireType(value.GetType()));
  if (value.GetType() == ECIMType::kInstance) {
    AppendAttribute(document, "EmbeddedObject", "instance");
  }
  document += '>';
  AppendValue(document, value);
  document.append("</").append(element).append(">");
}

}  // namespace

void AppendAttribute(std::string& document, std::string_view name, std::string_view value) {
  document += ' ';
  document += name;
  document += "=\"";
  AppendEscaped(document, value);
  document += '"';
}

std::string TidyNamespace(const std::string& nameSpace) {
  std::string tidy;
  for (const char character : nameSpace) {
    if (character != '/' || (!tidy.empty() && tidy.back() != '/')) tidy += character;
  }
  if (!tidy.empty() && tidy.back() == '/') tidy.pop_back();
  return tidy;
}

void AppendNamespace(std::string& document, const std::string& nameSpace) {
  document += "<LOCALNAMESPACEPATH>";
  std::size_t begin = 0;
  while (begin < nameSpace.size()) {
    const std::size_t end = std::min(nameSpace.find('/', begin), nameSpace.size());
    if (end > begin) {
      document += "<NAMESPACE";
      AppendAttribute(document, "NAME", nameSpace.substr(begin, end - begin));
      document += "/>";
    }
    begin = end + 1;
  }
  document += "</LOCALNAMESPACEPATH>";
}

void AppendInstanceName(std::string& document, const TCIMReference& path) {
  document += "<INSTANCENAME";
  AppendAttribute(document, "CLASSNAME", path.GetClassName());
  document += '>';
  for (const auto& [name, value] : path.GetKeys()) AppendKey(document, name, value);
  document += "</INSTANCENAME>";
}

void AppendLocalPath(std::string& document, const TCIMReference& path) {
  const bool isClass = path.GetKeys().empty();
  document += isClass ? "<LOCALCLASSPATH>" : "<LOCALINSTANCEPATH>";
  AppendNamespace(document, path.GetNamespaceName());
  if (isClass) {
    document += "<CLASSNAME";
    AppendAttribute(document, "NAME", path.GetClassName());
    document += "/></LOCALCLASSPATH>";
  } else {
    AppendInstanceName(document, path);
    document += "</LOCALINSTANCEPATH>";
  }
}

void AppendValue(std::string& document, const TCIMValue& value) {
  if (value.IsNull()) return;
  if (value.IsArray()) return AppendArray(document, value);
  if (value.GetType() == ECIMType::kReference) return AppendReference(document, value);
  AppendScalar(document, value);
}

void AppendInstance(std::string& document, const TCIMInstanceData& instance) {
  document += "<INSTANCE";
  AppendAttribute(document, "CLASSNAME", instance.path.GetClassName());
  document += '>';
  for (const TCIMPropertyData& property : instance.properties) AppendProperty(document, property);
  document += "</INSTANCE>";
}

const char* GetWireType(ECIMType type) {
  const bool isString = type == ECIMType::kInstance || type == ECIMType::kNone;
  return isString ? "string" : GetTypeName(type);
}

}  // namespace NZEPQEL20::cimxml
