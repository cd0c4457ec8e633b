// SPDX-License-Identifier: Apache-2.0
#include "tests/support/cimserver/TXmlElement.h"

#include <expat.h>

#include <memory>

namespace cimserver {
namespace {

// The tree under construction. An element is complete, and can be moved to its parent, at its
// end; the pointers of a growing tree would not hold.
struct TBuilder {
  XML_Parser parser;
  std::vector<TXmlElement> open;
  TXmlElement root;
  bool isTooDeep = false;
};

TBuilder& Of(void* data) {
  return *static_cast<TBuilder*>(data);
}

void StartElement(void* data, const char* name, const char** attributes) {
  TBuilder& builder = Of(data);
  if (builder.open.size() == TXmlElement::kMaxDepth) {
    builder.isTooDeep = true;
    XML_StopParser(builder.parser, XML_FALSE);
    return;
  }
  TXmlElement element;
  element.name = name;
  for (; attributes[0] != nullptr; attributes += 2) {
    element.attributes.emplace(attributes[0], attributes[1]);
  }
  builder.open.push_back(std::move(element));
}

void EndElement(void* data, const char* /*name*/) {
  TBuilder& builder = Of(data);
  if (builder.open.empty()) return;
  TXmlElement element = std::move(builder.open.back());
  builder.open.pop_back();
  if (builder.open.empty()) {
    builder.root = std::move(element);
  } else {
    builder.open.back().children.push_back(std::move(element));
  }
}

void AddText(void* data, const char* text, int size) {
  TBuilder& builder = Of(data);
  if (!builder.open.empty()) builder.open.back().text.append(text, static_cast<std::size_t>(size));
}

std::string Describe(const TBuilder& builder) {
  const XML_Parser parser = builder.parser;
  const std::string reason =
      builder.isTooDeep ? "too deep" : XML_ErrorString(XML_GetErrorCode(parser));
  return "line " + std::to_string(XML_GetCurrentLineNumber(parser)) + ", column " +
         std::to_string(XML_GetCurrentColumnNumber(parser) + 1) + ": " + reason;
}

}  // namespace

const std::string* TXmlElement::FindAttribute(const std::string& attribute) const {
  const auto found = attributes.find(attribute);
  return found != attributes.end() ? &found->second : nullptr;
}

const std::string& TXmlElement::GetAttribute(const std::string& attribute) const {
  const std::string* found = FindAttribute(attribute);
  if (found == nullptr) throw TNotValid(name + " without attribute " + attribute);
  return *found;
}

const TXmlElement* TXmlElement::FindChild(const std::string& child) const {
  for (const TXmlElement& element : children) {
    if (element.name == child) return &element;
  }
  return nullptr;
}

const TXmlElement& TXmlElement::GetOnlyChild() const {
  if (children.size() != 1) {
    throw TNotValid(name + " with " + std::to_string(children.size()) + " elements in it, not 1");
  }
  return children.front();
}

const TXmlElement& TXmlElement::GetOnlyChild(const std::string& child) const {
  const TXmlElement& only = GetOnlyChild();
  if (only.name != child) throw TNotValid(name + " with " + only.name + " in it, not " + child);
  return only;
}

TXmlElement ReadXml(const std::string& document) {
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
      XML_ParserCreate(nullptr), XML_ParserFree);
  TBuilder builder{parser.get(), {}, {}, false};
  XML_SetUserData(parser.get(), &builder);
  XML_SetElementHandler(parser.get(), StartElement, EndElement);
  XML_SetCharacterDataHandler(parser.get(), AddText);
  const auto size = static_cast<int>(document.size());
  if (XML_Parse(parser.get(), document.data(), size, XML_TRUE) != XML_STATUS_OK) {
    throw TNotWellFormed(Describe(builder));
  }
  return std::move(builder.root);
}

}  // namespace cimserver
