// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TClassTree.h"

#include <algorithm>

#include "platform/schema/TClassRepository.h"
#include "platform/schema/TMofQualifierTable.h"

namespace NZEPQEL20 {

std::pair<std::size_t, bool> TClassTree::Add(const std::string& name,
                                             const std::string& superclass) {
  const auto [found, isNew] = m_places.emplace(FoldName(name), m_entries.size());
  if (isNew) {
    m_entries.push_back({name, superclass});
    m_children[FoldName(superclass)].insert(found->second);
  }
  return {found->second, isNew};
}

void TClassTree::Change(std::size_t place, const std::string& name, const std::string& superclass) {
  TEntry& entry = m_entries[place];
  m_children[FoldName(entry.superclass)].erase(place);
  m_children[FoldName(superclass)].insert(place);
  entry = {name, superclass};
}

std::optional<std::size_t> TClassTree::Find(const std::string& name) const {
  const auto found = m_places.find(FoldName(name));
  return found == m_places.end() ? std::nullopt : std::make_optional(found->second);
}

TClassChain TClassTree::GetChain(const std::string& name) const {
  TClassChain chain;
  std::optional<std::size_t> next = Find(name);
  while (next) {
    if (std::find(chain.places.begin(), chain.places.end(), *next) != chain.places.end()) {
      chain.end = TClassChain::EEnd::kLoop;
      return chain;
    }
    if (chain.places.size() == TClassRepository::kMaxInheritance) {
      chain.end = TClassChain::EEnd::kTooDeep;
      return chain;
    }
    chain.places.push_back(*next);
    const std::string& superclass = m_entries[*next].superclass;
    next = superclass.empty() ? std::nullopt : Find(superclass);
  }
  if (!chain.places.empty() && !m_entries[chain.places.back()].superclass.empty()) {
    chain.end = TClassChain::EEnd::kMissing;
  }
  return chain;
}

std::vector<std::size_t> TClassTree::GetChildren(const std::string& name) const {
  const auto found = m_children.find(FoldName(name));
  if (found == m_children.end()) {
    return {};
  }
  return {found->second.begin(), found->second.end()};
}

std::vector<std::size_t> TClassTree::GetTops() const {
  std::vector<std::size_t> tops;
  for (std::size_t place = 0; place < m_entries.size(); ++place) {
    const std::string& superclass = m_entries[place].superclass;
    if (superclass.empty() || !Find(superclass)) {
      tops.push_back(place);
    }
  }
  return tops;
}

}  // namespace NZEPQEL20
