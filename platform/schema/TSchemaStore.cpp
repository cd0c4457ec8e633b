// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TSchemaStore.h"

#include <algorithm>
#include <utility>

#include "platform/schema/TClassRepository.h"
#include "platform/schema/TMofQualifierTable.h"

namespace NZEPQEL20 {

void TSchemaStore::Add(TSchemaClass&& declaration) {
  const std::string super = FoldName(declaration.superclass);
  const auto [place, isNew] = m_places.emplace(FoldName(declaration.name), m_classes.size());
  const std::size_t index = place->second;
  if (isNew) {
    m_classes.push_back(std::move(declaration));
  } else if (!IsSameClass(m_classes[index], declaration)) {
    const TSchemaClass& earlier = m_classes[index];
    NoteChange(declaration, earlier);
    m_children[FoldName(earlier.superclass)].erase(index);
    m_classes[index] = std::move(declaration);
  }
  m_children[super].insert(index);
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

const TSchemaClass* TSchemaStore::Find(const std::string& name) const {
  const auto found = m_places.find(FoldName(name));
  return found == m_places.end() ? nullptr : &m_classes[found->second];
}

TSchemaChain TSchemaStore::GetChain(const std::string& name) const {
  TSchemaChain chain;
  const TSchemaClass* next = Find(name);
  while (next != nullptr) {
    if (std::find(chain.classes.begin(), chain.classes.end(), next) != chain.classes.end()) {
      chain.end = TSchemaChain::EEnd::kLoop;
      return chain;
    }
    if (chain.classes.size() == TClassRepository::kMaxInheritance) {
      chain.end = TSchemaChain::EEnd::kTooDeep;
      return chain;
    }
    chain.classes.push_back(next);
    next = next->superclass.empty() ? nullptr : Find(next->superclass);
  }
  if (!chain.classes.empty() && !chain.classes.back()->superclass.empty()) {
    chain.end = TSchemaChain::EEnd::kMissing;
  }
  return chain;
}

std::vector<const TSchemaClass*> TSchemaStore::GetChildren(const std::string& name) const {
  std::vector<const TSchemaClass*> children;
  const auto found = m_children.find(FoldName(name));
  if (found != m_children.end()) {
    for (const std::size_t index : found->second) {
      children.push_back(&m_classes[index]);
    }
  }
  return children;
}

std::vector<const TSchemaClass*> TSchemaStore::GetTops() const {
  std::vector<const TSchemaClass*> tops;
  for (const TSchemaClass& declaration : m_classes) {
    if (declaration.superclass.empty() || Find(declaration.superclass) == nullptr) {
      tops.push_back(&declaration);
    }
  }
  return tops;
}

}  // namespace NZEPQEL20
