// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string_view>

namespace NZEPQEL20::cimxml {

/// The elements of a reply (DSP0201) that are read; kNone for any other.
enum class EElement : std::uint8_t {
  kNone,
  kCim,
  kMessage,
  kSimpleRsp,
  kIMethodResponse,
  kMethodResponse,
  kError,
  kIReturnValue,
  kReturnValue,
  kParamValue,
  kNamedInstance,
  kInstanceWithPath,
  kObjectWithPath,
  kValueObject,
  kObjectPath,
  kInstancePath,
  kLocalInstancePath,
  kClassPath,
  kLocalClassPath,
  kNamespacePath,
  kHost,
  kLocalNamespacePath,
  kNamespace,
  kInstanceName,
  kKeyBinding,
  kKeyValue,
  kValueReference,
  kValueRefArray,
  kClassName,
  kInstance,
  kClass,
  kProperty,
  kPropertyArray,
  kPropertyReference,
  kQualifier,
  kMethod,
  kParameter,
  kParameterArray,
  kParameterReference,
  kParameterRefArray,
  kValue,
  kValueArray,
  kValueNull,
};

/// The element of that name, which is compared with case.
EElement FindElement(std::string_view name);

/// Whether `child` has a meaning inside `parent`; kNone stands for the document itself.
bool MayContain(EElement parent, EElement child);

/// Names and values of a tag's attributes.
class TAttributes {
 public:
  explicit TAttributes(const char* const* pairs) : m_pairs(pairs) {}

  /// Empty when there is none of that name. `name` must not be empty.
  std::string_view Find(std::string_view name) const;

 private:
  const char* const* m_pairs;
};

}  // namespace NZEPQEL20::cimxml
