// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <utility>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/schema/TMofParser.h"
#include "platform/schema/TMofSyntaxError.h"

namespace NZEPQEL20 {

namespace {

constexpr std::size_t kMaxParameters = 256;
// Some steps compare every feature with every other; the largest known class has some 150.
constexpr std::size_t kMaxFeatures = 1024;
constexpr std::size_t kClassWeight = 8;
constexpr std::size_t kFeatureWeight = 4;

}  // namespace

ECIMType FindMofType(std::string_view name) {
  constexpr std::array<ECIMType, 14> kTypes = {
      ECIMType::kBoolean, ECIMType::kChar16,  ECIMType::kUInt8,  ECIMType::kUInt16,
      ECIMType::kUInt32,  ECIMType::kUInt64,  ECIMType::kSInt8,  ECIMType::kSInt16,
      ECIMType::kSInt32,  ECIMType::kSInt64,  ECIMType::kReal32, ECIMType::kReal64,
      ECIMType::kString,  ECIMType::kDateTime};
  const std::string text(name);
  const auto* found = std::find_if(kTypes.begin(), kTypes.end(), [&text](ECIMType type) {
    return IsSameName(text, GetTypeName(type));
  });
  return found == kTypes.end() ? ECIMType::kNone : *found;
}

void TMofParser::ParseClass(TQualifiers&& qualifiers) {
  Take();
  TMofClass declaration;
  declaration.qualifiers = std::move(qualifiers);
  const TMofToken name = ExpectName("the name of a class");
  Reserve(kClassWeight, name.position);
  declaration.position = name.position;
  declaration.name = std::string(name.text);
  if (IsWord("as") && Peek(1).kind == EMofToken::kAlias) {
    Take();
    Take();
  }
  if (TakeSymbol(':')) {
    declaration.superclass = std::string(ExpectName("the name of the superclass").text);
  }
  Expect('{', "before the features of class " + declaration.name);
  bool isClosed = false;
  while (!isClosed && ParseFeature(declaration)) {
    isClosed = TakeSymbol('}');
  }
  // A class that ends with the file may lack anything; one that runs into the next declaration
  // lacks a brace.
  if (Peek().kind == EMofToken::kEnd && !isClosed) {
    return;
  }
  const std::string what = "class " + declaration.name;
  m_sink.OnClass(m_source.name, std::move(declaration));
  if (isClosed) {
    ParseEnd(what);
  }
}

bool TMofParser::IsClassCutOff() {
  return Peek().kind == EMofToken::kEnd || IsDeclarationStart();
}

void TMofParser::ReportCutOff(const std::string& what, TQualifiers&& qualifiers) {
  m_pending = std::move(qualifiers);
  Report(Peek().position, "expected '}' at the end of " + what +
                              (Peek().kind == EMofToken::kEnd ? ", found end of file"
                                                              : ", found the next declaration"));
}

bool TMofParser::ParseFeature(TMofClass& declaration) {
  if (IsSymbol('}')) {
    return true;
  }
  if (IsSymbol(';')) {
    Warn(Take().position, "';' without a feature");
    return true;
  }
  m_open = {};
  try {
    TQualifiers qualifiers;
    if (IsSymbol('[')) {
      qualifiers = ParseQualifiers();
    }
    if (IsClassCutOff()) {
      ReportCutOff("class " + declaration.name, std::move(qualifiers));
      return false;
    }
    TMofElement element;
    element.qualifiers = std::move(qualifiers);
    ParseTypeAndName(element);
    if (TakeSymbol('(')) {
      ParseMethod(std::move(element), declaration);
    } else {
      ParseProperty(std::move(element), declaration);
    }
  } catch (const TSyntaxError& error) {
    if (error.isFatal) {
      throw;
    }
    Report(error.position, error.what());
    SkipFeature();
  }
  return true;
}

bool TMofParser::IsClosingBrace() {
  if (!IsSymbol('}') || m_open.braces != 0) {
    return false;
  }
  // The brace of an array goes on with its qualifier, or ends a property that others follow.
  if (IsSymbol(']', 1) || IsSymbol(')', 1) || IsSymbol(',', 1) || IsSymbol('}', 1)) {
    return false;
  }
  const bool isProperty = IsSymbol(';', 1) && (IsSymbol('}', 2) || IsWord("ref", 3) ||
                                               FindMofType(Peek(2).text) != ECIMType::kNone);
  return !isProperty;
}

void TMofParser::SkipFeature() {
  // No semicolon stands inside parentheses, brackets or array braces, so the next one ends the
  // feature whatever is still open.
  while (!IsClassCutOff() && !IsClosingBrace()) {
    if (TakeSymbol(';')) {
      return;
    }
    const bool isOpen = m_open.braces + m_open.brackets + m_open.parentheses != 0;
    if (!isOpen && IsSymbol('[') && Peek(1).kind == EMofToken::kIdentifier) {
      // Qualifiers of the next feature: this one lacks its semicolon.
      return;
    }
    Take();
  }
}

void TMofParser::ParseTypeAndName(TMofElement& element) {
  Reserve(kFeatureWeight, Peek().position);
  if (IsWord("void")) {
    throw TSyntaxError(Peek().position,
                       "'void' is not a CIM type: every method returns a value, such as uint32");
  }
  if (IsWord("ref", 1) && Peek(2).kind == EMofToken::kIdentifier) {
    element.type = ECIMType::kReference;
    element.referenceClass = std::string(ExpectName("the name of a class before REF").text);
    Take();
  } else {
    element.type = FindMofType(Peek().text);
    if (Peek().kind != EMofToken::kIdentifier || element.type == ECIMType::kNone) {
      Fail("a type, or a class and REF");
    }
    Take();
  }
  const TMofToken name = ExpectName("a name after the type");
  element.name = std::string(name.text);
  element.position = name.position;
}

bool TMofParser::ParseArrayMark() {
  // What else follows a bracket is the qualifier of the next feature.
  if (!IsSymbol('[') || (Peek(1).kind != EMofToken::kInteger && !IsSymbol(']', 1))) {
    return false;
  }
  Take();
  if (Peek().kind == EMofToken::kInteger) {
    const TMofToken size = Take();
    if (size.isNegative || size.magnitude == 0) {
      throw TSyntaxError(size.position, "the size of an array must be positive");
    }
  }
  Expect(']', "after the size of the array");
  return true;
}

void TMofParser::CheckRoom(std::size_t count, const TMofElement& element) {
  if (count == kMaxFeatures) {
    throw TSyntaxError(element.position,
                       "more than 1024 features; " + element.name + " is left out");
  }
}

void TMofParser::ParseProperty(TMofElement&& element, TMofClass& declaration) {
  CheckRoom(declaration.properties.size(), element);
  TMofProperty property;
  static_cast<TMofElement&>(property) = std::move(element);
  const TMofPosition bracket = Peek().position;
  property.isArray = ParseArrayMark();
  if (property.isArray && property.type == ECIMType::kReference) {
    throw TSyntaxError(bracket, "reference " + property.name + " cannot be an array");
  }
  if (TakeSymbol('=')) {
    property.hasDefault = true;
    property.defaultValue = ParseInitializer();
  }
  Expect(';', "after property " + property.name);
  declaration.properties.push_back(std::move(property));
}

void TMofParser::ParseMethod(TMofElement&& element, TMofClass& declaration) {
  CheckRoom(declaration.methods.size(), element);
  TMofMethod method;
  static_cast<TMofElement&>(method) = std::move(element);
  if (!IsSymbol(')')) {
    do {
      if (method.parameters.size() == kMaxParameters) {
        throw TSyntaxError(Peek().position,
                           "method " + method.name + " has more than 256 parameters");
      }
      method.parameters.push_back(ParseParameter());
    } while (TakeSymbol(','));
  }
  Expect(')', "after the parameters of method " + method.name);
  Expect(';', "after method " + method.name);
  declaration.methods.push_back(std::move(method));
}

TMofElement TMofParser::ParseParameter() {
  TMofElement parameter;
  if (IsSymbol('[')) {
    parameter.qualifiers = ParseQualifiers();
  }
  ParseTypeAndName(parameter);
  parameter.isArray = ParseArrayMark();
  return parameter;
}

void TMofParser::ParseInstance() {
  const TMofPosition position = Take().position;
  if (!IsWord("of")) {
    Fail("'of' after 'instance'");
  }
  Take();
  TMofInstance instance;
  instance.file = m_source.name;
  instance.position = position;
  instance.className = std::string(ExpectName("the name of a class").text);
  Reserve(kClassWeight, position);
  if (IsWord("as")) {
    Take();
    if (Peek().kind != EMofToken::kAlias) {
      Fail("an alias, such as $Name");
    }
    instance.alias = std::string(Take().text);
  }
  const std::string what = "the instance of " + instance.className;
  Expect('{', "before the properties of " + what);
  const std::size_t errors = m_problems.GetErrorCount();
  bool isClosed = false;
  while (!isClosed && ParseInstanceProperty(instance, what)) {
    isClosed = TakeSymbol('}');
  }
  // With a property lost it would be another instance.
  if (m_problems.GetErrorCount() == errors) {
    m_sink.OnInstance(m_source.name, std::move(instance));
  }
  if (isClosed) {
    ParseEnd(what);
  }
}

bool TMofParser::ParseInstanceProperty(TMofInstance& instance, const std::string& what) {
  if (IsSymbol('}')) {
    return true;
  }
  if (IsSymbol(';')) {
    Warn(Take().position, "';' without a property");
    return true;
  }
  m_open = {};
  try {
    TQualifiers qualifiers;
    if (IsSymbol('[')) {
      qualifiers = ParseQualifiers();
    }
    if (IsClassCutOff()) {
      ReportCutOff(what, std::move(qualifiers));
      return false;
    }
    const TMofToken name = ExpectName("the name of a property");
    Reserve(kFeatureWeight, name.position);
    if (instance.properties.size() == kMaxFeatures) {
      throw TSyntaxError(name.position, "more than 1024 properties in one instance");
    }
    TMofInstanceProperty property;
    property.name = std::string(name.text);
    property.position = name.position;
    Expect('=', "after property " + property.name);
    property.value = ParseInitializer();
    Expect(';', "after property " + property.name);
    instance.properties.push_back(std::move(property));
  } catch (const TSyntaxError& error) {
    if (error.isFatal) {
      throw;
    }
    Report(error.position, error.what());
    SkipFeature();
  }
  return true;
}

}  // namespace NZEPQEL20
