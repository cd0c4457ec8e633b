// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace NZEPQEL20::cimxml {

/// Makes the text of a reply readable for an XML parser: devices report texts with garbage in
/// them, and servers pass it on. Control characters, bytes that are not UTF-8 and references to
/// characters that XML does not know (`&#0;`) become U+FFFD; everything else passes unchanged.
///
/// Works on pieces: a character or reference may be cut anywhere.
class TXmlRepair {
 public:
  /// The next piece, repaired. The answer holds until the next call, and may point into `piece`.
  std::string_view Take(std::string_view piece);

  /// What was kept back because more might have followed.
  std::string_view Finish();

  /// How many places were mended.
  std::uint64_t GetCount() const { return m_count; }

 private:
  void Mend(std::string_view text, bool isLast);
  std::size_t MendOne(std::string_view text, bool isLast);
  std::size_t MendCharacter(std::string_view text, bool isLast);
  std::size_t MendReference(std::string_view text, bool isLast);
  void Replace();

  std::string m_output;  ///< The repaired piece, when it needed repair.
  std::string m_rest;    ///< The beginning of a character or reference.
  std::uint64_t m_count = 0;
};

}  // namespace NZEPQEL20::cimxml
