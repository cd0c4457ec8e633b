// SPDX-License-Identifier: Apache-2.0
// The chapter of TReplyReader about class declarations.
#include <utility>

#include "platform/cimxml/TReplyReader.h"
#include "platform/cimxml/WireValues.h"
#include "platform/schema/DeclarationQualifiers.h"

namespace NZEPQEL20::cimxml {
namespace {

bool IsArrayElement(EElement element) {
  return element == EElement::kPropertyArray || element == EElement::kParameterArray ||
         element == EElement::kParameterRefArray;
}

bool IsReferenceElement(EElement element) {
  return element == EElement::kPropertyReference || element == EElement::kParameterReference ||
         element == EElement::kParameterRefArray;
}

void Declare(EElement element, const TAttributes& attributes, TCIMElementDeclaration& declared) {
  declared.name = attributes.Find("NAME");
  declared.type =
      IsReferenceElement(element) ? ECIMType::kReference : ReadWireType(attributes.Find("TYPE"));
  declared.isArray = IsArrayElement(element);
  declared.referenceClass = attributes.Find("REFERENCECLASS");
}

}  // namespace

bool TReplyReader::StartDeclaration(EElement element, const TAttributes& attributes) {
  switch (element) {
    case EElement::kClass:
      m_isInClass = true;
      m_reply.declaration = std::make_shared<TCIMClassDeclaration>();
      m_reply.declaration->name = attributes.Find("NAME");
      m_reply.declaration->superclass = attributes.Find("SUPERCLASS");
      return true;
    case EElement::kProperty:
    case EElement::kPropertyArray:
    case EElement::kPropertyReference:
      StartClassProperty(element, attributes);
      return true;
    case EElement::kMethod:
      StartMethod(attributes);
      return true;
    case EElement::kParameter:
    case EElement::kParameterArray:
    case EElement::kParameterReference:
    case EElement::kParameterRefArray:
      StartParameter(element, attributes);
      return true;
    default:
      return false;
  }
}

void TReplyReader::StartClassProperty(EElement element, const TAttributes& attributes) {
  CheckRoom(m_reply.declaration->properties, "properties");
  TCIMPropertyDeclaration& property = m_reply.declaration->properties.emplace_back();
  Declare(element, attributes, property);
  property.classOrigin = attributes.Find("CLASSORIGIN");
  OpenValue(attributes,
            element == EElement::kPropertyReference ? "reference" : attributes.Find("TYPE"));
  m_values.back().isArray = property.isArray;
}

void TReplyReader::StartMethod(const TAttributes& attributes) {
  CheckRoom(m_reply.declaration->methods, "methods");
  TCIMMethodDeclaration& method = m_reply.declaration->methods.emplace_back();
  Declare(EElement::kMethod, attributes, method);
  method.classOrigin = attributes.Find("CLASSORIGIN");
}

void TReplyReader::StartParameter(EElement element, const TAttributes& attributes) {
  std::vector<TCIMParameterDeclaration>& parameters =
      m_reply.declaration->methods.back().parameters;
  CheckRoom(parameters, "parameters");
  Declare(element, attributes, parameters.emplace_back());
}

bool TReplyReader::EndDeclaration(EElement element) {
  switch (element) {
    case EElement::kClass:
      m_isInClass = false;
      ApplyClassQualifiers(*m_reply.declaration);
      return true;
    case EElement::kProperty:
    case EElement::kPropertyArray:
    case EElement::kPropertyReference:
      EndClassProperty();
      return true;
    case EElement::kQualifier:
      EndQualifier();
      return true;
    case EElement::kMethod:
      ApplyElementQualifiers(m_reply.declaration->methods.back());
      return true;
    case EElement::kParameter:
    case EElement::kParameterArray:
    case EElement::kParameterReference:
    case EElement::kParameterRefArray:
      ApplyParameterQualifiers(m_reply.declaration->methods.back().parameters.back());
      return true;
    default:
      return false;
  }
}

void TReplyReader::EndClassProperty() {
  TCIMPropertyDeclaration& property = m_reply.declaration->properties.back();
  ApplyPropertyQualifiers(property);
  TCIMValue value = TakeValue();
  property.defaultValue =
      value.IsNull() ? TCIMValue::Null(property.type, property.isArray) : std::move(value);
}

void TReplyReader::EndQualifier() {
  std::string name = std::move(m_values.back().name);
  TCIMValue value = TakeValue();
  // Those of instances say nothing that the class does not say more reliably.
  if (!IsInClass()) return;
  CheckRoom(GetQualifiers(), "qualifiers");
  GetQualifiers().push_back({std::move(name), std::move(value)});
}

std::vector<TCIMQualifier>& TReplyReader::GetQualifiers() {
  TCIMClassDeclaration& declaration = *m_reply.declaration;
  switch (GetParent()) {
    case EElement::kClass:
      return declaration.qualifiers;
    case EElement::kMethod:
      return declaration.methods.back().qualifiers;
    case EElement::kProperty:
    case EElement::kPropertyArray:
    case EElement::kPropertyReference:
      return declaration.properties.back().qualifiers;
    default:
      return declaration.methods.back().parameters.back().qualifiers;
  }
}

}  // namespace NZEPQEL20::cimxml
