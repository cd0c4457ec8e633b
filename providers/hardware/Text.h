// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hardware {

/// `text` without white space at both ends.
std::string_view Trim(std::string_view text);

/// The whole of `text` as a decimal number; nothing else, not even a sign or a blank, is taken.
std::optional<std::uint64_t> ParseUnsigned(std::string_view text);

/// The whole of `text` as a plain decimal fraction such as "10.25".
std::optional<double> ParseDecimal(std::string_view text);

/// The lines of `text` without their ends; views into it.
std::vector<std::string_view> SplitLines(std::string_view text);

/// The words of `line`, split at blanks and tabs; views into it.
std::vector<std::string_view> SplitWords(std::string_view line);

bool Contains(std::string_view text, std::string_view part);
bool StartsWith(std::string_view text, std::string_view start);

/// The same text in valid UTF-8: bytes that are none become "?", control characters other than
/// line feed and tab vanish.
std::string CleanText(std::string_view text);

/// Like CleanText, made fit for a test identifier: one line, no "," and no "|", blanks joined.
std::string CleanName(std::string_view text);

/// What a terminal would show of `text`: backspaces and carriage returns applied.
std::string RenderTerminal(std::string_view text);

/// The last lines of `text` that fit into `maxBytes`; when lines are left out, it says so first.
std::string Excerpt(std::string_view text, std::size_t maxBytes);

/// A size for a person, in whole binary units: "512 MiB".
std::string DescribeBytes(std::uint64_t bytes);

/// Joins `parts`, with `separator` between two of them.
std::string Join(const std::vector<std::string>& parts, std::string_view separator);

}  // namespace hardware
