// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TMofQualifierTable.h"

#include <algorithm>
#include <array>

namespace NZEPQEL20 {

namespace {

enum EFlavor : unsigned int { kPlain = 0, kFixed = 1, kRestricted = 2 };

struct TStandard {
  const char* name;
  ECIMType type;
  bool isArray;
  unsigned int flavors;
  bool isTrue;  ///< Named without a value it is TRUE all the same; this is its declared default.
};

constexpr ECIMType kBool = ECIMType::kBoolean;
constexpr ECIMType kText = ECIMType::kString;

// The qualifiers of the final CIM schema 2.41, its optional ones, and those that older schema
// versions had.
constexpr std::array<TStandard, 74> kStandards = {{
    {"Abstract", kBool, false, kRestricted, false},
    {"Aggregate", kBool, false, kFixed, false},
    {"Aggregation", kBool, false, kFixed, false},
    {"Alias", kText, false, kPlain, false},
    {"ArrayType", kText, false, kFixed, false},
    {"Association", kBool, false, kFixed, false},
    {"BitMap", kText, true, kPlain, false},
    {"BitValues", kText, true, kPlain, false},
    {"ClassConstraint", kText, true, kPlain, false},
    {"Composition", kBool, false, kFixed, false},
    {"Correlatable", kText, true, kPlain, false},
    {"Counter", kBool, false, kPlain, false},
    {"Delete", kBool, false, kPlain, false},
    {"Deprecated", kText, true, kRestricted, false},
    {"Description", kText, false, kPlain, false},
    {"DisplayDescription", kText, false, kPlain, false},
    {"DisplayName", kText, false, kPlain, false},
    {"DN", kBool, false, kFixed, false},
    {"EmbeddedInstance", kText, false, kPlain, false},
    {"EmbeddedObject", kBool, false, kFixed, false},
    {"Exception", kBool, false, kFixed, false},
    {"Expensive", kBool, false, kPlain, false},
    {"Experimental", kBool, false, kRestricted, false},
    {"Gauge", kBool, false, kPlain, false},
    {"IfDeleted", kBool, false, kPlain, false},
    {"In", kBool, false, kFixed, true},
    {"Indication", kBool, false, kFixed, false},
    {"Invisible", kBool, false, kPlain, false},
    {"IsPUnit", kBool, false, kPlain, false},
    {"Key", kBool, false, kFixed, false},
    {"Large", kBool, false, kPlain, false},
    {"MappingStrings", kText, true, kPlain, false},
    {"Max", ECIMType::kUInt32, false, kPlain, false},
    {"MaxLen", ECIMType::kUInt32, false, kPlain, false},
    {"MaxValue", ECIMType::kSInt64, false, kPlain, false},
    {"MethodConstraint", kText, true, kPlain, false},
    {"Min", ECIMType::kUInt32, false, kPlain, false},
    {"MinLen", ECIMType::kUInt32, false, kPlain, false},
    {"MinValue", ECIMType::kSInt64, false, kPlain, false},
    {"ModelCorrespondence", kText, true, kPlain, false},
    {"Nonlocal", kText, false, kPlain, false},
    {"NonlocalType", kText, false, kPlain, false},
    {"NullValue", kText, false, kFixed, false},
    {"Octetstring", kBool, false, kFixed, false},
    {"Out", kBool, false, kFixed, false},
    {"Override", kText, false, kRestricted, false},
    {"Propagated", kText, false, kFixed, false},
    {"PropertyConstraint", kText, true, kPlain, false},
    {"PropertyUsage", kText, false, kPlain, false},
    {"Provider", kText, false, kPlain, false},
    {"PUnit", kText, false, kPlain, false},
    {"Read", kBool, false, kPlain, true},
    {"Reference", kText, false, kPlain, false},
    {"Required", kBool, false, kFixed, false},
    {"Revision", kText, false, kPlain, false},
    {"Schema", kText, false, kFixed, false},
    {"Source", kText, false, kPlain, false},
    {"SourceType", kText, false, kPlain, false},
    {"Static", kBool, false, kFixed, false},
    {"Structure", kBool, false, kFixed, false},
    {"Syntax", kText, false, kPlain, false},
    {"SyntaxType", kText, false, kPlain, false},
    {"Terminal", kBool, false, kPlain, false},
    {"TriggerType", kText, false, kPlain, false},
    {"UMLPackagePath", kText, false, kPlain, false},
    {"Units", kText, false, kPlain, false},
    {"UnknownValues", kText, true, kFixed, false},
    {"UnsupportedValues", kText, true, kFixed, false},
    {"ValueMap", kText, true, kPlain, false},
    {"Values", kText, true, kPlain, false},
    {"Version", kText, false, kRestricted, false},
    {"Weak", kBool, false, kFixed, false},
    {"Write", kBool, false, kPlain, false},
    {"XMLNamespaceName", kText, false, kPlain, false},
}};

TCIMValue GetStandardDefault(const TStandard& standard) {
  const std::string name = standard.name;
  if (standard.type == kBool) {
    return TCIMValue::Boolean(standard.isTrue);
  }
  if (name == "ArrayType") {
    return TCIMValue("Bag");
  }
  if (name == "PropertyUsage") {
    return TCIMValue("CurrentContext");
  }
  if (name == "Min" || name == "MinLen") {
    return TCIMValue::UInt32(0);
  }
  return TCIMValue::Null(standard.type, standard.isArray);
}

bool IsSameType(const TMofQualifierType& left, const TMofQualifierType& right) {
  return left.type == right.type && left.isArray == right.isArray &&
         left.defaultValue == right.defaultValue && left.isOverridable == right.isOverridable &&
         left.toSubclass == right.toSubclass;
}

}  // namespace

std::string FoldName(const std::string& name) {
  std::string folded = name;
  std::transform(folded.begin(), folded.end(), folded.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return folded;
}

TMofQualifierTable::TMofQualifierTable() {
  for (const TStandard& standard : kStandards) {
    TMofQualifierType type;
    type.name = standard.name;
    type.type = standard.type;
    type.isArray = standard.isArray;
    type.defaultValue = GetStandardDefault(standard);
    type.isOverridable = (standard.flavors & kFixed) == 0;
    type.toSubclass = (standard.flavors & kRestricted) == 0;
    m_types[FoldName(type.name)] = {type, true};
  }
}

const TMofQualifierType* TMofQualifierTable::Find(const std::string& name) const {
  const auto found = m_types.find(FoldName(name));
  if (found != m_types.end()) {
    return &found->second.type;
  }
  return m_general == nullptr ? nullptr : m_general->Find(name);
}

bool TMofQualifierTable::IsForbidden(const TMofQualifierType& type) const {
  const TMofQualifierType* known = m_general == nullptr ? nullptr : m_general->Find(type.name);
  return known != nullptr && (known->type != type.type || known->isArray != type.isArray);
}

bool TMofQualifierTable::Declare(const TMofQualifierType& type) {
  TEntry& entry = m_types[FoldName(type.name)];
  const bool isChange =
      !entry.type.name.empty() && !entry.isStandard && !IsSameType(entry.type, type);
  entry = {type, false};
  return isChange;
}

}  // namespace NZEPQEL20
