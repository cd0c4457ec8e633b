// SPDX-License-Identifier: Apache-2.0
// The chapter of TXmlWriter about instances, paths and values.
#include "tests/support/cimserver/TXmlWriter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "tests/support/cimserver/TXmlWriterRow.h"

namespace cimserver {
namespace {

// At least the 17 digits that bring the same number back.
std::string PrintReal(double value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-INF" : "INF";
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%.16E", value);
  return text.data();
}

// A UCS-2 unit as UTF-8.
std::string PrintCharacter(std::uint64_t unit) {
  std::string text;
  const auto add = [&text](std::uint64_t byte) { text += static_cast<char>(byte); };
  if (unit < 0x80) {
    add(unit);
  } else if (unit < 0x800) {
    add(0xC0 | (unit >> 6U));
    add(0x80 | (unit & 0x3F));
  } else {
    add(0xE0 | (unit >> 12U));
    add(0x80 | ((unit >> 6U) & 0x3F));
    add(0x80 | (unit & 0x3F));
  }
  return text;
}

const char* GetValueType(const TCIMValue& key) {
  switch (key.GetType()) {
    case ECIMType::kBoolean:
      return "boolean";
    case ECIMType::kNone:
    case ECIMType::kString:
    case ECIMType::kChar16:
    case ECIMType::kDateTime:
    case ECIMType::kReference:
    case ECIMType::kInstance:
      return "string";
    default:
      return "numeric";
  }
}

}  // namespace

bool TContentOptions::IsListed(const std::string& name) const {
  if (!hasPropertyList) return true;
  return std::any_of(propertyList.begin(), propertyList.end(),
                     [&name](const std::string& listed) { return IsSameName(listed, name); });
}

TXmlWriter::TXmlWriter(EStyle style, std::string host, TClassFinder findClass)
    : m_style(style), m_host(std::move(host)), m_findClass(std::move(findClass)) {}

std::shared_ptr<const TCIMClassDeclaration> TXmlWriter::FindClass(const std::string& nameSpace,
                                                                  const std::string& className) {
  std::string key = nameSpace;
  key.append(":").append(className);
  const auto known = m_classes.find(key);
  if (known != m_classes.end()) return known->second;
  return m_classes.emplace(key, m_findClass(nameSpace, className)).first->second;
}

void TXmlWriter::Escaped(std::string_view text) {
  for (const char character : text) {
    switch (character) {
      case '&':
        m_text += "&amp;";
        break;
      case '<':
        m_text += "&lt;";
        break;
      case '>':
        m_text += "&gt;";
        break;
      case '"':
        m_text += "&quot;";
        break;
      case '\'':
        m_text += "&apos;";
        break;
      default:
        // One of the makers sends control characters as references, which no XML document may
        // hold; the other sends them as they are, which is no better.
        if (m_style == EStyle::kPegasus && static_cast<unsigned char>(character) < 0x20) {
          m_text.append("&#").append(std::to_string(character)).append(";");
        } else {
          m_text += character;
        }
    }
  }
}

void TXmlWriter::Attribute(std::string_view name, std::string_view value) {
  m_text.append(" ").append(name).append("=\"");
  Escaped(value);
  m_text += '"';
}

void TXmlWriter::Start(std::string_view element,
                       const std::vector<std::pair<std::string, std::string>>& attributes) {
  m_text.append("<").append(element);
  for (const auto& [name, value] : attributes) Attribute(name, value);
  m_text += ">\n";
}

void TXmlWriter::EmbeddedAttribute(ECIMType type) {
  if (type != ECIMType::kInstance) return;
  Attribute("EmbeddedObject", m_style == EStyle::kPegasus ? "instance" : "object");
}

void TXmlWriter::Scalar(const TCIMValue& value) {
  if (value.IsNull()) {
    m_text += "<VALUE.NULL/>\n";
    return;
  }
  m_text += "<VALUE>";
  switch (value.GetType()) {
    case ECIMType::kReal32:
    case ECIMType::kReal64:
      Escaped(PrintReal(value.ToReal()));
      break;
    case ECIMType::kChar16:
      Escaped(PrintCharacter(value.ToUnsigned()));
      break;
    case ECIMType::kInstance: {
      TXmlWriter inner(m_style, m_host, m_findClass);
      inner.Instance(*value.ToInstance(), {});
      Escaped(inner.GetText());
      break;
    }
    default:
      Escaped(value.ToString(10));
  }
  m_text += "</VALUE>\n";
}

void TXmlWriter::Value(const TCIMValue& value) {
  if (value.IsNull()) return;
  const bool isReference = value.GetType() == ECIMType::kReference;
  if (!value.IsArray()) {
    isReference ? Reference(static_cast<TCIMReference>(value)) : Scalar(value);
    return;
  }
  const char* const element = isReference ? "VALUE.REFARRAY>\n" : "VALUE.ARRAY>\n";
  m_text.append("<").append(element);
  for (const TCIMValue& item : static_cast<std::vector<TCIMValue>>(value)) {
    isReference && !item.IsNull() ? Reference(static_cast<TCIMReference>(item)) : Scalar(item);
  }
  m_text.append("</").append(element);
}

void TXmlWriter::Reference(const TCIMReference& path) {
  m_text += "<VALUE.REFERENCE>\n";
  if (m_style == EStyle::kSfcb) {
    InstancePath(path, path.GetNamespaceName());
  } else if (path.GetNamespaceName().empty()) {
    InstanceName(path);
  } else {
    m_text += "<LOCALINSTANCEPATH>\n";
    NameSpacePath(path.GetNamespaceName());
    InstanceName(path);
    m_text += "</LOCALINSTANCEPATH>\n";
  }
  m_text += "</VALUE.REFERENCE>\n";
}

void TXmlWriter::NameSpacePath(const std::string& nameSpace) {
  m_text += "<LOCALNAMESPACEPATH>\n";
  for (std::size_t start = 0; start < nameSpace.size();) {
    const std::size_t end = std::min(nameSpace.find('/', start), nameSpace.size());
    m_text += "<NAMESPACE";
    Attribute("NAME", nameSpace.substr(start, end - start));
    m_text += "/>\n";
    start = end + 1;
  }
  m_text += "</LOCALNAMESPACEPATH>\n";
}

void TXmlWriter::InstancePath(const TCIMReference& path, const std::string& nameSpace) {
  m_text += "<INSTANCEPATH>\n<NAMESPACEPATH>\n<HOST>";
  Escaped(m_host);
  m_text += "</HOST>\n";
  NameSpacePath(path.GetNamespaceName().empty() ? nameSpace : path.GetNamespaceName());
  m_text += "</NAMESPACEPATH>\n";
  InstanceName(path);
  m_text += "</INSTANCEPATH>\n";
}

// Keys in the order of their declaration, as far as they are declared.
void TXmlWriter::InstanceName(const TCIMReference& path) {
  m_text += "<INSTANCENAME";
  Attribute("CLASSNAME", path.GetClassName());
  m_text += ">\n";
  const auto declaration = FindClass(path.GetNamespaceName(), path.GetClassName());
  if (declaration != nullptr) {
    for (const auto& property : declaration->properties) {
      const TCIMValue* key = path.FindKey(property.name);
      if (key != nullptr) KeyBinding(property.name, *key);
    }
  }
  for (const auto& [name, value] : path.GetKeys()) {
    if (declaration == nullptr || declaration->FindProperty(name) == nullptr) {
      KeyBinding(name, value);
    }
  }
  m_text += "</INSTANCENAME>\n";
}

void TXmlWriter::KeyBinding(const std::string& name, const TCIMValue& value) {
  m_text += "<KEYBINDING";
  Attribute("NAME", name);
  m_text += ">\n";
  if (value.GetType() == ECIMType::kReference) {
    Reference(static_cast<TCIMReference>(value));
  } else {
    m_text += "<KEYVALUE";
    Attribute("VALUETYPE", GetValueType(value));
    m_text += ">";
    Escaped(value.ToString(10));
    m_text += "</KEYVALUE>\n";
  }
  m_text += "</KEYBINDING>\n";
}

// All that is declared, given or not, and what is given beyond that.
std::vector<TXmlWriter::TRow> TXmlWriter::GetRows(const TCIMInstanceData& instance,
                                                  const TCIMClassDeclaration* declaration) const {
  std::vector<TRow> rows;
  if (declaration != nullptr) {
    for (const auto& property : declaration->properties) {
      const TCIMPropertyData* given = instance.Find(property.name);
      rows.push_back({property.name, &property, given != nullptr ? &given->value : nullptr});
    }
  }
  for (const TCIMPropertyData& given : instance.properties) {
    if (declaration != nullptr && declaration->FindProperty(given.name) != nullptr) continue;
    rows.push_back({given.name, nullptr, &given.value});
  }
  if (m_style == EStyle::kSfcb) std::reverse(rows.begin(), rows.end());
  return rows;
}

void TXmlWriter::Instance(const TCIMInstanceData& instance, const TContentOptions& options) {
  const std::string& className = instance.path.GetClassName();
  const auto declaration = FindClass(instance.path.GetNamespaceName(), className);
  m_text += "<INSTANCE";
  Attribute("CLASSNAME", className);
  m_text += m_style == EStyle::kPegasus ? " >\n" : ">\n";
  for (const TRow& row : GetRows(instance, declaration.get())) {
    if (!options.IsListed(row.name)) continue;
    if (options.shallowClass && options.shallowClass->FindProperty(row.name) == nullptr) continue;
    Property(row, className, options);
  }
  m_text += "</INSTANCE>\n";
}

void TXmlWriter::Property(const TRow& row, const std::string& className,
                          const TContentOptions& options) {
  const std::string type = GetWireType(row.GetType());
  const std::string origin = row.declaration != nullptr ? row.declaration->classOrigin : className;
  m_text.append("<").append(row.GetElement());
  Attribute("NAME", row.name);
  // One blank more than it takes: that maker's way.
  if (m_style == EStyle::kPegasus) m_text += ' ';
  const bool isTypeLast = m_style == EStyle::kPegasus && !row.IsArray();
  if (row.IsReference()) {
    if (row.declaration != nullptr) Attribute("REFERENCECLASS", row.declaration->referenceClass);
  } else if (!isTypeLast) {
    Attribute("TYPE", type);
  }
  Origin(origin, className, options.hasClassOrigin);
  if (isTypeLast && !row.IsReference()) Attribute("TYPE", type);
  EmbeddedAttribute(row.GetType());
  m_text += ">\n";
  if (row.value != nullptr) Value(*row.value);
  m_text.append("</").append(row.GetElement()).append(">\n");
}

void TXmlWriter::Origin(const std::string& classOrigin, const std::string& className,
                        bool hasClassOrigin) {
  if (m_style == EStyle::kSfcb) return;
  if (hasClassOrigin && !classOrigin.empty()) Attribute("CLASSORIGIN", classOrigin);
  if (!classOrigin.empty() && !IsSameName(classOrigin, className)) Attribute("PROPAGATED", "true");
}

void TXmlWriter::ReturnValue(const TCIMValue& value) {
  if (value.IsNull()) return;
  m_text += "<RETURNVALUE";
  Attribute("PARAMTYPE", GetWireType(value.GetType()));
  EmbeddedAttribute(value.GetType());
  m_text += ">\n";
  Value(value);
  m_text += "</RETURNVALUE>\n";
}

void TXmlWriter::Parameter(const std::string& name, const TCIMValue& value) {
  m_text += "<PARAMVALUE";
  Attribute("NAME", name);
  Attribute("PARAMTYPE", GetWireType(value.GetType()));
  EmbeddedAttribute(value.GetType());
  m_text += ">\n";
  Value(value);
  m_text += "</PARAMVALUE>\n";
}

void TXmlWriter::Error(unsigned int code, const std::string& description) {
  m_text += "<ERROR";
  Attribute("CODE", std::to_string(code));
  Attribute("DESCRIPTION", description);
  // One maker ends the line here, the other does not.
  m_text += m_style == EStyle::kPegasus ? "/>" : "/>\n";
}

}  // namespace cimserver
