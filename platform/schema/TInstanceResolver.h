// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/schema/TClassRepository.h"
#include "platform/schema/TMofDeclarations.h"
#include "platform/schema/TMofProblems.h"

namespace NZEPQEL20 {

/// Makes instances of the declarations in MOF files: types the values by the classes, fills
/// defaults in, forms the paths, and puts paths in the place of aliases, wherever these are
/// defined.
class TInstanceResolver {
 public:
  /// How many aliases a path may lead through, one in the keys of the other.
  static constexpr unsigned int kMaxAliases = 8;
  /// How deep embedded instances may lie in each other.
  static constexpr unsigned int kMaxEmbedded = 4;

  TInstanceResolver(const TClassRepository& classes, const std::vector<TMofInstance>& instances,
                    TMofProblems& problems);

  /// All instances without fault, in order; of two with the same path the last one.
  std::vector<TCIMInstanceData> Resolve();

 private:
  using TClassPtr = std::shared_ptr<const TCIMClassDeclaration>;

  bool ResolveInstance(const TMofInstance& source, unsigned int embedded, TCIMInstanceData& result);
  bool ResolveProperty(const TMofInstance& source, const TMofInstanceProperty& property,
                       const TClassPtr& declaration, unsigned int embedded,
                       TCIMInstanceData& result);
  TCIMValue Convert(const TMofInstance& source, const TMofInitializer& value, ECIMType type,
                    bool isArray, unsigned int embedded);
  /// Takes what vendors' compilers let pass, too, with a warning.
  TCIMValue ConvertOrMend(const TMofInstance& source, const TMofInitializer& value, ECIMType type,
                          bool isArray);
  TCIMValue ConvertOne(const TMofInstance& source, const TMofLiteral& literal, ECIMType type,
                       unsigned int embedded);
  TCIMValue ReadEmbedded(const TMofInstance& source, const TMofLiteral& literal,
                         unsigned int embedded);

  /// Errors: TMofValueError.
  TCIMReference FindAlias(const TMofInstance& source, const TMofLiteral& literal);
  TCIMReference MakePath(std::size_t index);
  static std::string GetAliasKey(unsigned int unit, const std::string& alias);
  void AddUnlessSame(TCIMInstanceData&& instance, const TMofInstance& source,
                     std::vector<TCIMInstanceData>& instances);

  const TClassRepository& m_classes;
  const std::vector<TMofInstance>& m_instances;
  TMofProblems& m_problems;
  std::unordered_map<std::string, std::size_t> m_aliases;
  std::unordered_map<std::size_t, TCIMReference> m_paths;
  std::unordered_map<std::string, std::size_t> m_places;  ///< Of instances that have keys, by path.
  std::unordered_set<std::string> m_unknown;  ///< Classes reported already, in folded form.
  unsigned int m_aliasDepth = 0;
};

}  // namespace NZEPQEL20
