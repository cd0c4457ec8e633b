// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace NZEPQEL20::cimxml {

/// Appends `text` (UTF-8) to `document` such that it reads the same from an element and from an
/// attribute in double quotes.
/// Errors: TQELException (kInvalidArgument) for what no XML document can hold: control characters
/// other than tab, line feed and carriage return, and bytes that are not UTF-8.
void AppendEscaped(std::string& document, std::string_view text);

/// The length in bytes of the UTF-8 character that `text` starts with; 0 when it starts with none
/// that XML 1.0 allows, an end in the middle of one included. `text` must not be empty.
std::size_t GetXmlCharacterSize(std::string_view text);

}  // namespace NZEPQEL20::cimxml
