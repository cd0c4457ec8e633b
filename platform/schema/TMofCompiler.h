// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "platform/schema/TMofDeclarations.h"
#include "platform/schema/TMofProblems.h"
#include "platform/schema/TMofQualifierTable.h"
#include "platform/schema/TMofValue.h"
#include "platform/schema/TSchemaClass.h"

namespace NZEPQEL20 {

/// Gives declarations as they were parsed their types: qualifiers by the table of qualifiers,
/// defaults by the properties. What does not fit is reported and left out.
class TMofCompiler {
 public:
  TMofCompiler(TMofQualifierTable& qualifiers, TMofProblems& problems)
      : m_qualifiers(&qualifiers), m_problems(problems) {}

  /// Goes on with another table.
  void Use(TMofQualifierTable& qualifiers) { m_qualifiers = &qualifiers; }

  TSchemaClass Compile(const std::string& file, TMofClass&& declaration);

  /// Adds the qualifier to the table.
  void Declare(const std::string& file, const TMofQualifierDeclaration& declaration);

 private:
  TSchemaQualifiers CompileQualifiers(const std::vector<TMofQualifier>& qualifiers);
  TSchemaQualifier CompileQualifier(const TMofQualifier& qualifier);
  TMofQualifierType GuessQualifier(const TMofQualifier& qualifier);
  void CompileElement(TMofElement&& element, TSchemaElement& result);
  void CompileDefault(const TMofProperty& property, TSchemaProperty& result);
  /// Takes a default that vendors' compilers let pass; false when it is none of those.
  bool MendDefault(const TMofProperty& property, TSchemaProperty& result,
                   const TMofValueError& error);
  /// The same for the value of a qualifier.
  TCIMValue ConvertOrMend(const TMofQualifier& qualifier, const TMofQualifierType& type);
  void CheckValues(const TSchemaElement& element);
  void CompileProperties(TMofClass& declaration, TSchemaClass& result);
  void CompileMethods(TMofClass& declaration, TSchemaClass& result);

  TMofQualifierTable* m_qualifiers;
  TMofProblems& m_problems;
  std::unordered_set<std::string> m_undeclared;  ///< Reported already, in folded form.
  std::string m_file;
};

}  // namespace NZEPQEL20
