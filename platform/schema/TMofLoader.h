// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/schema/IMofSink.h"
#include "platform/schema/TMofCompiler.h"
#include "platform/schema/TMofProblems.h"
#include "platform/schema/TMofSource.h"
#include "platform/schema/TSchemaStore.h"

namespace NZEPQEL20 {

/// Brings MOF files, and the files that they include, into a store.
class TMofLoader : public IMofSink {
 public:
  /// Deepest nesting of includes.
  static constexpr unsigned int kMaxIncludes = 64;
  /// Most constants that one load may bring, with qualifiers and features at four each. A full
  /// CIM schema has about a million.
  static constexpr std::size_t kMaxPieces = 8'000'000;

  /// `sources` is given everything that is looked at on disk.
  TMofLoader(TSchemaStore& store, TMofProblems& problems, TSchemaSources& sources)
      : m_store(store),
        m_problems(problems),
        m_sources(sources),
        m_compiler(m_qualifiers, problems) {}

  /// What is in a folder that is named later gives way to what is in one that was named before: its
  /// classes, and outside of the folder its qualifiers. A file in none of them goes with the file
  /// that includes it, else with the first one.
  void AddFolder(const std::string& folder);

  /// Nothing happens when the file was read before.
  void LoadFile(const std::string& path);
  void LoadText(const std::string& text, const std::string& name);

  void OnQualifier(const std::string& file, TMofQualifierDeclaration&& qualifier) override;
  void OnClass(const std::string& file, TMofClass&& declaration) override;
  void OnInstance(const std::string& file, TMofInstance&& instance) override;
  void OnInclude(const std::string& file, TMofPosition position, const std::string& path) override;
  void OnNamespace(const std::string& nameSpace) override { m_nameSpace = nameSpace; }
  bool Reserve(std::size_t count) override;

 private:
  void Begin();
  void Parse(const TMofSource& source);
  std::size_t FindRank(const std::string& file) const;
  /// Makes what is declared from now on count as that of a folder.
  void UseRank(std::size_t rank);
  /// False when the file was read before.
  bool Open(const std::string& path);
  /// Reads and parses; answers with the reason why the file cannot be read, or an empty text.
  std::string Read(const std::string& path);
  /// Whether `path`, which is not there, names what the schema has: vendors include files of it
  /// that they do not ship.
  bool IsOfSchema(const std::string& path) const;

  TSchemaStore& m_store;
  TMofProblems& m_problems;
  TSchemaSources& m_sources;
  TMofQualifierTable m_qualifiers;
  /// Those of the folders behind the first one.
  std::map<std::size_t, TMofQualifierTable> m_ownQualifiers;
  TMofCompiler m_compiler;
  std::vector<std::string> m_folders;             ///< In plain form, with a "/" at the end.
  std::size_t m_rank = 0;                         ///< Place in them of what is read now.
  std::unordered_set<std::string> m_opened;       ///< Canonical paths.
  std::unordered_set<std::string> m_schemaNames;  ///< Of the first folder's files, folded.
  unsigned int m_depth = 0;
  unsigned int m_unit = 0;
  std::size_t m_pieces = 0;
  std::string m_nameSpace;
  TFolderNames m_names;  ///< As they were when this load began.
};

}  // namespace NZEPQEL20
