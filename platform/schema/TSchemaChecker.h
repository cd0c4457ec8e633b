// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/schema/TMofProblems.h"
#include "platform/schema/TSchemaStore.h"

namespace NZEPQEL20 {

/// Checks what only all classes together show: superclasses, overrides, keys. Walks the class tree
/// once, so that the work grows with the number of declared features.
class TSchemaChecker {
 public:
  TSchemaChecker(const TSchemaStore& store, TMofProblems& problems)
      : m_store(store), m_tree(store.GetTree()), m_problems(problems) {}

  void Check();

 private:
  /// What a class has from above.
  struct TScope {
    unsigned int depth = 1;
    bool isLink = false;  ///< An association or indication: it may hold references.
    bool hasKeys = false;
  };

  /// A property with the class that declares it.
  struct TInherited {
    const TSchemaProperty* property = nullptr;
    const TSchemaClass* owner = nullptr;
  };

  void CheckTop(const TSchemaClass& top);
  void CheckTree(const TSchemaClass& declaration, TScope scope);
  void CheckProperty(const TSchemaClass& declaration, const TSchemaProperty& property,
                     const TScope& scope);
  void CheckOverride(const TSchemaClass& declaration, const TSchemaProperty& property,
                     const TInherited& above);
  void ReportType(const TSchemaClass& declaration, const TSchemaProperty& property,
                  const TInherited& above);
  void ReportDepth(const TSchemaClass& declaration);
  void CheckLoops();
  void ReportMissing();

  const TSchemaStore& m_store;
  const TClassTree& m_tree;
  TMofProblems& m_problems;
  std::size_t m_visited = 0;

  /// A superclass that is not known, and those that derive from it.
  struct TMissing {
    const TSchemaClass* first = nullptr;
    std::size_t count = 0;
  };
  std::map<std::string, TMissing> m_missing;  ///< By folded name.
  /// Declarations of each property on the way down, the nearest last; by folded name.
  std::unordered_map<std::string, std::vector<TInherited>> m_inherited;
};

}  // namespace NZEPQEL20
