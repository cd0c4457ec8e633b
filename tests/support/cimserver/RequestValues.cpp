// SPDX-License-Identifier: Apache-2.0
#include "tests/support/cimserver/RequestValues.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>

namespace cimserver {
namespace {

constexpr std::size_t kDateTimeSize = 25;

std::string Trim(const std::string& text) {
  const char* const blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

[[noreturn]] void Refuse(const std::string& text, ECIMType type) {
  throw TNotValid("\"" + text + "\" as a value of type " + NZEPQEL20::GetTypeName(type));
}

bool IsSigned(ECIMType type) {
  return type == ECIMType::kSInt8 || type == ECIMType::kSInt16 || type == ECIMType::kSInt32 ||
         type == ECIMType::kSInt64;
}

// Decimal, or hexadecimal behind 0x; a leading zero does not make it octal.
TCIMValue ReadInteger(const std::string& text, ECIMType type) {
  const std::size_t digits = text.find_first_not_of("+-");
  const bool isHex = digits != std::string::npos && digits + 1 < text.size() &&
                     text[digits] == '0' && (text[digits + 1] | 0x20) == 'x';
  if (digits == std::string::npos || digits > 1) Refuse(text, type);
  if (text[digits] < '0' || text[digits] > '9') Refuse(text, type);
  char* end = nullptr;
  errno = 0;
  try {
    if (IsSigned(type)) {
      const long long number = std::strtoll(text.c_str(), &end, isHex ? 16 : 10);
      if (*end != '\0' || errno != 0) Refuse(text, type);
      return TCIMValue::Signed(type, number);
    }
    const unsigned long long number = std::strtoull(text.c_str(), &end, isHex ? 16 : 10);
    if (*end != '\0' || errno != 0 || (text[0] == '-' && number != 0)) Refuse(text, type);
    return TCIMValue::Unsigned(type, number);
  } catch (const TQELException&) {
    Refuse(text, type);
  }
}

TCIMValue ReadReal(const std::string& text, ECIMType type) {
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0') Refuse(text, type);
  return type == ECIMType::kReal32 ? TCIMValue::Real32(static_cast<float>(number))
                                   : TCIMValue::Real64(number);
}

// The one character of the text, as a UCS-2 unit.
TCIMValue ReadCharacter(const std::string& text) {
  const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const auto make = [](unsigned int unit) {
    return TCIMValue::Char16(static_cast<std::uint16_t>(unit));
  };
  if (text.size() == 1 && byte(0) < 0x80) return make(byte(0));
  if (text.size() == 2 && (byte(0) & 0xE0U) == 0xC0) {
    return make(((byte(0) & 0x1FU) << 6U) | (byte(1) & 0x3FU));
  }
  if (text.size() != 3 || (byte(0) & 0xF0U) != 0xE0) Refuse(text, ECIMType::kChar16);
  return make(((byte(0) & 0x0FU) << 12U) | ((byte(1) & 0x3FU) << 6U) | (byte(2) & 0x3FU));
}

TCIMValue ReadEmbedded(const std::string& text, const std::string& nameSpace) {
  const TXmlElement element = [&text] {
    try {
      return ReadXml(text);
    } catch (const TNotWellFormed& fault) {
      throw TNotValid(std::string("embedded object, ") + fault.what());
    }
  }();
  return TCIMValue::Instance(
      std::make_shared<const TCIMInstanceData>(ReadInstance(element, nameSpace)));
}

TCIMValue ReadScalar(const std::string& text, ECIMType type, const std::string& nameSpace) {
  switch (type) {
    case ECIMType::kString:
      return TCIMValue(text);
    case ECIMType::kBoolean:
      return TCIMValue::Boolean(ReadBoolean(text));
    case ECIMType::kChar16:
      return ReadCharacter(text);
    case ECIMType::kReal32:
    case ECIMType::kReal64:
      return ReadReal(Trim(text), type);
    case ECIMType::kDateTime:
      if (text.size() != kDateTimeSize) Refuse(text, type);
      return TCIMValue::DateTime(text);
    case ECIMType::kInstance:
      return ReadEmbedded(text, nameSpace);
    case ECIMType::kNone:
    case ECIMType::kReference:
      Refuse(text, type);
    default:
      return ReadInteger(Trim(text), type);
  }
}

// Keys need no type: the class has it. Without one, a number is as wide as it can be.
TCIMValue ReadKeyValue(const TXmlElement& element) {
  const std::string* kind = element.FindAttribute("VALUETYPE");
  const std::string* type = element.FindAttribute("TYPE");
  if (kind != nullptr && *kind != "string" && *kind != "boolean" && *kind != "numeric") {
    throw TNotValid("KEYVALUE with VALUETYPE " + *kind);
  }
  if (type != nullptr && !type->empty()) return ReadScalar(element.text, ReadType(*type), "");
  if (kind == nullptr || *kind == "string") return TCIMValue(element.text);
  if (*kind == "boolean") return ReadScalar(element.text, ECIMType::kBoolean, "");
  const bool isNegative = Trim(element.text).find('-') == 0;
  return ReadScalar(element.text, isNegative ? ECIMType::kSInt64 : ECIMType::kUInt64, "");
}

TCIMReference ReadInstanceName(const TXmlElement& element, const std::string& nameSpace) {
  TCIMReference path(nameSpace, element.GetAttribute("CLASSNAME"));
  for (const TXmlElement& binding : element.children) {
    if (binding.name != "KEYBINDING") throw TNotValid("INSTANCENAME with " + binding.name);
    const TXmlElement& value = binding.GetOnlyChild();
    const std::string& name = binding.GetAttribute("NAME");
    if (value.name == "KEYVALUE") {
      path.SetKey(name, ReadKeyValue(value));
    } else if (value.name == "VALUE.REFERENCE") {
      path.SetKey(name, ReadValue(value, ECIMType::kReference, nameSpace));
    } else {
      throw TNotValid("KEYBINDING with " + value.name);
    }
  }
  return path;
}

const TXmlElement& GetPart(const TXmlElement& element, std::size_t index, const char* name) {
  if (element.children.size() != 2 || element.children[index].name != name) {
    throw TNotValid(element.name + " without " + name + " in its place");
  }
  return element.children[index];
}

TCIMReference ReadPathWithHost(const TXmlElement& element, const char* last) {
  const TXmlElement& place = GetPart(element, 0, "NAMESPACEPATH");
  const std::string nameSpace = ReadNameSpacePath(GetPart(place, 1, "LOCALNAMESPACEPATH"));
  TCIMReference path = ReadPath(GetPart(element, 1, last), nameSpace);
  path.SetHost(GetPart(place, 0, "HOST").text);
  return path;
}

TCIMReference ReadLocalPath(const TXmlElement& element, const char* last) {
  const std::string nameSpace = ReadNameSpacePath(GetPart(element, 0, "LOCALNAMESPACEPATH"));
  return ReadPath(GetPart(element, 1, last), nameSpace);
}

TCIMValue ReadArray(const TXmlElement& element, ECIMType type, const std::string& nameSpace) {
  TCIMValue::TArray items;
  for (const TXmlElement& item : element.children) {
    items.push_back(item.name == "VALUE.NULL" ? TCIMValue::Null(type)
                                              : ReadValue(item, type, nameSpace));
  }
  return TCIMValue::Array(type, std::move(items));
}

bool IsEmbedded(const TXmlElement& element) {
  const std::string* mark = element.FindAttribute("EmbeddedObject");
  if (mark == nullptr) return false;
  if (*mark == "instance" || *mark == "object") return true;
  throw TNotValid(element.name + " with EmbeddedObject " + *mark);
}

ECIMType GetElementType(const TXmlElement& element, const std::string& type) {
  if (!IsEmbedded(element)) return ReadType(type);
  if (type != "string") throw TNotValid(element.name + " with an embedded object of type " + type);
  return ECIMType::kInstance;
}

TCIMValue ReadProperty(const TXmlElement& element, const std::string& nameSpace) {
  const bool isArray = element.name == "PROPERTY.ARRAY";
  ECIMType type = ECIMType::kReference;
  const char* expected = "VALUE.REFERENCE";
  if (element.name != "PROPERTY.REFERENCE") {
    if (!isArray && element.name != "PROPERTY") throw TNotValid("INSTANCE with " + element.name);
    type = GetElementType(element, element.GetAttribute("TYPE"));
    expected = isArray ? "VALUE.ARRAY" : "VALUE";
  }
  if (element.children.empty()) return TCIMValue::Null(type, isArray);
  return ReadValue(element.GetOnlyChild(expected), type, nameSpace);
}

}  // namespace

ECIMType ReadType(const std::string& name) {
  for (int i = 0; i <= static_cast<int>(ECIMType::kReference); ++i) {
    const auto type = static_cast<ECIMType>(i);
    if (type != ECIMType::kNone && name == NZEPQEL20::GetTypeName(type)) return type;
  }
  throw TNotValid("type \"" + name + "\"");
}

bool ReadBoolean(const std::string& text) {
  const std::string word = Trim(text);
  if (IsSameName(word, "TRUE")) return true;
  if (IsSameName(word, "FALSE")) return false;
  Refuse(text, ECIMType::kBoolean);
}

std::string ReadNameSpacePath(const TXmlElement& element) {
  std::string path;
  for (const TXmlElement& part : element.children) {
    const std::string& name = part.GetAttribute("NAME");
    if (part.name != "NAMESPACE" || name.empty()) throw TNotValid("part of a namespace path");
    path.append(path.empty() ? "" : "/").append(name);
  }
  if (path.empty()) throw TNotValid(element.name + " without a NAMESPACE");
  return path;
}

TCIMReference ReadPath(const TXmlElement& element, const std::string& nameSpace) {
  if (element.name == "INSTANCENAME") return ReadInstanceName(element, nameSpace);
  if (element.name == "CLASSNAME") return {nameSpace, element.GetAttribute("NAME")};
  if (element.name == "LOCALINSTANCEPATH") return ReadLocalPath(element, "INSTANCENAME");
  if (element.name == "LOCALCLASSPATH") return ReadLocalPath(element, "CLASSNAME");
  if (element.name == "INSTANCEPATH") return ReadPathWithHost(element, "INSTANCENAME");
  if (element.name == "CLASSPATH") return ReadPathWithHost(element, "CLASSNAME");
  throw TNotValid(element.name + " as an object path");
}

TCIMValue ReadValue(const TXmlElement& element, ECIMType type, const std::string& nameSpace) {
  if (element.name == "VALUE.REFERENCE" && type == ECIMType::kReference) {
    return TCIMValue(ReadPath(element.GetOnlyChild(), nameSpace));
  }
  if (element.name == "VALUE.ARRAY" && type != ECIMType::kReference) {
    return ReadArray(element, type, nameSpace);
  }
  if (element.name == "VALUE.REFARRAY" && type == ECIMType::kReference) {
    return ReadArray(element, type, nameSpace);
  }
  if (element.name != "VALUE" || !element.children.empty()) {
    throw TNotValid(element.name + " as a value of type " + NZEPQEL20::GetTypeName(type));
  }
  return ReadScalar(element.text, type, nameSpace);
}

TCIMInstanceData ReadInstance(const TXmlElement& element, const std::string& nameSpace) {
  if (element.name != "INSTANCE") throw TNotValid(element.name + " in the place of an INSTANCE");
  TCIMInstanceData instance{{nameSpace, element.GetAttribute("CLASSNAME")}, {}};
  for (const TXmlElement& property : element.children) {
    if (property.name == "QUALIFIER") continue;
    instance.Set(property.GetAttribute("NAME"), ReadProperty(property, nameSpace));
  }
  return instance;
}

TCIMValue ReadParameter(const TXmlElement& element, const std::string& nameSpace) {
  const std::string* type = element.FindAttribute("PARAMTYPE");
  if (element.children.empty()) {
    return TCIMValue::Null(type != nullptr ? GetElementType(element, *type) : ECIMType::kString);
  }
  const TXmlElement& value = element.GetOnlyChild();
  if (type != nullptr) return ReadValue(value, GetElementType(element, *type), nameSpace);
  const bool isReference = value.name == "VALUE.REFERENCE" || value.name == "VALUE.REFARRAY";
  return ReadValue(value, isReference ? ECIMType::kReference : ECIMType::kString, nameSpace);
}

}  // namespace cimserver
