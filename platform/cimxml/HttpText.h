// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace NZEPQEL20::cimxml {

/// `text` with each byte but letters, digits and `-._~` written as %XX: what a CIM header holds.
std::string PercentEncode(std::string_view text);

/// The opposite; what is no %XX stays as it is.
std::string PercentDecode(std::string_view text);

/// `text` fit for a message whoever wrote it: one line of UTF-8 without control characters (those
/// of C0 and C1, and DEL), and at most `maxBytes` of it, cut between two characters. A text that
/// was cut ends with "...", which comes on top.
std::string MakeSafe(std::string_view text, std::size_t maxBytes = 300);

/// Compares ASCII letters without case.
bool EqualsNoCase(std::string_view left, std::string_view right);

/// `text` without the blanks, tabs and line ends around it.
std::string_view Trim(std::string_view text);

/// "10 s", "0.2 s".
std::string DescribeTime(std::chrono::milliseconds time);

/// "1 byte", "12 bytes".
std::string DescribeBytes(std::uint64_t count);

}  // namespace NZEPQEL20::cimxml
