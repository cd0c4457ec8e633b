// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TSchemaStore.h"

#include "platform/schema/TInstanceResolver.h"

namespace NZEPQEL20 {

void TSchemaStore::Add(TSchemaClass&& declaration) {
  const auto [place, isNew] = m_tree.Add(declaration.name, declaration.superclass);
  if (isNew) {
    m_classes.push_back(std::move(declaration));
  } else if (!IsSameClass(m_classes[place], declaration)) {
    NoteChange(declaration, m_classes[place]);
    m_tree.Change(place, declaration.name, declaration.superclass);
    m_classes[place] = std::move(declaration);
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

std::shared_ptr<const TSchemaClass> TSchemaStore::GetClass(std::size_t place) const {
  // Held by the store, not by the handle.
  return {std::shared_ptr<const TSchemaClass>(), &m_classes[place]};
}

std::vector<TCIMInstanceData> TSchemaStore::GetInstances(const TClassRepository& classes) const {
  TMofProblems unused;
  return TInstanceResolver(classes, m_instances, unused).Resolve();
}

}  // namespace NZEPQEL20
