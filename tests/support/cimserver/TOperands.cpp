// SPDX-License-Identifier: Apache-2.0
#include "tests/support/cimserver/TOperands.h"

#include "tests/support/cimserver/RequestValues.h"

namespace cimserver {

const TXmlElement* TOperands::Find(const std::string& name) const {
  for (const TXmlElement& operand : m_call.operands) {
    if (!IsSameName(operand.GetAttribute("NAME"), name)) continue;
    return operand.children.empty() ? nullptr : &operand.children.front();
  }
  return nullptr;
}

bool TOperands::GetFlag(const std::string& name, bool otherwise) const {
  const TXmlElement* element = Find(name);
  return element != nullptr ? ReadValue(*element, ECIMType::kBoolean, "").ToBoolean() : otherwise;
}

std::optional<std::uint64_t> TOperands::FindNumber(const std::string& name) const {
  const TXmlElement* element = Find(name);
  if (element == nullptr) return std::nullopt;
  return ReadValue(*element, ECIMType::kUInt32, "").ToUnsigned();
}

std::string TOperands::GetText(const std::string& name) const {
  const TXmlElement* element = Find(name);
  if (element == nullptr) return {};
  if (element->name == "CLASSNAME") return element->GetAttribute("NAME");
  return static_cast<std::string>(ReadValue(*element, ECIMType::kString, ""));
}

const TXmlElement& TOperands::Require(const std::string& name) const {
  const TXmlElement* element = Find(name);
  if (element != nullptr) return *element;
  throw TQELException(TQELStatusCode::kInvalidArgument, "parameter " + name + " is missing",
                      kCIMInvalidParameter);
}

std::string TOperands::RequireClassName(const std::string& name) const {
  const TXmlElement& element = Require(name);
  if (element.name != "CLASSNAME") throw TNotValid(name + " with " + element.name);
  return element.GetAttribute("NAME");
}

TCIMReference TOperands::RequirePath(const std::string& name) const {
  const TXmlElement& element = Require(name);
  if (element.name != "INSTANCENAME") throw TNotValid(name + " with " + element.name);
  return ReadPath(element, GetNameSpace());
}

std::optional<std::vector<std::string>> TOperands::FindPropertyList() const {
  const TXmlElement* element = Find("PropertyList");
  if (element == nullptr) return std::nullopt;
  std::vector<std::string> names;
  const TCIMValue list = ReadValue(*element, ECIMType::kString, "");
  for (const TCIMValue& name : static_cast<std::vector<TCIMValue>>(list)) {
    names.push_back(static_cast<std::string>(name));
  }
  return names;
}

TContentOptions TOperands::GetContentOptions() const {
  TContentOptions options;
  options.hasClassOrigin = GetFlag("IncludeClassOrigin", false);
  const auto list = FindPropertyList();
  options.hasPropertyList = list.has_value();
  if (list) options.propertyList = *list;
  return options;
}

}  // namespace cimserver
