// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/schema/ISchemaClasses.h"
#include "platform/schema/TMofDeclarations.h"
#include "platform/schema/TMofProblems.h"

namespace NZEPQEL20 {

/// The declared classes and instances as they were read, with the class tree.
/// Threads: const use from several threads is safe.
class TSchemaStore : public ISchemaClasses {
 public:
  /// Adds a class, or replaces the one of the same name.
  void Add(TSchemaClass&& declaration);

  /// Reports in one line what classes were replaced by different ones since the last call.
  void ReportChanges(TMofProblems& problems);

  const TClassTree& GetTree() const override { return m_tree; }
  std::shared_ptr<const TSchemaClass> GetClass(std::size_t place) const override;
  std::vector<TCIMInstanceData> GetInstances(const TClassRepository& classes) const override;

  const TSchemaClass& At(std::size_t place) const { return m_classes[place]; }

  void AddInstance(TMofInstance&& instance) { m_instances.push_back(std::move(instance)); }
  const std::vector<TMofInstance>& GetDeclaredInstances() const { return m_instances; }

 private:
  void NoteChange(const TSchemaClass& declaration, const TSchemaClass& earlier);

  TClassTree m_tree;
  std::vector<TSchemaClass> m_classes;  ///< By place in the tree.
  std::vector<TMofInstance> m_instances;
  std::size_t m_changeCount = 0;
  TMofError m_firstChange;
};

}  // namespace NZEPQEL20
