// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TSchemaStore.h"

#include <algorithm>

#include "platform/schema/TInstanceResolver.h"

namespace NZEPQEL20 {

void TSchemaStore::Add(TSchemaClass&& declaration) {
  const auto [place, isNew] = m_tree.Add(declaration.name, declaration.superclass);
  if (isNew) {
    m_classes.push_back(std::move(declaration));
    return;
  }
  const TSchemaClass& known = m_classes[place];
  if (IsSameClass(known, declaration)) {
    return;
  }
  if (known.rank < declaration.rank) {
    NoteLeftOut(declaration, known);
    return;
  }
  if (known.rank == declaration.rank) {
    NoteChange(declaration, known);
  } else {
    NoteLeftOut(known, declaration);
  }
  Replace(place, std::move(declaration));
}

void TSchemaStore::Replace(std::size_t place, TSchemaClass&& declaration) {
  m_tree.Change(place, declaration.name, declaration.superclass);
  m_classes[place] = std::move(declaration);
}

void TSchemaStore::NoteLeftOut(const TSchemaClass& declaration, const TSchemaClass& holder) {
  m_leftOut.push_back({declaration.name, declaration.file, holder.file});
  TLeftOut& leftOut = m_leftOutOf[declaration.file];
  if (leftOut.count++ == 0) {
    leftOut.first = {declaration.file, declaration.position.line, declaration.position.column,
                     "class " + declaration.name + " differs from its declaration at " +
                         holder.file + ":" + std::to_string(holder.position.line) +
                         ", which holds; this one is left out",
                     true};
  }
}

void TSchemaStore::NoteChange(const TSchemaClass& declaration, const TSchemaClass& earlier) {
  if (m_changeCount++ == 0) {
    m_firstChange = {declaration.file, declaration.position.line, declaration.position.column,
                     "class " + declaration.name + " differs from its declaration at " +
                         earlier.file + ":" + std::to_string(earlier.position.line) +
                         "; this one holds",
                     true};
  }
}

void TSchemaStore::ReportChanges(TMofProblems& problems) {
  for (auto& [file, leftOut] : m_leftOutOf) {
    if (leftOut.count > 1) {
      leftOut.first.text += ", and so are " + std::to_string(leftOut.count - 1) + " more classes";
    }
    problems.AddWarning(file, {leftOut.first.line, leftOut.first.column}, leftOut.first.text);
  }
  m_leftOutOf.clear();
  if (m_changeCount == 0) {
    return;
  }
  // A whole schema beside a part of it declares hundreds of classes anew.
  if (m_changeCount > 1) {
    m_firstChange.text +=
        ", and so do later declarations of " + std::to_string(m_changeCount - 1) + " more classes";
  }
  problems.AddWarning(m_firstChange.file, {m_firstChange.line, m_firstChange.column},
                      m_firstChange.text);
  m_changeCount = 0;
}

bool TSchemaStore::ClosesLoop(std::size_t place) const {
  const std::size_t rank = m_classes[place].rank;
  const TClassChain chain = m_tree.GetChain(m_tree.GetName(place));
  // The chain may lead into a circle that the class itself is no part of.
  if (chain.end != TClassChain::EEnd::kLoop ||
      m_tree.Find(m_tree.GetSuperclass(chain.places.back())) != place) {
    return false;
  }
  const auto [low, high] = std::minmax_element(
      chain.places.begin(), chain.places.end(), [this](std::size_t left, std::size_t right) {
        return m_classes[left].rank < m_classes[right].rank;
      });
  return m_classes[*low].rank < rank && m_classes[*high].rank == rank;
}

void TSchemaStore::CutLoops(TMofProblems& problems) {
  for (std::size_t place = 0; place < m_classes.size(); ++place) {
    TSchemaClass& declaration = m_classes[place];
    if (declaration.rank == 0 || !ClosesLoop(place)) {
      continue;
    }
    const TSchemaClass& above = m_classes[*m_tree.Find(declaration.superclass)];
    problems.AddError(declaration.file, declaration.position,
                      "class " + declaration.name + ": its superclass " + above.name + " at " +
                          above.file + ":" + std::to_string(above.position.line) +
                          " derives from it; it is taken without a superclass");
    declaration.superclass.clear();
    m_tree.Change(place, declaration.name, {});
  }
}

std::shared_ptr<const TSchemaClass> TSchemaStore::GetClass(std::size_t place) const {
  // Held by the store, not by the handle.
  return {std::shared_ptr<const TSchemaClass>(), &m_classes[place]};
}

std::vector<TCIMInstanceData> TSchemaStore::GetInstances(const TClassRepository& classes) const {
  TMofProblems unused;
  return TInstanceResolver(classes, m_instances, unused).Resolve();
}

}  // namespace NZEPQEL20
