// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace NZEPQEL20 {

/// A class and its superclasses, as far as they are known.
struct TClassChain {
  enum class EEnd {
    kRoot,     ///< The last one has no superclass.
    kMissing,  ///< The superclass of the last one is not known.
    kLoop,     ///< The superclass of the last one is in the chain.
    kTooDeep   ///< There are more than TClassRepository::kMaxInheritance.
  };

  std::vector<std::size_t> places;  ///< The class first.
  EEnd end = EEnd::kRoot;
};

/// The names of classes and of their superclasses. Each class has a place, from 0 in order of
/// declaration; names compare without case.
/// Threads: const use from several threads is safe.
class TClassTree {
 public:
  /// The place of the class, and whether it is new. One that is known keeps its place, its name
  /// and its superclass.
  std::pair<std::size_t, bool> Add(const std::string& name, const std::string& superclass);

  /// Gives the class at `place` another spelling and another superclass.
  void Change(std::size_t place, const std::string& name, const std::string& superclass);

  std::optional<std::size_t> Find(const std::string& name) const;

  /// Empty when `name` is not known.
  TClassChain GetChain(const std::string& name) const;

  /// Direct subclasses in order of declaration; `name` need not be known itself.
  std::vector<std::size_t> GetChildren(const std::string& name) const;

  /// Classes without a superclass, or whose superclass is not known, in order of declaration.
  std::vector<std::size_t> GetTops() const;

  const std::string& GetName(std::size_t place) const { return m_entries[place].name; }
  /// Empty for a root class.
  const std::string& GetSuperclass(std::size_t place) const { return m_entries[place].superclass; }
  std::size_t GetCount() const { return m_entries.size(); }

 private:
  struct TEntry {
    std::string name;
    std::string superclass;
  };

  std::vector<TEntry> m_entries;
  std::unordered_map<std::string, std::size_t> m_places;  ///< By folded name.
  std::unordered_map<std::string, std::set<std::size_t>> m_children;
};

}  // namespace NZEPQEL20
