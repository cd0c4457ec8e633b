// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/schema/ISchemaClasses.h"
#include "platform/schema/TLeftOutClass.h"
#include "platform/schema/TMofDeclarations.h"
#include "platform/schema/TMofProblems.h"

namespace NZEPQEL20 {

/// The declared classes and instances as they were read, with the class tree.
/// Threads: const use from several threads is safe.
class TSchemaStore : public ISchemaClasses {
 public:
  /// Adds a class, or replaces the one of the same name. Of two that differ the one of the lower
  /// rank stays, whichever comes first.
  void Add(TSchemaClass&& declaration);

  /// Reports what became of classes that were declared again, differently, since the last call:
  /// in one line those that were replaced by ones of the same rank, and in one line for each file
  /// those that were left out of it.
  void ReportChanges(TMofProblems& problems);

  /// Where classes of several ranks derive from each other in a circle, the one of the highest rank
  /// loses its superclass, and that is an error in its file.
  void CutLoops(TMofProblems& problems);

  const std::vector<TLeftOutClass>& GetLeftOut() const { return m_leftOut; }

  const TClassTree& GetTree() const override { return m_tree; }
  std::shared_ptr<const TSchemaClass> GetClass(std::size_t place) const override;
  std::vector<TCIMInstanceData> GetInstances(const TClassRepository& classes) const override;

  const TSchemaClass& At(std::size_t place) const { return m_classes[place]; }

  void AddInstance(TMofInstance&& instance) { m_instances.push_back(std::move(instance)); }
  const std::vector<TMofInstance>& GetDeclaredInstances() const { return m_instances; }

 private:
  void NoteChange(const TSchemaClass& declaration, const TSchemaClass& earlier);
  void NoteLeftOut(const TSchemaClass& declaration, const TSchemaClass& holder);
  void Replace(std::size_t place, TSchemaClass&& declaration);
  bool ClosesLoop(std::size_t place) const;

  TClassTree m_tree;
  std::vector<TSchemaClass> m_classes;  ///< By place in the tree.
  std::vector<TMofInstance> m_instances;
  std::size_t m_changeCount = 0;
  TMofError m_firstChange;

  /// The classes that were left out of a file.
  struct TLeftOut {
    std::size_t count = 0;
    TMofError first;
  };
  std::map<std::string, TLeftOut> m_leftOutOf;  ///< By file.
  std::vector<TLeftOutClass> m_leftOut;
};

}  // namespace NZEPQEL20
