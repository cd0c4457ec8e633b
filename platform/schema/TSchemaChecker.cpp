// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TSchemaChecker.h"

#include <algorithm>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/schema/TClassRepository.h"
#include "platform/schema/TMofQualifierTable.h"

namespace NZEPQEL20 {

namespace {

std::string DescribeType(const TSchemaElement& element) {
  return (element.type == ECIMType::kReference ? element.referenceClass + " REF"
                                               : GetTypeName(element.type)) +
         (element.isArray ? "[]" : "");
}

bool HasOwnKey(const TSchemaClass& declaration) {
  return std::any_of(
      declaration.properties.begin(), declaration.properties.end(),
      [](const TSchemaProperty& property) { return HasQualifier(property.qualifiers, "Key"); });
}

}  // namespace

void TSchemaChecker::Check() {
  for (const std::size_t top : m_tree.GetTops()) {
    CheckTop(m_store.At(top));
  }
  ReportMissing();
  if (m_visited < m_tree.GetCount()) {
    CheckLoops();
  }
}

void TSchemaChecker::CheckTop(const TSchemaClass& top) {
  if (!top.superclass.empty()) {
    TMissing& missing = m_missing[FoldName(top.superclass)];
    missing.first = missing.count++ == 0 ? &top : missing.first;
  }
  TScope scope;
  // A class without its superclass may well be an association.
  scope.isLink = !top.superclass.empty();
  CheckTree(top, scope);
}

void TSchemaChecker::ReportMissing() {
  for (const auto& [name, missing] : m_missing) {
    const TSchemaClass& top = *missing.first;
    const std::string more =
        missing.count == 1 ? "" : " and " + std::to_string(missing.count - 1) + " more";
    m_problems.AddWarning(top.file, top.position,
                          "superclass " + top.superclass + " of class " + top.name + more +
                              " is not known; what they would inherit is lacking");
  }
}

void TSchemaChecker::CheckLoops() {
  // A class that no top leads to is below a loop, or below one that was found too deep.
  for (std::size_t place = 0; place < m_tree.GetCount(); ++place) {
    const TSchemaClass& declaration = m_store.At(place);
    if (m_tree.GetChain(declaration.name).end == TClassChain::EEnd::kLoop) {
      m_problems.AddError(declaration.file, declaration.position,
                          "the superclasses of class " + declaration.name + " form a loop");
    }
  }
}

void TSchemaChecker::CheckTree(const TSchemaClass& declaration, TScope scope) {
  ++m_visited;
  if (scope.depth > TClassRepository::kMaxInheritance) {
    ReportDepth(declaration);
    return;
  }
  scope.isLink = scope.isLink || HasQualifier(declaration.qualifiers, "Association") ||
                 HasQualifier(declaration.qualifiers, "Indication");
  for (const TSchemaProperty& property : declaration.properties) {
    CheckProperty(declaration, property, scope);
  }
  for (const TSchemaProperty& property : declaration.properties) {
    m_inherited[FoldName(property.name)].push_back({&property, &declaration});
  }
  scope.hasKeys = scope.hasKeys || HasOwnKey(declaration);
  ++scope.depth;
  for (const std::size_t child : m_tree.GetChildren(declaration.name)) {
    CheckTree(m_store.At(child), scope);
  }
  for (const TSchemaProperty& property : declaration.properties) {
    m_inherited[FoldName(property.name)].pop_back();
  }
}

void TSchemaChecker::CheckProperty(const TSchemaClass& declaration, const TSchemaProperty& property,
                                   const TScope& scope) {
  if (property.type == ECIMType::kReference && !scope.isLink) {
    m_problems.AddWarning(declaration.file, property.position,
                          "reference " + property.name + " in class " + declaration.name +
                              ", which is not an association");
  }
  const auto found = m_inherited.find(FoldName(property.name));
  const bool isInherited = found != m_inherited.end() && !found->second.empty();
  if (isInherited) {
    CheckOverride(declaration, property, found->second.back());
  }
  const bool wasKey =
      isInherited &&
      std::any_of(found->second.begin(), found->second.end(), [](const TInherited& above) {
        return HasQualifier(above.property->qualifiers, "Key");
      });
  if (HasQualifier(property.qualifiers, "Key") && !wasKey && scope.hasKeys) {
    m_problems.AddWarning(declaration.file, property.position,
                          "class " + declaration.name + " adds the key " + property.name +
                              " to those of its superclasses");
  }
}

void TSchemaChecker::ReportType(const TSchemaClass& declaration, const TSchemaProperty& property,
                                const TInherited& above) {
  const std::string start = "property " + property.name + " of class ";
  const TSchemaProperty& inherited = *above.property;
  // A superclass that a vendor adds does not make the classes of others faulty.
  if (declaration.rank < above.owner->rank) {
    m_problems.AddError(above.owner->file, inherited.position,
                        start + above.owner->name + " is " + DescribeType(inherited) + ", but " +
                            DescribeType(property) + " in class " + declaration.name + " at " +
                            declaration.file + ":" + std::to_string(property.position.line));
    return;
  }
  m_problems.AddError(declaration.file, property.position,
                      start + declaration.name + " is " + DescribeType(property) + ", but " +
                          DescribeType(inherited) + " where it comes from");
}

void TSchemaChecker::ReportDepth(const TSchemaClass& declaration) {
  const TSchemaClass* cause = &declaration;
  for (const std::size_t place : m_tree.GetChain(declaration.name).places) {
    cause = m_store.At(place).rank > cause->rank ? &m_store.At(place) : cause;
  }
  m_problems.AddError(cause->file, cause->position,
                      "class " + declaration.name + " has more than " +
                          std::to_string(TClassRepository::kMaxInheritance - 1) + " superclasses");
}

void TSchemaChecker::CheckOverride(const TSchemaClass& declaration, const TSchemaProperty& property,
                                   const TInherited& above) {
  const TSchemaProperty& inherited = *above.property;
  if (property.type != inherited.type || property.isArray != inherited.isArray) {
    ReportType(declaration, property, above);
    return;
  }
  const std::string what = "property " + property.name + " of class " + declaration.name;
  if (property.type == ECIMType::kReference) {
    const TClassChain chain = m_tree.GetChain(property.referenceClass);
    const bool isNarrower =
        chain.end != TClassChain::EEnd::kRoot ||
        std::any_of(chain.places.begin(), chain.places.end(), [&](std::size_t super) {
          return IsSameName(m_tree.GetName(super), inherited.referenceClass);
        });
    if (!isNarrower && !chain.places.empty()) {
      m_problems.AddWarning(declaration.file, property.position,
                            what + " refers to " + property.referenceClass + ", which is not a " +
                                inherited.referenceClass);
    }
  }
  for (const TSchemaQualifier& qualifier : property.qualifiers) {
    const TSchemaQualifier* fixed = FindQualifier(inherited.qualifiers, qualifier.name.c_str());
    if (fixed != nullptr && fixed->toSubclass && !fixed->isOverridable &&
        fixed->value != qualifier.value) {
      m_problems.AddWarning(declaration.file, property.position,
                            "qualifier " + qualifier.name + " of " + what +
                                " cannot be changed; the inherited value holds");
    }
  }
}

}  // namespace NZEPQEL20
