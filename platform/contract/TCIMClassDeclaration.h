// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20 {

/// A qualifier with its value, as declared or inherited.
struct TCIMQualifier {
  std::string name;
  TCIMValue value;
};

/// What a property, a method's return value and a parameter have in common.
struct TCIMElementDeclaration {
  std::string name;
  ECIMType type = ECIMType::kNone;  ///< kInstance for a string with EmbeddedInstance/-Object.
  bool isArray = false;
  std::string referenceClass;         ///< Class of a reference; empty otherwise.
  std::vector<std::string> valueMap;  ///< Parallel to `values`; numbers as the MOF spells them.
  std::vector<std::string> values;
  std::vector<TCIMQualifier> qualifiers;
};

/// A property or reference of a class.
struct TCIMPropertyDeclaration : TCIMElementDeclaration {
  bool isKey = false;
  TCIMValue defaultValue;   ///< NULL of the property's type when there is none.
  std::string classOrigin;  ///< The class that introduced the property.
};

/// A parameter of a method.
struct TCIMParameterDeclaration : TCIMElementDeclaration {
  bool isIn = true;
  bool isOut = false;
};

/// An extrinsic method.
struct TCIMMethodDeclaration : TCIMElementDeclaration {
  std::vector<TCIMParameterDeclaration> parameters;
  std::string classOrigin;
};

/// A class with everything it inherits, properties of the root class first.
struct TCIMClassDeclaration {
  std::string name;
  std::string superclass;  ///< Empty for a root class.
  bool isAssociation = false;
  bool isAbstract = false;
  std::vector<TCIMQualifier> qualifiers;
  std::vector<TCIMPropertyDeclaration> properties;
  std::vector<TCIMMethodDeclaration> methods;

  /// Compare names without case; null when there is none.
  DIAGSPLATFORM_EXPORT const TCIMPropertyDeclaration* FindProperty(const std::string& name) const;
  DIAGSPLATFORM_EXPORT const TCIMMethodDeclaration* FindMethod(const std::string& name) const;
};

}  // namespace NZEPQEL20
