// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/contract/TCIMValue.h"
#include "platform/schema/TMofToken.h"

namespace NZEPQEL20 {

/// A constant as a MOF file writes it, without a type yet.
struct TMofLiteral {
  enum class EKind : std::uint8_t { kNull, kBoolean, kInteger, kReal, kString, kChar, kAlias };

  EKind kind = EKind::kNull;
  bool isNegative = false;
  bool isOverflow = false;  ///< A number that no type can hold.
  TMofPosition position;
  std::uint64_t magnitude = 0;  ///< Integer without its sign; char unit; 1 for TRUE.
  double real = 0;
  std::string text;  ///< Content of a string; name of an alias with its `$`; spelling of a real.
};

/// A constant or an array of constants.
struct TMofInitializer {
  bool isArray = false;
  TMofPosition position;
  std::vector<TMofLiteral> literals;  ///< Exactly one when it is no array.
};

/// The ways in which a qualifier is inherited, as far as they were written down.
struct TMofFlavors {
  bool hasOverride = false;
  bool isOverridable = true;
  bool hasScope = false;
  bool toSubclass = true;
};

/// A qualifier on an element.
struct TMofQualifier {
  std::string name;
  TMofPosition position;
  bool hasValue = false;
  TMofInitializer value;
  TMofFlavors flavors;
};

/// `Qualifier Name : type = default, Scope(...), Flavor(...);`
struct TMofQualifierDeclaration {
  std::string name;
  TMofPosition position;
  ECIMType type = ECIMType::kString;
  bool isArray = false;
  bool hasDefault = false;
  TMofInitializer defaultValue;
  TMofFlavors flavors;
};

/// What properties, methods and parameters have in common.
struct TMofElement {
  std::string name;
  TMofPosition position;
  std::vector<TMofQualifier> qualifiers;
  ECIMType type = ECIMType::kNone;
  std::string referenceClass;
  bool isArray = false;
};

struct TMofProperty : TMofElement {
  bool hasDefault = false;
  TMofInitializer defaultValue;
};

struct TMofMethod : TMofElement {
  std::vector<TMofElement> parameters;
};

/// A class as one file declares it.
struct TMofClass {
  std::string name;
  TMofPosition position;
  std::string superclass;
  std::vector<TMofQualifier> qualifiers;
  std::vector<TMofProperty> properties;
  std::vector<TMofMethod> methods;
};

struct TMofInstanceProperty {
  std::string name;
  TMofPosition position;
  TMofInitializer value;
};

/// An instance as one file declares it.
struct TMofInstance {
  std::string className;
  std::string alias;  ///< With its `$`; empty when there is none.
  std::string nameSpace;
  std::string file;
  TMofPosition position;
  unsigned int unit = 0;  ///< Aliases hold within one unit: a file with all that it includes.
  std::vector<TMofInstanceProperty> properties;
};

}  // namespace NZEPQEL20
