// SPDX-License-Identifier: Apache-2.0
// The chapter of TRequestHandler about classes and instances.
#include "tests/support/cimserver/RequestValues.h"
#include "tests/support/cimserver/TRequestHandler.h"

namespace cimserver {
namespace {

TContentOptions GetClassOptions(const TOperands& operands) {
  TContentOptions options = operands.GetContentOptions();
  options.isLocalOnly = operands.GetFlag("LocalOnly", true);
  options.hasQualifiers = operands.GetFlag("IncludeQualifiers", true);
  return options;
}

// What is to be changed: the listed properties, else all but the keys, which name the instance.
void KeepChanges(TCIMInstanceData& instance, const TOperands& operands) {
  TContentOptions options = operands.GetContentOptions();
  std::vector<TCIMPropertyData> kept;
  for (TCIMPropertyData& property : instance.properties) {
    const bool isKey = instance.path.FindKey(property.name) != nullptr;
    if (options.hasPropertyList ? options.IsListed(property.name) : !isKey) {
      kept.push_back(std::move(property));
    }
  }
  instance.properties = std::move(kept);
}

}  // namespace

void TRequestHandler::GetClass(const TOperands& operands, TResult& result) {
  const auto declaration =
      RequireClass(operands.GetNameSpace(), operands.RequireClassName("ClassName"), kCIMNotFound);
  result.objects.Class(*declaration, GetClassOptions(operands));
}

void TRequestHandler::EnumerateClasses(const TOperands& operands, TResult& result) {
  const std::string& nameSpace = operands.GetNameSpace();
  const std::string top = operands.GetText("ClassName");
  if (!top.empty()) RequireClass(nameSpace, top, kCIMInvalidClass);
  const bool isDeep = operands.GetFlag("DeepInheritance", false);
  const TContentOptions options = GetClassOptions(operands);
  for (const std::string& name : m_operations->EnumerateClassNames(nameSpace, top, isDeep)) {
    const auto declaration = FindClass(nameSpace, name);
    if (declaration != nullptr) result.objects.Class(*declaration, options);
  }
}

void TRequestHandler::EnumerateClassNames(const TOperands& operands, TResult& result) {
  const std::string& nameSpace = operands.GetNameSpace();
  const std::string top = operands.GetText("ClassName");
  if (!top.empty()) RequireClass(nameSpace, top, kCIMInvalidClass);
  const bool isDeep = operands.GetFlag("DeepInheritance", false);
  for (const std::string& name : m_operations->EnumerateClassNames(nameSpace, top, isDeep)) {
    result.objects.ClassName(name);
  }
}

void TRequestHandler::GetInstance(const TOperands& operands, TResult& result) {
  const TCIMReference path = RequireObject(operands, "InstanceName");
  TCIMInstanceData instance = m_operations->GetInstance(path);
  result.objects.Instance(instance, operands.GetContentOptions());
}

void TRequestHandler::EnumerateInstances(const TOperands& operands, TResult& result) {
  const std::string className = operands.RequireClassName("ClassName");
  RequireClass(operands.GetNameSpace(), className, kCIMInvalidClass);
  const TContentOptions options = GetInstanceOptions(operands);
  m_operations->EnumerateInstances(operands.GetNameSpace(), className,
                                   [&](TCIMInstanceData&& instance) {
                                     result.objects.Raw("<VALUE.NAMEDINSTANCE>\n");
                                     result.objects.InstanceName(instance.path);
                                     result.objects.Instance(instance, options);
                                     result.objects.Raw("</VALUE.NAMEDINSTANCE>\n");
                                     return true;
                                   });
}

void TRequestHandler::EnumerateInstanceNames(const TOperands& operands, TResult& result) {
  const std::string className = operands.RequireClassName("ClassName");
  RequireClass(operands.GetNameSpace(), className, kCIMInvalidClass);
  for (const TCIMReference& path :
       m_operations->EnumerateInstanceNames(operands.GetNameSpace(), className)) {
    result.objects.InstanceName(path);
  }
}

void TRequestHandler::CreateInstance(const TOperands& operands, TResult& result) {
  TCIMInstanceData instance =
      ReadInstance(operands.Require("NewInstance"), operands.GetNameSpace());
  const auto declaration =
      RequireClass(operands.GetNameSpace(), instance.path.GetClassName(), kCIMInvalidClass);
  for (const TCIMPropertyData& property : instance.properties) {
    const auto* declared = declaration->FindProperty(property.name);
    if (declared != nullptr && declared->isKey) {
      instance.path.SetKey(declared->name, property.value);
    }
  }
  result.objects.InstanceName(m_operations->CreateInstance(operands.GetNameSpace(), instance));
}

void TRequestHandler::ModifyInstance(const TOperands& operands, TResult& /*result*/) {
  const TXmlElement& named = operands.Require("ModifiedInstance");
  if (named.name != "VALUE.NAMEDINSTANCE" || named.children.size() != 2) {
    throw TNotValid("ModifiedInstance with " + named.name);
  }
  TCIMInstanceData instance = ReadInstance(named.children[1], operands.GetNameSpace());
  instance.path = ReadPath(named.children[0], operands.GetNameSpace());
  RequireClass(operands.GetNameSpace(), instance.path.GetClassName(), kCIMInvalidClass);
  KeepChanges(instance, operands);
  m_operations->ModifyInstance(instance);
}

void TRequestHandler::DeleteInstance(const TOperands& operands, TResult& /*result*/) {
  m_operations->DeleteInstance(RequireObject(operands, "InstanceName"));
}

}  // namespace cimserver
