// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/ReplyElements.h"

#include <array>
#include <cstring>
#include <initializer_list>

namespace NZEPQEL20::cimxml {
namespace {

using E = EElement;

constexpr std::uint64_t In(std::initializer_list<E> parents) {
  std::uint64_t mask = 0;
  for (const E parent : parents) mask |= std::uint64_t{1} << static_cast<unsigned int>(parent);
  return mask;
}

struct TRule {
  std::string_view name;
  E element;
  std::uint64_t parents;
};

constexpr std::uint64_t kResponses = In({E::kIMethodResponse, E::kMethodResponse});
constexpr std::uint64_t kObjects = In({E::kIReturnValue, E::kNamedInstance, E::kInstanceWithPath,
                                       E::kObjectWithPath, E::kValueObject, E::kParamValue});
constexpr std::uint64_t kProperties = In({E::kProperty, E::kPropertyArray, E::kPropertyReference});
constexpr std::uint64_t kParameters =
    In({E::kParameter, E::kParameterArray, E::kParameterReference, E::kParameterRefArray});
constexpr std::uint64_t kHolders = In({E::kReturnValue, E::kParamValue, E::kQualifier});

// Instances and classes may be documents of their own, inside texts.
constexpr TRule kRules[] = {
    {"CIM", E::kCim, In({E::kNone})},
    {"MESSAGE", E::kMessage, In({E::kCim})},
    {"SIMPLERSP", E::kSimpleRsp, In({E::kMessage})},
    {"IMETHODRESPONSE", E::kIMethodResponse, In({E::kSimpleRsp})},
    {"METHODRESPONSE", E::kMethodResponse, In({E::kSimpleRsp})},
    {"ERROR", E::kError, kResponses},
    {"IRETURNVALUE", E::kIReturnValue, kResponses},
    {"RETURNVALUE", E::kReturnValue, kResponses},
    {"PARAMVALUE", E::kParamValue, kResponses},
    {"IPARAMVALUE", E::kParamValue, kResponses},
    {"VALUE.NAMEDINSTANCE", E::kNamedInstance, In({E::kIReturnValue})},
    {"VALUE.INSTANCEWITHPATH", E::kInstanceWithPath, In({E::kIReturnValue})},
    {"VALUE.OBJECTWITHPATH", E::kObjectWithPath, In({E::kIReturnValue})},
    {"VALUE.OBJECTWITHLOCALPATH", E::kObjectWithPath, In({E::kIReturnValue})},
    {"VALUE.OBJECT", E::kValueObject, In({E::kIReturnValue})},
    {"OBJECTPATH", E::kObjectPath, In({E::kIReturnValue})},
    {"INSTANCEPATH", E::kInstancePath,
     In({E::kIReturnValue, E::kInstanceWithPath, E::kObjectWithPath, E::kObjectPath,
         E::kValueReference})},
    {"LOCALINSTANCEPATH", E::kLocalInstancePath, In({E::kValueReference, E::kObjectWithPath})},
    {"CLASSPATH", E::kClassPath, In({E::kObjectWithPath, E::kObjectPath, E::kValueReference})},
    {"LOCALCLASSPATH", E::kLocalClassPath, In({E::kValueReference, E::kObjectWithPath})},
    {"NAMESPACEPATH", E::kNamespacePath, In({E::kInstancePath, E::kClassPath})},
    {"HOST", E::kHost, In({E::kNamespacePath})},
    {"LOCALNAMESPACEPATH", E::kLocalNamespacePath,
     In({E::kNamespacePath, E::kLocalInstancePath, E::kLocalClassPath})},
    {"NAMESPACE", E::kNamespace, In({E::kLocalNamespacePath})},
    {"INSTANCENAME", E::kInstanceName,
     In({E::kIReturnValue, E::kNamedInstance, E::kInstancePath, E::kLocalInstancePath,
         E::kValueReference})},
    {"KEYBINDING", E::kKeyBinding, In({E::kInstanceName})},
    {"KEYVALUE", E::kKeyValue, In({E::kKeyBinding, E::kInstanceName})},
    {"VALUE.REFERENCE", E::kValueReference,
     In({E::kKeyBinding, E::kInstanceName, E::kPropertyReference, E::kValueRefArray,
         E::kReturnValue, E::kParamValue})},
    {"VALUE.REFARRAY", E::kValueRefArray, In({E::kPropertyArray, E::kReturnValue, E::kParamValue})},
    {"CLASSNAME", E::kClassName,
     In({E::kIReturnValue, E::kClassPath, E::kLocalClassPath, E::kValueReference})},
    {"INSTANCE", E::kInstance, kObjects | In({E::kNone})},
    {"CLASS", E::kClass, In({E::kIReturnValue, E::kNone})},
    {"PROPERTY", E::kProperty, In({E::kInstance, E::kClass})},
    {"PROPERTY.ARRAY", E::kPropertyArray, In({E::kInstance, E::kClass})},
    {"PROPERTY.REFERENCE", E::kPropertyReference, In({E::kInstance, E::kClass})},
    {"QUALIFIER", E::kQualifier,
     In({E::kInstance, E::kClass, E::kMethod}) | kProperties | kParameters},
    {"METHOD", E::kMethod, In({E::kClass})},
    {"PARAMETER", E::kParameter, In({E::kMethod})},
    {"PARAMETER.ARRAY", E::kParameterArray, In({E::kMethod})},
    {"PARAMETER.REFERENCE", E::kParameterReference, In({E::kMethod})},
    {"PARAMETER.REFARRAY", E::kParameterRefArray, In({E::kMethod})},
    {"VALUE", E::kValue, kHolders | In({E::kProperty, E::kValueArray})},
    {"VALUE.ARRAY", E::kValueArray, kHolders | In({E::kPropertyArray})},
    {"VALUE.NULL", E::kValueNull, In({E::kValueArray, E::kValueRefArray})},
};

constexpr std::size_t kElements = static_cast<std::size_t>(E::kValueNull) + 1;
constexpr std::size_t kLongestName = 25;

// Rules by the length of the name: few names share one.
struct TIndex {
  std::array<std::array<const TRule*, 8>, kLongestName + 1> byLength{};
  std::array<std::uint64_t, kElements> parents{};
};

constexpr TIndex MakeIndex() {
  TIndex index;
  for (const TRule& rule : kRules) {
    auto& bucket = index.byLength[rule.name.size()];
    std::size_t place = 0;
    while (bucket[place] != nullptr) ++place;
    bucket[place] = &rule;
    index.parents[static_cast<std::size_t>(rule.element)] = rule.parents;
  }
  return index;
}

constexpr TIndex kIndex = MakeIndex();

}  // namespace

EElement FindElement(std::string_view name) {
  if (name.size() > kLongestName) return E::kNone;
  for (const TRule* rule : kIndex.byLength[name.size()]) {
    if (rule == nullptr) break;
    if (rule->name == name) return rule->element;
  }
  return E::kNone;
}

bool MayContain(EElement parent, EElement child) {
  const std::uint64_t parents = kIndex.parents[static_cast<std::size_t>(child)];
  return ((parents >> static_cast<unsigned int>(parent)) & 1U) != 0;
}

std::string_view TAttributes::Find(std::string_view name) const {
  for (const char* const* pair = m_pairs; *pair != nullptr; pair += 2) {
    // Most names differ in their first letter; their lengths need not be known for that.
    const bool isIt = pair[0][0] == name.front() &&
                      std::strncmp(pair[0], name.data(), name.size()) == 0 &&
                      pair[0][name.size()] == '\0';
    if (isIt) return pair[1];
  }
  return {};
}

}  // namespace NZEPQEL20::cimxml
