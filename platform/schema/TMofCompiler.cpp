// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TMofCompiler.h"

#include <utility>

#include "platform/schema/TMofValue.h"

namespace NZEPQEL20 {

TSchemaClass TMofCompiler::Compile(const std::string& file, TMofClass&& declaration) {
  m_file = file;
  TSchemaClass result;
  result.file = file;
  result.position = declaration.position;
  result.qualifiers = CompileQualifiers(declaration.qualifiers);
  CompileProperties(declaration, result);
  CompileMethods(declaration, result);
  result.name = std::move(declaration.name);
  result.superclass = std::move(declaration.superclass);
  return result;
}

void TMofCompiler::CompileProperties(TMofClass& declaration, TSchemaClass& result) {
  std::unordered_set<std::string> names;
  for (TMofProperty& property : declaration.properties) {
    if (!names.insert(FoldName(property.name)).second) {
      m_problems.AddError(m_file, property.position,
                          "property " + property.name + " is declared twice in class " +
                              declaration.name + "; the first one holds");
      continue;
    }
    TSchemaProperty compiled;
    CompileDefault(property, compiled);
    CompileElement(std::move(property), compiled);
    result.properties.push_back(std::move(compiled));
  }
}

void TMofCompiler::CompileMethods(TMofClass& declaration, TSchemaClass& result) {
  std::unordered_set<std::string> names;
  for (TMofMethod& method : declaration.methods) {
    if (!names.insert(FoldName(method.name)).second) {
      m_problems.AddError(m_file, method.position,
                          "method " + method.name + " is declared twice in class " +
                              declaration.name + "; the first one holds");
      continue;
    }
    TSchemaMethod compiled;
    for (TMofElement& parameter : method.parameters) {
      TSchemaElement element;
      CompileElement(std::move(parameter), element);
      compiled.parameters.push_back(std::move(element));
    }
    CompileElement(std::move(method), compiled);
    result.methods.push_back(std::move(compiled));
  }
}

void TMofCompiler::CompileElement(TMofElement&& element, TSchemaElement& result) {
  result.position = element.position;
  result.type = element.type;
  result.isArray = element.isArray;
  result.qualifiers = CompileQualifiers(element.qualifiers);
  result.name = std::move(element.name);
  result.referenceClass = std::move(element.referenceClass);
  CheckValues(result);
}

void TMofCompiler::CompileDefault(const TMofProperty& property, TSchemaProperty& result) {
  result.defaultValue = TCIMValue::Null(property.type, property.isArray);
  if (!property.hasDefault) {
    return;
  }
  try {
    result.defaultValue =
        ConvertInitializer(property.defaultValue, property.type, property.isArray);
    result.hasDefault = true;
  } catch (const TMofValueError& error) {
    if (MendDefault(property, result, error)) {
      return;
    }
    const TMofInitializer& value = property.defaultValue;
    if (property.type == ECIMType::kReference && !value.isArray &&
        value.literals.front().kind == TMofLiteral::EKind::kString) {
      m_problems.AddWarning(m_file, error.position, std::string(error.what()) + "; kept as text");
      result.defaultValue = TCIMValue(value.literals.front().text);
      result.hasDefault = true;
      return;
    }
    m_problems.AddError(m_file, error.position,
                        "default of property " + property.name + ": " + error.what());
  }
}

bool TMofCompiler::MendDefault(const TMofProperty& property, TSchemaProperty& result,
                               const TMofValueError& error) {
  const auto mended = MendInitializer(property.defaultValue, property.type, property.isArray);
  if (!mended) {
    return false;
  }
  try {
    result.defaultValue = ConvertInitializer(*mended, property.type, property.isArray);
  } catch (const TMofValueError&) {
    // The fault of what the file says is told.
    return false;
  }
  result.hasDefault = true;
  m_problems.AddWarning(
      m_file, error.position,
      "default of property " + property.name + ": " + error.what() + "; it is taken as one");
  return true;
}

void TMofCompiler::CheckValues(const TSchemaElement& element) {
  const TSchemaQualifier* map = FindQualifier(element.qualifiers, "ValueMap");
  const TSchemaQualifier* values = FindQualifier(element.qualifiers, "Values");
  const auto count = [](const TSchemaQualifier* qualifier) {
    return qualifier == nullptr || !qualifier->value.IsArray()
               ? std::size_t{0}
               : static_cast<std::vector<TCIMValue>>(qualifier->value).size();
  };
  // A ValueMap alone is how the texts that a string may hold are listed, and Values alone are
  // numbered from 0.
  const bool isWanting = map != nullptr && (values != nullptr || element.type != ECIMType::kString);
  if (isWanting && count(map) != count(values)) {
    m_problems.AddWarning(m_file, element.position,
                          "ValueMap of " + element.name + " has " + std::to_string(count(map)) +
                              " entries and Values has " + std::to_string(count(values)) +
                              "; the pairs are used");
  }
}

TSchemaQualifiers TMofCompiler::CompileQualifiers(const std::vector<TMofQualifier>& qualifiers) {
  TSchemaQualifiers result;
  result.reserve(qualifiers.size());
  for (const TMofQualifier& qualifier : qualifiers) {
    try {
      result.push_back(CompileQualifier(qualifier));
    } catch (const TMofValueError& error) {
      m_problems.AddError(m_file, error.position,
                          "qualifier " + qualifier.name + ": " + error.what());
    }
  }
  return result;
}

TSchemaQualifier TMofCompiler::CompileQualifier(const TMofQualifier& qualifier) {
  const TMofQualifierType* declared = m_qualifiers->Find(qualifier.name);
  const TMofQualifierType type = declared != nullptr ? *declared : GuessQualifier(qualifier);
  TSchemaQualifier result;
  result.name = type.name;
  result.toSubclass = qualifier.flavors.hasScope ? qualifier.flavors.toSubclass : type.toSubclass;
  result.isOverridable =
      qualifier.flavors.hasOverride ? qualifier.flavors.isOverridable : type.isOverridable;
  if (qualifier.hasValue) {
    result.value = ConvertOrMend(qualifier, type);
  } else if (type.type == ECIMType::kBoolean && !type.isArray) {
    result.value = TCIMValue::Boolean(true);
  } else {
    result.value = type.defaultValue;
  }
  return result;
}

TCIMValue TMofCompiler::ConvertOrMend(const TMofQualifier& qualifier,
                                      const TMofQualifierType& type) {
  try {
    return ConvertQualifierValue(qualifier.value, type.type, type.isArray);
  } catch (const TMofValueError& error) {
    const auto mended = MendQualifierValue(qualifier.value, type.type, type.isArray);
    if (!mended) {
      throw;
    }
    TCIMValue value = ConvertQualifierValue(*mended, type.type, type.isArray);
    m_problems.AddWarning(
        m_file, error.position,
        "qualifier " + qualifier.name + ": " + error.what() + "; it is taken as one");
    return value;
  }
}

TMofQualifierType TMofCompiler::GuessQualifier(const TMofQualifier& qualifier) {
  if (m_undeclared.insert(FoldName(qualifier.name)).second) {
    m_problems.AddWarning(m_file, qualifier.position,
                          "qualifier " + qualifier.name + " is not declared");
  }
  TMofQualifierType type;
  type.name = qualifier.name;
  type.type = qualifier.hasValue ? GuessType(qualifier.value) : ECIMType::kBoolean;
  type.isArray = qualifier.hasValue && qualifier.value.isArray;
  return type;
}

void TMofCompiler::Declare(const std::string& file, const TMofQualifierDeclaration& declaration) {
  TMofQualifierType type;
  type.name = declaration.name;
  type.type = declaration.type;
  type.isArray = declaration.isArray;
  type.isOverridable = declaration.flavors.isOverridable;
  type.toSubclass = declaration.flavors.toSubclass;
  type.defaultValue = TCIMValue::Null(type.type, type.isArray);
  try {
    if (declaration.hasDefault) {
      type.defaultValue = ConvertQualifierValue(declaration.defaultValue, type.type, type.isArray);
    }
  } catch (const TMofValueError& error) {
    m_problems.AddError(file, error.position,
                        "default of qualifier " + declaration.name + ": " + error.what());
  }
  if (m_qualifiers->IsForbidden(type)) {
    m_problems.AddWarning(file, declaration.position,
                          "qualifier " + declaration.name +
                              " has another type in the schema; this declaration is left out");
    return;
  }
  if (m_qualifiers->Declare(type)) {
    m_problems.AddWarning(
        file, declaration.position,
        "qualifier " + declaration.name + " is declared again, differently; the last one holds");
  }
}

}  // namespace NZEPQEL20
