// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <utility>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/schema/TMofParser.h"
#include "platform/schema/TMofSyntaxError.h"

namespace NZEPQEL20 {

namespace {

constexpr std::size_t kMaxQualifiers = 256;
constexpr std::size_t kQualifierWeight = 4;

bool IsScope(const std::string& name) {
  constexpr std::array<const char*, 10> kScopes = {
      "schema",   "class",     "association", "indication", "qualifier",
      "property", "reference", "method",      "parameter",  "any"};
  return std::any_of(kScopes.begin(), kScopes.end(),
                     [&name](const char* scope) { return IsSameName(name, scope); });
}

/// Flavors that say nothing about how a qualifier is inherited, some of other systems among them.
bool IsFlavorWithoutMeaning(const std::string& name) {
  constexpr std::array<const char*, 4> kNames = {"Translatable", "ToInstance", "NotToInstance",
                                                 "Amended"};
  return std::any_of(kNames.begin(), kNames.end(),
                     [&name](const char* known) { return IsSameName(name, known); });
}

}  // namespace

std::vector<TMofQualifier> TMofParser::ParseQualifiers() {
  TQualifiers qualifiers;
  ParseQualifierList(qualifiers);
  while (IsSymbol('[') && Peek(1).kind == EMofToken::kIdentifier) {
    Warn(Peek().position, "a second '[' before one element; its qualifiers are added");
    ParseQualifierList(qualifiers);
  }
  return qualifiers;
}

void TMofParser::ParseQualifierList(TQualifiers& qualifiers) {
  Expect('[', "before the qualifiers");
  if (IsSymbol(']')) {
    Warn(Take().position, "'[' and ']' with no qualifier between them");
    return;
  }
  const std::size_t before = m_taken;
  do {
    if (m_taken != before && IsSymbol(']')) {
      Warn(Peek().position, "',' behind the last qualifier");
      break;
    }
    if (qualifiers.size() == kMaxQualifiers) {
      throw TSyntaxError(Peek().position, "more than 256 qualifiers on one element");
    }
    TMofQualifier qualifier = ParseQualifier();
    const auto same = std::find_if(qualifiers.begin(), qualifiers.end(),
                                   [&qualifier](const TMofQualifier& other) {
                                     return IsSameName(other.name, qualifier.name);
                                   });
    if (same == qualifiers.end()) {
      qualifiers.push_back(std::move(qualifier));
    } else {
      Warn(qualifier.position,
           "qualifier " + qualifier.name + " is given twice; the last one holds");
      *same = std::move(qualifier);
    }
  } while (TakeSymbol(','));
  Expect(']', "or ',' after qualifier " + qualifiers.back().name);
}

TMofQualifier TMofParser::ParseQualifier() {
  TMofQualifier qualifier;
  const TMofToken name = ExpectName("the name of a qualifier");
  Reserve(kQualifierWeight, name.position);
  qualifier.name = std::string(name.text);
  qualifier.position = name.position;
  ParseQualifierValue(qualifier);
  if (TakeSymbol(':')) {
    do {
      ParseFlavor(qualifier.flavors);
    } while (Peek().kind == EMofToken::kIdentifier);
  }
  return qualifier;
}

void TMofParser::ParseQualifierValue(TMofQualifier& qualifier) {
  if (TakeSymbol('(')) {
    if (IsSymbol(')')) {
      Warn(Take().position, "no value between the parentheses of qualifier " + qualifier.name);
      return;
    }
    qualifier.hasValue = true;
    qualifier.value = ParseInitializer(true);
    Expect(')', "after the value of qualifier " + qualifier.name);
  } else if (IsSymbol('{')) {
    qualifier.hasValue = true;
    qualifier.value = ParseInitializer(true);
  } else if (IsSymbol('=')) {
    const TMofPosition position = Take().position;
    qualifier.hasValue = true;
    qualifier.value = ParseInitializer(true);
    Warn(position,
         "'=' before the value of qualifier " + qualifier.name + ", where parentheses belong");
  }
}

void TMofParser::ParseFlavor(TMofFlavors& flavors) {
  const TMofToken token = ExpectName("a flavor");
  const std::string name(token.text);
  const bool isEnable = IsSameName(name, "EnableOverride");
  const bool isSubclass = IsSameName(name, "ToSubclass");
  if (isEnable || IsSameName(name, "DisableOverride")) {
    if (flavors.hasOverride && flavors.isOverridable != isEnable) {
      throw TSyntaxError(token.position, "EnableOverride and DisableOverride exclude each other");
    }
    flavors.hasOverride = true;
    flavors.isOverridable = isEnable;
  } else if (isSubclass || IsSameName(name, "Restricted")) {
    if (flavors.hasScope && flavors.toSubclass != isSubclass) {
      throw TSyntaxError(token.position, "ToSubclass and Restricted exclude each other");
    }
    flavors.hasScope = true;
    flavors.toSubclass = isSubclass;
  } else if (!IsFlavorWithoutMeaning(name)) {
    Warn(token.position, "unknown flavor '" + name.substr(0, 40) + "' is ignored");
  }
}

void TMofParser::ParseQualifierDeclaration() {
  Take();
  TMofQualifierDeclaration declaration;
  const TMofToken name = ExpectName("the name of a qualifier");
  Reserve(kQualifierWeight, name.position);
  declaration.name = std::string(name.text);
  declaration.position = name.position;
  Expect(':', "after qualifier " + declaration.name);
  declaration.type = FindMofType(Peek().text);
  if (Peek().kind != EMofToken::kIdentifier || declaration.type == ECIMType::kNone) {
    Fail("the type of qualifier " + declaration.name);
  }
  Take();
  declaration.isArray = ParseArrayMark();
  if (TakeSymbol('=')) {
    declaration.hasDefault = true;
    declaration.defaultValue = ParseInitializer();
  }
  Expect(',', "and Scope after the type of qualifier " + declaration.name);
  if (IsWord("flavor")) {
    Warn(Peek().position, "Flavor stands before Scope");
    ParseFlavors(declaration.flavors);
    Expect(',', "and Scope after the flavors of qualifier " + declaration.name);
    ParseScopes();
  } else {
    ParseScopes();
    if (TakeSymbol(',')) {
      ParseFlavors(declaration.flavors);
    }
  }
  Expect(';', "after qualifier " + declaration.name);
  m_sink.OnQualifier(m_source.name, std::move(declaration));
}

void TMofParser::ParseFlavors(TMofFlavors& flavors) {
  if (!IsWord("flavor")) {
    Fail("Flavor after Scope");
  }
  Take();
  Expect('(', "after Flavor");
  do {
    ParseFlavor(flavors);
    // Some write blanks here, as on the use of a qualifier.
  } while (TakeSymbol(',') || Peek().kind == EMofToken::kIdentifier);
  Expect(')', "after the flavors");
}

void TMofParser::ParseScopes() {
  if (!IsWord("scope")) {
    Fail("Scope");
  }
  Take();
  Expect('(', "after Scope");
  do {
    if (Peek().kind != EMofToken::kIdentifier || !IsScope(std::string(Peek().text))) {
      Fail("a kind of element, such as property or any");
    }
    Take();
  } while (TakeSymbol(','));
  Expect(')', "after the scopes");
}

TMofInitializer TMofParser::ParseInitializer(bool takesWords) {
  TMofInitializer initializer;
  initializer.position = Peek().position;
  if (TakeSymbol('{')) {
    initializer.isArray = true;
    ParseArray(initializer, takesWords);
  } else {
    initializer.literals.push_back(ParseLiteral(takesWords));
  }
  return initializer;
}

void TMofParser::ParseArray(TMofInitializer& initializer, bool takesWords) {
  if (TakeSymbol('}')) {
    return;
  }
  do {
    if (!initializer.literals.empty() && IsSymbol('}')) {
      Warn(Peek().position, "',' behind the last element of the array");
      break;
    }
    initializer.literals.push_back(ParseLiteral(takesWords));
  } while (TakeSymbol(','));
  Expect('}', "or ',' after an element of the array");
}

TMofLiteral TMofParser::ParseLiteral(bool takesWords) {
  using EKind = TMofLiteral::EKind;
  const TMofToken& next = Peek();
  Reserve(1, next.position);
  TMofLiteral literal;
  literal.position = next.position;
  if (next.kind == EMofToken::kString) {
    literal.kind = EKind::kString;
    literal.text = ParseString();
    return literal;
  }
  if (takesWords && IsBareWord()) {
    Warn(next.position, "a word without quotation marks; it is taken as a string");
    literal.kind = EKind::kString;
    literal.text = std::string(Take().text);
    return literal;
  }
  if (IsWord("true") || IsWord("false")) {
    literal.kind = EKind::kBoolean;
    literal.magnitude = IsWord("true") ? 1 : 0;
  } else if (next.kind == EMofToken::kInteger || next.kind == EMofToken::kReal) {
    literal.kind = next.kind == EMofToken::kReal ? EKind::kReal : EKind::kInteger;
  } else if (next.kind == EMofToken::kChar) {
    literal.kind = EKind::kChar;
  } else if (next.kind == EMofToken::kAlias) {
    literal.kind = EKind::kAlias;
  } else if (!IsWord("null")) {
    Fail("a constant");
  }
  const TMofToken token = Take();
  literal.isNegative = token.isNegative;
  literal.isOverflow = token.isOverflow;
  literal.real = token.real;
  literal.magnitude = literal.kind == EKind::kBoolean ? literal.magnitude : token.magnitude;
  // A real number may prove to be a text, such as that of a version.
  const bool isSpelt = literal.kind == EKind::kAlias || literal.kind == EKind::kReal;
  literal.text = isSpelt ? std::string(token.text) : std::string();
  return literal;
}

bool TMofParser::IsBareWord() {
  if (Peek().kind != EMofToken::kIdentifier || IsWord("true") || IsWord("false") ||
      IsWord("null")) {
    return false;
  }
  // Behind a value that is missing stands what no value ends with.
  return IsSymbol(')', 1) || IsSymbol('}', 1) || IsSymbol(',', 1) || IsSymbol(']', 1);
}

std::string TMofParser::ParseString() {
  if (Peek().kind != EMofToken::kString) {
    Fail("a string");
  }
  std::string text = std::move(Take().value);
  while (Peek().kind == EMofToken::kString) {
    text += Take().value;
  }
  return text;
}

}  // namespace NZEPQEL20
