// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace NZEPQEL20 {

/// Length of the valid UTF-8 sequence that starts at `place` of `text`; 0 when there is none.
std::size_t GetUtf8Length(std::string_view text, std::size_t place);

/// Appends the character `codePoint` in UTF-8; a surrogate or one beyond U+10FFFF becomes U+FFFD.
void AppendUtf8(std::string& out, unsigned int codePoint);

/// The character that `text`, valid UTF-8, starts with; `length` becomes its bytes. 0 for an empty
/// text.
unsigned int DecodeUtf8(std::string_view text, std::size_t& length);

/// What a byte counts as that belongs to no sequence.
enum class EByteText {
  kLatin1,      ///< ISO 8859-1.
  kWindows1252  ///< The same, with characters for most codes from 0x80 to 0x9F.
};

/// `bytes` as valid UTF-8: at most twice as long, or three times with kWindows1252.
std::string MendUtf8(std::string bytes, EByteText others = EByteText::kLatin1);

}  // namespace NZEPQEL20
