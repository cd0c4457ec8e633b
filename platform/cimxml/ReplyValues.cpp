// SPDX-License-Identifier: Apache-2.0
// The chapter of TReplyReader about values, properties and instances.
#include <utility>

#include "platform/cimxml/HttpText.h"
#include "platform/cimxml/TReplyReader.h"
#include "platform/cimxml/WireValues.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cimxml {
namespace {

constexpr std::size_t kShownText = 60;

bool IsEmbedded(const TAttributes& attributes) {
  return !attributes.Find("EmbeddedObject").empty() || !attributes.Find("EMBEDDEDOBJECT").empty();
}

}  // namespace

bool TReplyReader::StartValue(EElement element, const TAttributes& attributes) {
  switch (element) {
    case EElement::kValue:
      return true;
    case EElement::kValueArray:
    case EElement::kValueRefArray:
      m_values.back().isArray = true;
      m_values.back().isSet = true;
      return true;
    case EElement::kProperty:
    case EElement::kPropertyArray:
    case EElement::kPropertyReference:
      if (IsInClass()) return false;
      OpenValue(attributes,
                element == EElement::kPropertyReference ? "reference" : attributes.Find("TYPE"));
      m_values.back().isArray = element == EElement::kPropertyArray;
      return true;
    case EElement::kQualifier:
      OpenValue(attributes, attributes.Find("TYPE"));
      return true;
    case EElement::kInstance:
      StartInstance(attributes);
      return true;
    default:
      return false;
  }
}

void TReplyReader::OpenValue(const TAttributes& attributes, std::string_view type) {
  TValueFrame& frame = m_values.emplace_back();
  frame.name = attributes.Find("NAME");
  frame.type = ReadWireType(type);
  if (frame.type == ECIMType::kString && IsEmbedded(attributes)) frame.type = ECIMType::kInstance;
}

bool TReplyReader::EndValue(EElement element) {
  switch (element) {
    case EElement::kValue:
      EndScalar();
      return true;
    case EElement::kValueNull:
      m_values.back().Add(TCIMValue::Null(m_values.back().type));
      return true;
    case EElement::kProperty:
    case EElement::kPropertyArray:
    case EElement::kPropertyReference: {
      if (IsInClass()) return false;
      CheckRoom(m_instance.properties, "properties");
      std::string name = std::move(m_values.back().name);
      m_instance.properties.push_back({std::move(name), TakeValue()});
      return true;
    }
    case EElement::kInstance:
      EndInstance();
      return true;
    default:
      return false;
  }
}

TCIMValue TReplyReader::TakeValue() {
  TCIMValue value = m_values.back().Take();
  m_values.pop_back();
  return value;
}

void TReplyReader::EndScalar() {
  TValueFrame& frame = m_values.back();
  frame.Add(ReadScalar(frame));
}

// No value when the text that was gathered is none of `type`.
std::optional<TCIMValue> TReplyReader::ReadText(ECIMType type) {
  if (type == ECIMType::kInstance) {
    return TCIMValue::Instance(m_text.empty() ? nullptr : ReadInner(m_text));
  }
  if (type != ECIMType::kReference) return ReadWireValue(type, m_text);
  // A path as text, in the place of its elements.
  TCIMReference path = TCIMReference::Parse(m_text);
  path.SetHost({});
  if (path.GetNamespaceName().empty()) path.SetNamespaceName(m_nameSpace);
  return TCIMValue(path);
}

TCIMValue TReplyReader::ReadScalar(const TValueFrame& frame) {
  std::string reason = std::string("is no ") + GetTypeName(frame.type);
  try {
    std::optional<TCIMValue> value = ReadText(frame.type);
    if (value) return std::move(*value);
  } catch (const TQELException& e) {
    reason += std::string(": ") + e.what();
  }
  const std::string what = (frame.name.empty() ? "return value" : MakeSafe(frame.name)) + ": '" +
                           MakeSafe(m_text, kShownText) + "' " + reason;
  if (frame.isStrict) throw TQELException(TQELStatusCode::kFailed, "the reply's " + what);
  Note(what);
  return TCIMValue::Null(frame.type);
}

void TReplyReader::StartInstance(const TAttributes& attributes) {
  m_instance = {};
  m_instance.path.SetClassName(std::string(attributes.Find("CLASSNAME")));
  m_instance.path.SetNamespaceName(m_nameSpace);
  m_instance.properties.reserve(m_propertyCount);
}

void TReplyReader::EndInstance() {
  m_propertyCount = m_instance.properties.size();
  m_hasInstance = true;
  if (GetParent() == EElement::kParamValue) {
    m_hasInstance = false;
    m_values.back().type = ECIMType::kInstance;
    m_values.back().Add(
        TCIMValue::Instance(std::make_shared<const TCIMInstanceData>(std::move(m_instance))));
  } else if (GetParent() == EElement::kIReturnValue) {
    m_hasInstance = false;
    m_reply.instances.push_back(std::move(m_instance));
  }
}

}  // namespace NZEPQEL20::cimxml
