// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/DeclarationQualifiers.h"

#include <algorithm>
#include <string>

#include "platform/contract/TCIMInstanceData.h"

namespace NZEPQEL20 {
namespace {

std::vector<std::string> GetTexts(const std::vector<TCIMQualifier>& qualifiers, const char* name) {
  std::vector<std::string> texts;
  const TCIMQualifier* const qualifier = FindQualifier(qualifiers, name);
  if (qualifier != nullptr && qualifier->value.IsArray()) {
    for (const TCIMValue& text : static_cast<std::vector<TCIMValue>>(qualifier->value)) {
      texts.push_back(text.ToString(10));
    }
  }
  return texts;
}

bool IsEmbedded(const TCIMElementDeclaration& element) {
  const TCIMQualifier* const instance = FindQualifier(element.qualifiers, "EmbeddedInstance");
  return element.type == ECIMType::kString && ((instance != nullptr && !instance->value.IsNull()) ||
                                               HasQualifier(element.qualifiers, "EmbeddedObject"));
}

}  // namespace

const TCIMQualifier* FindQualifier(const std::vector<TCIMQualifier>& qualifiers, const char* name) {
  const auto found = std::find_if(
      qualifiers.begin(), qualifiers.end(),
      [name](const TCIMQualifier& qualifier) { return IsSameName(qualifier.name, name); });
  return found == qualifiers.end() ? nullptr : &*found;
}

bool HasQualifier(const std::vector<TCIMQualifier>& qualifiers, const char* name) {
  const TCIMQualifier* const qualifier = FindQualifier(qualifiers, name);
  return qualifier != nullptr && qualifier->value == TCIMValue::Boolean(true);
}

void ApplyElementQualifiers(TCIMElementDeclaration& element) {
  element.values = GetTexts(element.qualifiers, "Values");
  element.valueMap = GetTexts(element.qualifiers, "ValueMap");
  // Without a map the words count from 0.
  if (FindQualifier(element.qualifiers, "ValueMap") == nullptr) {
    for (std::size_t i = 0; i < element.values.size(); ++i) {
      element.valueMap.push_back(std::to_string(i));
    }
  }
  const std::size_t count = std::min(element.values.size(), element.valueMap.size());
  element.values.resize(count);
  element.valueMap.resize(count);
  if (IsEmbedded(element)) element.type = ECIMType::kInstance;
}

void ApplyPropertyQualifiers(TCIMPropertyDeclaration& property) {
  property.isKey = HasQualifier(property.qualifiers, "Key");
  ApplyElementQualifiers(property);
}

void ApplyParameterQualifiers(TCIMParameterDeclaration& parameter) {
  // A parameter goes in unless it says otherwise, also when it comes out.
  parameter.isIn = FindQualifier(parameter.qualifiers, "In") == nullptr ||
                   HasQualifier(parameter.qualifiers, "In");
  parameter.isOut = HasQualifier(parameter.qualifiers, "Out");
  ApplyElementQualifiers(parameter);
}

void ApplyClassQualifiers(TCIMClassDeclaration& declaration) {
  declaration.isAssociation = HasQualifier(declaration.qualifiers, "Association");
  declaration.isAbstract = HasQualifier(declaration.qualifiers, "Abstract");
}

}  // namespace NZEPQEL20
