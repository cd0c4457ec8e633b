// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/schema/ISchemaClasses.h"
#include "platform/schema/TDescriptor.h"
#include "platform/schema/TLeftOutClass.h"
#include "platform/schema/TMofError.h"
#include "platform/schema/TSchemaSources.h"

namespace NZEPQEL20 {

/// What a schema is loaded from, in the order of loading.
struct TSchemaInputs {
  std::vector<std::string> files;    ///< Absolute paths.
  std::vector<std::string> folders;  ///< Where missing superclasses are looked for; absolute.

  friend bool operator==(const TSchemaInputs& left, const TSchemaInputs& right) {
    return left.files == right.files && left.folders == right.folders;
  }
};

/// A loaded schema as it was stored in a file: an index that is read at once, and a record for
/// each class that is read when the class is asked for.
///
/// Everything is read by copying, never mapped: a file that is cut or overwritten while it is open
/// gives an error, and nothing worse. Each record and the index have a checksum of their own.
/// Threads: const use from several threads is safe.
class TSchemaCache : public ISchemaClasses {
 public:
  /// What goes into a file.
  struct TContent {
    const TSchemaInputs& inputs;
    const std::vector<TSchemaSource>& sources;
    const std::vector<TMofError>& problems;
    const std::vector<TLeftOutClass>& leftOut;
    const ISchemaClasses& classes;
    const std::vector<TCIMInstanceData>& instances;
    std::int64_t trustedBefore;  ///< See CheckSource().
  };

  /// The bytes of a file.
  static std::string Encode(const TContent& content);

  /// The bytes of a file of `records` and the index of them. The records begin behind a header of
  /// kHeaderSize bytes, which is made here.
  static std::string Assemble(const std::string& records, const std::string& index,
                              std::int64_t trustedBefore);
  static constexpr std::size_t kHeaderSize = 56;

  /// Reads the index of `file`.
  /// Errors: TQELException for a file that was not written by this build, or is damaged.
  explicit TSchemaCache(TDescriptor file);

  const TSchemaInputs& GetInputs() const { return m_inputs; }
  /// What the loading reported.
  const std::vector<TMofError>& GetProblems() const { return m_problems; }
  const std::vector<TLeftOutClass>& GetLeftOut() const { return m_leftOut; }

  /// Whether all that the schema was loaded from is as it was. `isYoung` becomes true when some
  /// of it had to be compared by content.
  bool IsFresh(bool& isYoung) const;

  /// The latest time in the stamps of what is compared by them.
  std::int64_t GetYoungest() const;

  /// The bytes of this file with another time before which stamps are trusted. Errors: like
  /// GetClass().
  std::string Renew(std::int64_t trustedBefore) const;

  const TClassTree& GetTree() const override { return m_tree; }
  std::shared_ptr<const TSchemaClass> GetClass(std::size_t place) const override;
  std::vector<TCIMInstanceData> GetInstances(const TClassRepository& classes) const override;

 private:
  struct TRecord {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    std::uint64_t hash = 0;
  };

  std::string ReadRecord(const TRecord& record) const;
  void ReadHeader(TRecord& index);
  void DecodeIndex(std::string_view bytes);
  TRecord DecodeRecord(class TByteReader& in) const;
  static void EncodeHeader(std::string& bytes, const TRecord& index, std::int64_t trustedBefore);
  static std::string EncodeIndex(const TContent& content, const std::vector<TRecord>& records);

  TDescriptor m_file;
  std::uint64_t m_size = 0;
  std::int64_t m_trustedBefore = 0;
  TSchemaInputs m_inputs;
  std::vector<TSchemaSource> m_sources;
  std::vector<TMofError> m_problems;
  std::vector<TLeftOutClass> m_leftOut;
  TRecord m_instances;
  TClassTree m_tree;
  std::vector<TRecord> m_records;  ///< By place in the tree.
};

}  // namespace NZEPQEL20
