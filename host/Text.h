// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

namespace host {

/// What SafeText() lets stand of line ends.
enum class ELines {
  kOne,   ///< The result is one line: a line end is escaped, too.
  kKeep,  ///< Line ends and tabs stay.
};

/// `text` made safe to show on a terminal: control characters, characters that turn the writing
/// direction, and bytes that are not UTF-8 come out as `\xNN` or `\u{N}`.
std::string SafeText(const std::string& text, ELines lines);

/// Number of UTF-8 characters in `text`.
std::size_t GetWidth(const std::string& text);

/// `text` with blanks added up to `width` characters.
std::string PadTo(const std::string& text, std::size_t width);

/// `text` without white space at its ends.
std::string Trim(const std::string& text);

/// Whether `text` contains `part`; ASCII letters compare without case.
bool ContainsNoCase(const std::string& text, const std::string& part);

/// Whom a call to a provider's library is made to: "provider P of L", or "library L" while it is
/// loaded and `provider` is empty.
std::string DescribeProvider(const std::string& provider, const std::string& library);

}  // namespace host
