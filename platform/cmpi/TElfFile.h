// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace NZEPQEL20 {

/// What a shared library says of itself, without being loaded.
///
/// Nothing in the file is trusted: whatever points outside it is left out.
class TElfFile {
 public:
  /// Largest file that is looked into, in bytes.
  static constexpr std::size_t kMaxSize = std::size_t{512} * 1024 * 1024;

  /// Reads `file`. What keeps it from being a library for this machine is in GetFault().
  explicit TElfFile(const std::string& file);

  /// Why the loader of this machine cannot take it: "is no library (no ELF header)", "is for
  /// aarch64, this machine is x86_64"; empty when it can.
  const std::string& GetFault() const { return m_fault; }

  /// Names of the functions and objects that it defines for others.
  const std::vector<std::string>& GetSymbols() const { return m_symbols; }
  /// Names of the libraries that it needs.
  const std::vector<std::string>& GetNeeded() const { return m_needed; }
  /// The name that it goes by; empty when it has none.
  const std::string& GetSoname() const { return m_soname; }

 private:
  struct TSection;
  struct TSymbolTable;

  void Read(const std::string& bytes);
  void ReadSections(const std::string& bytes);
  void ReadSymbols(const std::string& bytes, const TSymbolTable& table);
  void ReadDynamic(const std::string& bytes, const TSymbolTable& table);

  std::string m_fault;
  std::vector<std::string> m_symbols;
  std::vector<std::string> m_needed;
  std::string m_soname;
};

}  // namespace NZEPQEL20
