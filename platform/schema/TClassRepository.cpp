// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TClassRepository.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/contract/TQELException.h"
#include "platform/schema/TFolderNames.h"
#include "platform/schema/TInstanceResolver.h"
#include "platform/schema/TMofLoader.h"
#include "platform/schema/TMofQualifierTable.h"
#include "platform/schema/TSchemaChecker.h"
#include "platform/schema/TSchemaStore.h"

namespace NZEPQEL20 {

struct TClassRepository::TParts {
  using TWholePtr = std::shared_ptr<const TCIMClassDeclaration>;

  /// Loads the files of missing superclasses from the search path, until that brings no more.
  void LoadMissing();
  void LoadMissing(const std::string& name, TFolderNames& names);

  TClassesPtr GetClasses() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return classes;
  }
  /// Takes the classes anew in the place of `broken`, unless another thread has done so. False
  /// when there is nowhere to take them from.
  bool Reload(const TClassesPtr& broken);
  /// Calls `use` with the classes, and once more when they had to be reloaded.
  template <typename TUse>
  auto Use(const TUse& use) -> decltype(use(TClassesPtr()));

  std::shared_ptr<TSchemaStore> store = std::make_shared<TSchemaStore>();
  TMofProblems problems;
  TSchemaSources sources;
  TMofLoader loader{*store, problems, sources};
  std::vector<std::string> folders;
  std::unordered_set<std::string> sought;  ///< Superclasses that the folders were searched for.
  std::set<std::string> reported;
  std::function<TClassesPtr()> reload;

  mutable std::mutex mutex;  ///< Guards `classes`, `reload` and `whole`.
  TClassesPtr classes = store;
  std::unordered_map<std::string, TWholePtr> whole;
};

void TClassRepository::TParts::LoadMissing() {
  TFolderNames names(&sources);
  for (bool isMore = true; isMore;) {
    std::vector<std::string> missing;
    const TClassTree& tree = store->GetTree();
    for (const std::size_t top : tree.GetTops()) {
      const std::string& superclass = tree.GetSuperclass(top);
      if (!superclass.empty() && sought.insert(FoldName(superclass)).second) {
        missing.push_back(superclass);
      }
    }
    isMore = !missing.empty() && !folders.empty();
    for (const std::string& name : missing) {
      LoadMissing(name, names);
    }
  }
}

void TClassRepository::TParts::LoadMissing(const std::string& name, TFolderNames& names) {
  for (const std::string& folder : folders) {
    const std::string file = names.Find(folder, name + ".mof");
    if (!file.empty()) {
      loader.LoadFile(file);
      return;
    }
  }
}

bool TClassRepository::TParts::Reload(const TClassesPtr& broken) {
  const std::lock_guard<std::mutex> lock(mutex);
  if (classes != broken) {
    return true;
  }
  if (!reload) {
    return false;
  }
  classes = std::exchange(reload, nullptr)();
  whole.clear();
  return true;
}

template <typename TUse>
auto TClassRepository::TParts::Use(const TUse& use) -> decltype(use(TClassesPtr())) {
  const TClassesPtr first = GetClasses();
  try {
    return use(first);
  } catch (const TQELException&) {
    if (!Reload(first)) {
      throw;
    }
  }
  return use(GetClasses());
}

TClassRepository::TClassRepository() : m_parts(std::make_unique<TParts>()) {}

TClassRepository::~TClassRepository() = default;

std::shared_ptr<const TClassRepository> TClassRepository::FromStore(
    TClassesPtr stored, std::function<TClassesPtr()> reload) {
  auto repository = std::make_shared<TClassRepository>();
  repository->m_parts->classes = std::move(stored);
  repository->m_parts->reload = std::move(reload);
  return repository;
}

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
  m_parts->loader.AddFolder(folder);
  m_parts->sought.clear();
}

std::vector<TMofError> TClassRepository::Check() {
  m_parts->LoadMissing();
  m_parts->whole.clear();
  m_parts->store->ReportChanges(m_parts->problems);
  m_parts->store->CutLoops(m_parts->problems);
  TSchemaChecker(*m_parts->store, m_parts->problems).Check();
  TInstanceResolver(*this, m_parts->store->GetDeclaredInstances(), m_parts->problems).Resolve();
  std::vector<TMofError> found = m_parts->problems.Take();
  std::vector<TMofError> fresh;
  std::copy_if(
      found.begin(), found.end(), std::back_inserter(fresh),
      [this](const TMofError& error) { return m_parts->reported.insert(error.ToString()).second; });
  return fresh;
}

std::shared_ptr<const TCIMClassDeclaration> TClassRepository::Find(const std::string& name) const {
  const std::string key = FoldName(name);
  {
    const std::lock_guard<std::mutex> lock(m_parts->mutex);
    const auto known = m_parts->whole.find(key);
    if (known != m_parts->whole.end()) {
      return known->second;
    }
  }
  return m_parts->Use([&](const TClassesPtr& classes) -> TParts::TWholePtr {
    const TClassChain chain = classes->GetTree().GetChain(name);
    if (chain.places.empty()) {
      return nullptr;
    }
    TSchemaClass declaration;
    for (auto next = chain.places.rbegin(); next != chain.places.rend(); ++next) {
      InheritInto(declaration, *classes->GetClass(*next));
    }
    auto whole =
        std::make_shared<const TCIMClassDeclaration>(MakeDeclaration(std::move(declaration)));
    const std::lock_guard<std::mutex> lock(m_parts->mutex);
    // Another thread may have been quicker, or may have taken the classes anew.
    return m_parts->classes == classes ? m_parts->whole.emplace(key, whole).first->second : whole;
  });
}

bool TClassRepository::IsA(const std::string& name, const std::string& super) const {
  if (IsSameName(name, super)) {
    return true;
  }
  const TClassesPtr classes = m_parts->GetClasses();
  const TClassTree& tree = classes->GetTree();
  const TClassChain chain = tree.GetChain(name);
  return std::any_of(chain.places.begin(), chain.places.end(), [&](std::size_t place) {
    return IsSameName(tree.GetName(place), super) || IsSameName(tree.GetSuperclass(place), super);
  });
}

bool TClassRepository::IsComplete(const std::string& name) const {
  const TClassChain chain = m_parts->GetClasses()->GetTree().GetChain(name);
  return !chain.places.empty() && chain.end == TClassChain::EEnd::kRoot;
}

std::vector<std::string> TClassRepository::GetSubclasses(const std::string& name, bool deep) const {
  const TClassesPtr classes = m_parts->GetClasses();
  const TClassTree& tree = classes->GetTree();
  std::vector<std::size_t> open = name.empty() ? tree.GetTops() : tree.GetChildren(name);
  std::reverse(open.begin(), open.end());
  std::vector<std::string> names;
  // Classes may name each other as superclasses in a circle.
  std::unordered_set<std::size_t> seen;
  while (!open.empty()) {
    const std::size_t next = open.back();
    open.pop_back();
    if (!seen.insert(next).second) {
      continue;
    }
    names.push_back(tree.GetName(next));
    if (deep) {
      const std::vector<std::size_t> children = tree.GetChildren(names.back());
      open.insert(open.end(), children.rbegin(), children.rend());
    }
  }
  return names;
}

std::vector<TCIMInstanceData> TClassRepository::GetInstances() const {
  return m_parts->Use([this](const TClassesPtr& classes) { return classes->GetInstances(*this); });
}

std::size_t TClassRepository::GetCount() const {
  return m_parts->GetClasses()->GetTree().GetCount();
}

TClassRepository::TClassesPtr TClassRepository::GetDeclarations() const {
  return m_parts->GetClasses();
}

const std::vector<TLeftOutClass>& TClassRepository::GetLeftOut() const {
  return m_parts->store->GetLeftOut();
}

const TSchemaSources& TClassRepository::GetSources() const {
  return m_parts->sources;
}

}  // namespace NZEPQEL20
