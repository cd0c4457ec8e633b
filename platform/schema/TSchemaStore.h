// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/schema/TMofDeclarations.h"
#include "platform/schema/TMofProblems.h"
#include "platform/schema/TSchemaClass.h"

namespace NZEPQEL20 {

/// A class and its superclasses, as far as they are known.
struct TSchemaChain {
  enum class EEnd {
    kRoot,     ///< The last one has no superclass.
    kMissing,  ///< The superclass of the last one is not known.
    kLoop,     ///< The superclass of the last one is in the chain.
    kTooDeep   ///< There are more than TClassRepository::kMaxInheritance.
  };

  std::vector<const TSchemaClass*> classes;  ///< The class first.
  EEnd end = EEnd::kRoot;
};

/// The declared classes and instances as they were read, with the class tree.
/// Threads: const use from several threads is safe.
class TSchemaStore {
 public:
  /// Adds a class, or replaces the one of the same name.
  void Add(TSchemaClass&& declaration);

  /// Reports in one line what classes were replaced by different ones since the last call.
  void ReportChanges(TMofProblems& problems);

  /// Null when `name`, compared without case, is not known.
  const TSchemaClass* Find(const std::string& name) const;

  /// Empty when `name` is not known.
  TSchemaChain GetChain(const std::string& name) const;

  /// Direct subclasses in order of declaration; `name` need not be known itself.
  std::vector<const TSchemaClass*> GetChildren(const std::string& name) const;

  /// Classes without a superclass, or whose superclass is not known, in order of declaration.
  std::vector<const TSchemaClass*> GetTops() const;

  const std::vector<TSchemaClass>& GetClasses() const { return m_classes; }

  void AddInstance(TMofInstance&& instance) { m_instances.push_back(std::move(instance)); }
  const std::vector<TMofInstance>& GetInstances() const { return m_instances; }

 private:
  void NoteChange(const TSchemaClass& declaration, const TSchemaClass& earlier);

  std::size_t m_changeCount = 0;
  TMofError m_firstChange;
  std::vector<TSchemaClass> m_classes;
  std::unordered_map<std::string, std::size_t> m_places;  ///< By folded name.
  std::unordered_map<std::string, std::set<std::size_t>> m_children;
  std::vector<TMofInstance> m_instances;
};

}  // namespace NZEPQEL20
