// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/schema/cache/Dump.h"

#include <vector>

#include "platform/contract/TCIMReference.h"

namespace cachetest {
namespace {

using namespace NZEPQEL20;

std::string Dump(const TCIMInstanceData& instance) {
  std::string text = instance.path.GetHost() + "|" + instance.path.GetPath() + " {";
  for (const auto& [name, value] : instance.path.GetKeys()) {
    text += name + "~" + cachetest::Dump(value) + ";";
  }
  for (const TCIMPropertyData& property : instance.properties) {
    text += property.name + "=" + cachetest::Dump(property.value) + ";";
  }
  return text + "}";
}

std::string DumpScalar(const TCIMValue& value) {
  if (value.IsNull()) return "NULL";
  if (value.GetType() == ECIMType::kInstance) return Dump(*value.ToInstance());
  if (value.GetType() == ECIMType::kReference) {
    TCIMInstanceData target;
    target.path = static_cast<TCIMReference>(value);
    return Dump(target);
  }
  return value.ToString(10);
}

std::string Dump(const std::vector<TCIMQualifier>& qualifiers) {
  std::string text = "[";
  for (const TCIMQualifier& qualifier : qualifiers) {
    text += qualifier.name + "(" + cachetest::Dump(qualifier.value) + ")";
  }
  return text + "]";
}

std::string Dump(const TCIMElementDeclaration& element) {
  std::string text = Dump(element.qualifiers) + GetTypeName(element.type) +
                     (element.isArray ? "[] " : " ") + element.referenceClass + " " + element.name;
  for (const std::string& number : element.valueMap) text += "<" + number;
  for (const std::string& word : element.values) text += ">" + word;
  return text;
}

std::string Dump(const TCIMClassDeclaration& declaration) {
  std::string text = Dump(declaration.qualifiers) + declaration.name + ":" +
                     declaration.superclass + (declaration.isAssociation ? " link" : "") +
                     (declaration.isAbstract ? " abstract" : "") + "\n";
  for (const TCIMPropertyDeclaration& property : declaration.properties) {
    text += "  " + Dump(property) + (property.isKey ? " key " : " ") + property.classOrigin + "=" +
            cachetest::Dump(property.defaultValue) + "\n";
  }
  for (const TCIMMethodDeclaration& method : declaration.methods) {
    text += "  " + Dump(method) + " " + method.classOrigin + "\n";
    for (const TCIMParameterDeclaration& parameter : method.parameters) {
      text += "    " + Dump(parameter) + (parameter.isIn ? " in" : "") +
              (parameter.isOut ? " out" : "") + "\n";
    }
  }
  return text;
}

}  // namespace

std::string Dump(const TCIMValue& value) {
  std::string text = std::string(GetTypeName(value.GetType())) + (value.IsArray() ? "[]:" : ":");
  if (!value.IsArray() || value.IsNull()) return text + DumpScalar(value);
  for (const TCIMValue& element : static_cast<std::vector<TCIMValue>>(value)) {
    text += GetTypeName(element.GetType()) + ("'" + DumpScalar(element)) + "',";
  }
  return text;
}

std::string Dump(const TClassRepository& repository) {
  std::string text = std::to_string(repository.GetCount()) + "\n";
  for (const std::string& name : repository.GetSubclasses("", false)) text += name + " ";
  for (const std::string& name : repository.GetSubclasses("", true)) {
    const auto declaration = repository.Find(name);
    text += declaration == nullptr ? name + " is missing\n" : Dump(*declaration);
    text += repository.IsComplete(name) ? "" : "incomplete\n";
    for (const std::string& child : repository.GetSubclasses(name, false)) text += child + ",";
  }
  for (const TCIMInstanceData& instance : repository.GetInstances()) text += Dump(instance) + "\n";
  return text;
}

}  // namespace cachetest
