// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TClassRepository.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/schema/TInstanceResolver.h"
#include "platform/schema/TMofLoader.h"
#include "platform/schema/TMofQualifierTable.h"
#include "platform/schema/TMofSource.h"
#include "platform/schema/TSchemaChecker.h"
#include "platform/schema/TSchemaStore.h"

namespace NZEPQEL20 {

struct TClassRepository::TParts {
  /// Loads the files of missing superclasses from the search path, until that brings no more.
  void LoadMissing();

  TSchemaStore store;
  TMofProblems problems;
  TMofLoader loader{store, problems};
  std::vector<std::string> folders;
  std::unordered_set<std::string> sought;  ///< Superclasses that the folders were searched for.
  std::set<std::string> reported;

  std::mutex mutex;  ///< Guards `whole`.
  std::unordered_map<std::string, std::shared_ptr<const TCIMClassDeclaration>> whole;
};

void TClassRepository::TParts::LoadMissing() {
  for (bool isMore = true; isMore;) {
    std::vector<std::string> missing;
    for (const TSchemaClass* top : store.GetTops()) {
      if (!top->superclass.empty() && sought.insert(FoldName(top->superclass)).second) {
        missing.push_back(top->superclass);
      }
    }
    isMore = !missing.empty() && !folders.empty();
    for (const std::string& name : missing) {
      for (const std::string& folder : folders) {
        const std::string file = FindWithoutCase(folder, name + ".mof");
        if (!file.empty()) {
          loader.LoadFile(file);
          break;
        }
      }
    }
  }
}

TClassRepository::TClassRepository() : m_parts(std::make_unique<TParts>()) {}

TClassRepository::~TClassRepository() = default;

std::vector<TMofError> TClassRepository::Load(const std::string& file) {
  m_parts->loader.LoadFile(file);
  m_parts->whole.clear();
  return m_parts->problems.Take();
}

std::vector<TMofError> TClassRepository::LoadText(const std::string& text,
                                                  const std::string& name) {
  m_parts->loader.LoadText(text, name);
  m_parts->whole.clear();
  return m_parts->problems.Take();
}

void TClassRepository::AddSearchPath(const std::string& folder) {
  m_parts->folders.push_back(folder);
  m_parts->sought.clear();
}

std::vector<TMofError> TClassRepository::Check() {
  m_parts->LoadMissing();
  m_parts->whole.clear();
  m_parts->store.ReportChanges(m_parts->problems);
  TSchemaChecker(m_parts->store, m_parts->problems).Check();
  TInstanceResolver(*this, m_parts->store.GetInstances(), m_parts->problems).Resolve();
  std::vector<TMofError> found = m_parts->problems.Take();
  std::vector<TMofError> fresh;
  std::copy_if(
      found.begin(), found.end(), std::back_inserter(fresh),
      [this](const TMofError& error) { return m_parts->reported.insert(error.ToString()).second; });
  return fresh;
}

std::shared_ptr<const TCIMClassDeclaration> TClassRepository::Find(const std::string& name) const {
  const std::string key = FoldName(name);
  const std::lock_guard<std::mutex> lock(m_parts->mutex);
  const auto known = m_parts->whole.find(key);
  if (known != m_parts->whole.end()) {
    return known->second;
  }
  const TSchemaChain chain = m_parts->store.GetChain(name);
  if (chain.classes.empty()) {
    return nullptr;
  }
  TSchemaClass declaration;
  for (auto next = chain.classes.rbegin(); next != chain.classes.rend(); ++next) {
    InheritInto(declaration, **next);
  }
  auto whole =
      std::make_shared<const TCIMClassDeclaration>(MakeDeclaration(std::move(declaration)));
  m_parts->whole.emplace(key, whole);
  return whole;
}

bool TClassRepository::IsA(const std::string& name, const std::string& super) const {
  if (IsSameName(name, super)) {
    return true;
  }
  const TSchemaChain chain = m_parts->store.GetChain(name);
  return std::any_of(
      chain.classes.begin(), chain.classes.end(), [&super](const TSchemaClass* declaration) {
        return IsSameName(declaration->name, super) || IsSameName(declaration->superclass, super);
      });
}

std::vector<std::string> TClassRepository::GetSubclasses(const std::string& name, bool deep) const {
  const TSchemaStore& store = m_parts->store;
  std::vector<const TSchemaClass*> open = name.empty() ? store.GetTops() : store.GetChildren(name);
  std::reverse(open.begin(), open.end());
  std::vector<std::string> names;
  // Classes may name each other as superclasses in a circle.
  std::unordered_set<const TSchemaClass*> seen;
  while (!open.empty()) {
    const TSchemaClass* next = open.back();
    open.pop_back();
    if (!seen.insert(next).second) {
      continue;
    }
    names.push_back(next->name);
    if (deep) {
      const std::vector<const TSchemaClass*> children = store.GetChildren(next->name);
      open.insert(open.end(), children.rbegin(), children.rend());
    }
  }
  return names;
}

std::vector<TCIMInstanceData> TClassRepository::GetInstances() const {
  TMofProblems unused;
  return TInstanceResolver(*this, m_parts->store.GetInstances(), unused).Resolve();
}

std::size_t TClassRepository::GetCount() const {
  return m_parts->store.GetClasses().size();
}

}  // namespace NZEPQEL20
