// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/contract/TCIMClassDeclaration.h"
#include "platform/schema/TMofToken.h"

namespace NZEPQEL20 {

/// A qualifier with its typed value and the flavors that decide how it is inherited.
struct TSchemaQualifier {
  std::string name;
  TCIMValue value;
  bool toSubclass = true;
  bool isOverridable = true;
};
using TSchemaQualifiers = std::vector<TSchemaQualifier>;

/// A property, method or parameter as its own class declares it.
struct TSchemaElement {
  std::string name;
  ECIMType type = ECIMType::kNone;  ///< As declared: an embedded instance is a string here.
  bool isArray = false;
  std::string referenceClass;
  TSchemaQualifiers qualifiers;
  TMofPosition position;
  std::string classOrigin;  ///< Set when the class is put together.
};

struct TSchemaProperty : TSchemaElement {
  bool hasDefault = false;
  TCIMValue defaultValue;
};

struct TSchemaMethod : TSchemaElement {
  std::vector<TSchemaElement> parameters;
};

/// A class as its declaration reads, with typed values, without what it inherits.
struct TSchemaClass {
  std::string name;
  std::string superclass;
  TSchemaQualifiers qualifiers;
  std::vector<TSchemaProperty> properties;
  std::vector<TSchemaMethod> methods;
  std::string file;
  TMofPosition position;
  std::size_t rank = 0;  ///< Of the folder that the file is in; a cache does not keep it.
};

/// The qualifier called `name`, compared without case; null when there is none.
const TSchemaQualifier* FindQualifier(const TSchemaQualifiers& qualifiers, const char* name);

/// Whether the boolean qualifier is there and TRUE.
bool HasQualifier(const TSchemaQualifiers& qualifiers, const char* name);

/// Whether both declare the same; where they stand, the case of names and the order of qualifiers
/// do not matter.
bool IsSameClass(const TSchemaClass& left, const TSchemaClass& right);

/// What `subclass` says, laid over all that `declaration` has and passes on. Afterwards
/// `declaration` is the subclass.
void InheritInto(TSchemaClass& declaration, const TSchemaClass& subclass);

/// The declaration in the form of the contract.
TCIMClassDeclaration MakeDeclaration(TSchemaClass&& declaration);

}  // namespace NZEPQEL20
