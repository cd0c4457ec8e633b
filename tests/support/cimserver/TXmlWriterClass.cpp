// SPDX-License-Identifier: Apache-2.0
// The chapter of TXmlWriter about classes.
#include <algorithm>
#include <array>

#include "tests/support/cimserver/TXmlWriter.h"
#include "tests/support/cimserver/TXmlWriterRow.h"

namespace cimserver {
namespace {

// What the standard says of a qualifier's flavor where that is not the default.
struct TFlavor {
  const char* name;
  bool isOverridable;
  bool isToSubclass;
  bool isTranslatable;
};
constexpr std::array<TFlavor, 14> kFlavors{{{"Abstract", true, false, false},
                                            {"ArrayType", false, true, false},
                                            {"Association", false, true, false},
                                            {"Deprecated", true, false, false},
                                            {"Description", true, true, true},
                                            {"EmbeddedObject", false, true, false},
                                            {"In", false, true, false},
                                            {"Key", false, true, false},
                                            {"Out", false, true, false},
                                            {"Override", true, false, false},
                                            {"Propagated", false, true, false},
                                            {"Static", false, true, false},
                                            {"Values", true, true, true},
                                            {"Version", true, false, true}}};
constexpr TFlavor kPlainFlavor{"", true, true, false};

// Both makers spell these two in capitals, whatever the declaration has.
std::string GetSpelling(const std::string& name) {
  if (IsSameName(name, "In")) return "IN";
  return IsSameName(name, "Out") ? "OUT" : name;
}

const TFlavor& FindFlavor(const std::string& name) {
  const auto* const found =
      std::find_if(kFlavors.begin(), kFlavors.end(),
                   [&name](const TFlavor& flavor) { return IsSameName(flavor.name, name); });
  return found != kFlavors.end() ? *found : kPlainFlavor;
}

bool IsForeign(const std::string& classOrigin, const std::string& className) {
  return !classOrigin.empty() && !IsSameName(classOrigin, className);
}

}  // namespace

void TXmlWriter::ClassName(const std::string& name) {
  m_text += "<CLASSNAME";
  Attribute("NAME", name);
  m_text += "/>\n";
}

void TXmlWriter::Class(const TCIMClassDeclaration& declaration, const TContentOptions& options) {
  const bool isPegasus = m_style == EStyle::kPegasus;
  m_text += "<CLASS";
  Attribute("NAME", declaration.name);
  if (!declaration.superclass.empty()) {
    if (isPegasus) m_text += ' ';
    Attribute("SUPERCLASS", declaration.superclass);
  }
  m_text += isPegasus ? " >\n" : ">\n";
  if (options.hasQualifiers) Qualifiers(declaration.qualifiers);
  const TCIMInstanceData nothing;
  for (const TRow& row : GetRows(nothing, &declaration)) {
    const bool isWanted =
        !options.isLocalOnly || !IsForeign(row.declaration->classOrigin, declaration.name);
    if (isWanted && options.IsListed(row.name)) ClassProperty(row, declaration.name, options);
  }
  for (const auto& method : declaration.methods) {
    if (!options.isLocalOnly || !IsForeign(method.classOrigin, declaration.name)) {
      Method(method, declaration.name, options);
    }
  }
  m_text += "</CLASS>\n";
}

void TXmlWriter::ClassProperty(const TRow& row, const std::string& className,
                               const TContentOptions& options) {
  const auto& property = *row.declaration;
  const bool isTypeLast = m_style == EStyle::kPegasus && !property.isArray;
  m_text.append("<").append(row.GetElement());
  Attribute("NAME", property.name);
  if (m_style == EStyle::kPegasus) m_text += ' ';
  if (row.IsReference()) {
    Attribute("REFERENCECLASS", property.referenceClass);
  } else if (!isTypeLast) {
    Attribute("TYPE", GetWireType(property.type));
  }
  Origin(property.classOrigin, className, options.hasClassOrigin);
  if (isTypeLast && !row.IsReference()) Attribute("TYPE", GetWireType(property.type));
  m_text += ">\n";
  if (options.hasQualifiers) Qualifiers(property.qualifiers);
  Value(property.defaultValue);
  m_text.append("</").append(row.GetElement()).append(">\n");
}

void TXmlWriter::Qualifiers(const std::vector<NZEPQEL20::TCIMQualifier>& qualifiers) {
  for (const auto& qualifier : qualifiers) {
    m_text += "<QUALIFIER";
    Attribute("NAME", GetSpelling(qualifier.name));
    Attribute("TYPE", GetWireType(qualifier.value.GetType()));
    if (m_style == EStyle::kPegasus) {
      const TFlavor& flavor = FindFlavor(qualifier.name);
      if (!flavor.isOverridable) Attribute("OVERRIDABLE", "false");
      if (!flavor.isToSubclass) Attribute("TOSUBCLASS", "false");
      if (flavor.isTranslatable) Attribute("TRANSLATABLE", "true");
    }
    m_text += ">\n";
    Value(qualifier.value);
    m_text += "</QUALIFIER>\n";
  }
}

void TXmlWriter::Method(const NZEPQEL20::TCIMMethodDeclaration& method,
                        const std::string& className, const TContentOptions& options) {
  m_text += "<METHOD";
  Attribute("NAME", method.name);
  Attribute("TYPE", GetWireType(method.type));
  Origin(method.classOrigin, className, options.hasClassOrigin);
  m_text += ">\n";
  if (options.hasQualifiers) Qualifiers(method.qualifiers);
  for (const auto& parameter : method.parameters) MethodParameter(parameter, options.hasQualifiers);
  m_text += "</METHOD>\n";
}

void TXmlWriter::MethodParameter(const NZEPQEL20::TCIMParameterDeclaration& parameter,
                                 bool hasQualifiers) {
  const bool isReference = parameter.type == ECIMType::kReference;
  std::string element = "PARAMETER";
  if (isReference) element += parameter.isArray ? ".REFARRAY" : ".REFERENCE";
  if (!isReference && parameter.isArray) element += ".ARRAY";
  m_text.append("<").append(element);
  Attribute("NAME", parameter.name);
  isReference ? Attribute("REFERENCECLASS", parameter.referenceClass)
              : Attribute("TYPE", GetWireType(parameter.type));
  m_text += ">\n";
  if (hasQualifiers) Qualifiers(parameter.qualifiers);
  m_text.append("</").append(element).append(">\n");
}

}  // namespace cimserver
