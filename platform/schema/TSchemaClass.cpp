// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TSchemaClass.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <utility>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/schema/DeclarationQualifiers.h"
#include "platform/schema/TMofQualifierTable.h"

namespace NZEPQEL20 {

namespace {

template <typename TItem, typename TSame>
bool IsSameList(const std::vector<TItem>& left, const std::vector<TItem>& right, TSame isSame) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), isSame);
}

bool IsSameQualifier(const TSchemaQualifier& left, const TSchemaQualifier& right) {
  return left.value == right.value && left.toSubclass == right.toSubclass &&
         left.isOverridable == right.isOverridable;
}

/// In whatever order: an element has none of them twice.
bool AreSameQualifiers(const TSchemaQualifiers& left, const TSchemaQualifiers& right) {
  return left.size() == right.size() &&
         std::all_of(left.begin(), left.end(), [&right](const TSchemaQualifier& qualifier) {
           const TSchemaQualifier* same = FindQualifier(right, qualifier.name.c_str());
           return same != nullptr && IsSameQualifier(qualifier, *same);
         });
}

bool IsSameElement(const TSchemaElement& left, const TSchemaElement& right) {
  return IsSameName(left.name, right.name) && left.type == right.type &&
         left.isArray == right.isArray && IsSameName(left.referenceClass, right.referenceClass) &&
         AreSameQualifiers(left.qualifiers, right.qualifiers);
}

bool IsSameProperty(const TSchemaProperty& left, const TSchemaProperty& right) {
  return IsSameElement(left, right) && left.hasDefault == right.hasDefault &&
         left.defaultValue == right.defaultValue;
}

bool IsSameMethod(const TSchemaMethod& left, const TSchemaMethod& right) {
  return IsSameElement(left, right) && IsSameList(left.parameters, right.parameters, IsSameElement);
}

/// The subclass's qualifiers behind those that flow down from the superclass.
TSchemaQualifiers MergeQualifiers(TSchemaQualifiers&& inherited, const TSchemaQualifiers& own) {
  TSchemaQualifiers merged;
  std::copy_if(std::make_move_iterator(inherited.begin()), std::make_move_iterator(inherited.end()),
               std::back_inserter(merged),
               [](const TSchemaQualifier& qualifier) { return qualifier.toSubclass; });
  std::unordered_map<std::string, std::size_t> places;
  for (std::size_t i = 0; i < merged.size(); ++i) {
    places.emplace(FoldName(merged[i].name), i);
  }
  for (const TSchemaQualifier& qualifier : own) {
    const auto found = places.find(FoldName(qualifier.name));
    if (found == places.end()) {
      merged.push_back(qualifier);
    } else if (merged[found->second].isOverridable) {
      merged[found->second] = qualifier;
    }
  }
  return merged;
}

void OverrideParameters(std::vector<TSchemaElement>&& inherited,
                        std::vector<TSchemaElement>& parameters) {
  for (TSchemaElement& parameter : parameters) {
    const auto same =
        std::find_if(inherited.begin(), inherited.end(), [&parameter](const TSchemaElement& other) {
          return IsSameName(other.name, parameter.name);
        });
    if (same != inherited.end()) {
      parameter.qualifiers = MergeQualifiers(std::move(same->qualifiers), parameter.qualifiers);
    }
  }
}

void CarryOver(TSchemaProperty& inherited, TSchemaProperty& property) {
  const bool isSameType = property.type == inherited.type && property.isArray == inherited.isArray;
  if (!property.hasDefault && inherited.hasDefault && isSameType) {
    property.hasDefault = true;
    property.defaultValue = inherited.defaultValue;
  }
}

void CarryOver(TSchemaMethod& inherited, TSchemaMethod& method) {
  OverrideParameters(std::move(inherited.parameters), method.parameters);
}

/// An overriding feature takes the place of the one that it overrides, so that the order of the
/// features stays that of the root class.
template <typename TFeature>
void MergeFeatures(std::vector<TFeature>& features, const std::vector<TFeature>& own,
                   const std::string& className) {
  std::unordered_map<std::string, std::size_t> places;
  for (std::size_t i = 0; i < features.size(); ++i) {
    places.emplace(FoldName(features[i].name), i);
  }
  for (const TFeature& feature : own) {
    const auto found = places.find(FoldName(feature.name));
    if (found == places.end()) {
      features.push_back(feature);
      features.back().classOrigin = className;
      continue;
    }
    TFeature& inherited = features[found->second];
    TFeature merged = feature;
    merged.classOrigin = inherited.classOrigin;
    merged.qualifiers = MergeQualifiers(std::move(inherited.qualifiers), feature.qualifiers);
    CarryOver(inherited, merged);
    inherited = std::move(merged);
  }
}

std::vector<TCIMQualifier> TakeQualifiers(TSchemaQualifiers&& qualifiers) {
  std::vector<TCIMQualifier> result;
  result.reserve(qualifiers.size());
  for (TSchemaQualifier& qualifier : qualifiers) {
    result.push_back({std::move(qualifier.name), std::move(qualifier.value)});
  }
  return result;
}

void TakeElement(TSchemaElement&& element, TCIMElementDeclaration& declaration) {
  declaration.type = element.type;
  declaration.isArray = element.isArray;
  declaration.name = std::move(element.name);
  declaration.referenceClass = std::move(element.referenceClass);
  declaration.qualifiers = TakeQualifiers(std::move(element.qualifiers));
}

TCIMPropertyDeclaration TakeProperty(TSchemaProperty&& property) {
  TCIMPropertyDeclaration declaration;
  declaration.classOrigin = std::move(property.classOrigin);
  const bool hasDefault = property.hasDefault;
  TCIMValue value = std::move(property.defaultValue);
  TakeElement(std::move(property), declaration);
  ApplyPropertyQualifiers(declaration);
  declaration.defaultValue =
      hasDefault ? std::move(value) : TCIMValue::Null(declaration.type, declaration.isArray);
  return declaration;
}

TCIMMethodDeclaration TakeMethod(TSchemaMethod&& method) {
  TCIMMethodDeclaration declaration;
  declaration.classOrigin = std::move(method.classOrigin);
  for (TSchemaElement& element : method.parameters) {
    TCIMParameterDeclaration parameter;
    TakeElement(std::move(element), parameter);
    ApplyParameterQualifiers(parameter);
    declaration.parameters.push_back(std::move(parameter));
  }
  TakeElement(std::move(method), declaration);
  ApplyElementQualifiers(declaration);
  return declaration;
}

}  // namespace

const TSchemaQualifier* FindQualifier(const TSchemaQualifiers& qualifiers, const char* name) {
  const auto found = std::find_if(
      qualifiers.begin(), qualifiers.end(),
      [name](const TSchemaQualifier& qualifier) { return IsSameName(qualifier.name, name); });
  return found == qualifiers.end() ? nullptr : &*found;
}

bool HasQualifier(const TSchemaQualifiers& qualifiers, const char* name) {
  const TSchemaQualifier* qualifier = FindQualifier(qualifiers, name);
  return qualifier != nullptr && qualifier->value == TCIMValue::Boolean(true);
}

bool IsSameClass(const TSchemaClass& left, const TSchemaClass& right) {
  return IsSameName(left.name, right.name) && IsSameName(left.superclass, right.superclass) &&
         AreSameQualifiers(left.qualifiers, right.qualifiers) &&
         IsSameList(left.properties, right.properties, IsSameProperty) &&
         IsSameList(left.methods, right.methods, IsSameMethod);
}

void InheritInto(TSchemaClass& declaration, const TSchemaClass& subclass) {
  declaration.name = subclass.name;
  declaration.superclass = subclass.superclass;
  declaration.file = subclass.file;
  declaration.position = subclass.position;
  declaration.qualifiers = MergeQualifiers(std::move(declaration.qualifiers), subclass.qualifiers);
  MergeFeatures(declaration.properties, subclass.properties, subclass.name);
  MergeFeatures(declaration.methods, subclass.methods, subclass.name);
}

TCIMClassDeclaration MakeDeclaration(TSchemaClass&& declaration) {
  TCIMClassDeclaration result;
  result.name = std::move(declaration.name);
  result.superclass = std::move(declaration.superclass);
  result.qualifiers = TakeQualifiers(std::move(declaration.qualifiers));
  ApplyClassQualifiers(result);
  result.properties.reserve(declaration.properties.size());
  for (TSchemaProperty& property : declaration.properties) {
    result.properties.push_back(TakeProperty(std::move(property)));
  }
  for (TSchemaMethod& method : declaration.methods) {
    result.methods.push_back(TakeMethod(std::move(method)));
  }
  return result;
}

}  // namespace NZEPQEL20
