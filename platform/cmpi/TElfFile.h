// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace NZEPQEL20 {

/// What a shared library says of itself, without being loaded.
///
/// Nothing in the file is trusted: whatever points outside it is a fault or left out. Only the
/// tables are read, however large the file is.
class TElfFile {
 public:
  enum class EContent {
    kNeeds,   ///< All but the symbols.
    kSymbols  ///< These, too.
  };

  /// Reads `file`. What keeps it from being a library for this machine is in GetFault().
  explicit TElfFile(const std::string& file, EContent content = EContent::kSymbols);

  /// Why the loader of this machine cannot take it, or would end the process: "is no library (no
  /// ELF header)", "is for aarch64, this machine is x86_64", "is cut off: ..."; empty when it can.
  const std::string& GetFault() const { return m_fault; }

  /// Names of the functions and objects that it defines for others.
  const std::vector<std::string>& GetSymbols() const { return m_symbols; }
  /// Whether GetSymbols() is all of them; a library need not say how many it has.
  bool HasAllSymbols() const { return m_hasAllSymbols; }
  /// Names of the libraries that it needs.
  const std::vector<std::string>& GetNeeded() const { return m_needed; }

 private:
  class TReader;

  std::string m_fault;
  std::vector<std::string> m_symbols;
  bool m_hasAllSymbols = false;
  std::vector<std::string> m_needed;
};

}  // namespace NZEPQEL20
