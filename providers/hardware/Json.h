// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace hardware {

/// Parses `text`; what is no JSON gives a null value. Never throws on account of the text.
nlohmann::json ParseJson(std::string_view text);

/// The last complete document of a stream that prints one object after another, each from a line
/// "{" to a line "}", with other lines between them; null when there is none.
nlohmann::json ParseLastDocument(std::string_view text);

/// The member of nested objects that `path` leads to, null when any step is missing. In a step,
/// letters match whatever their case.
const nlohmann::json& FindMember(const nlohmann::json& object,
                                 std::initializer_list<std::string_view> path);

/// A whole number of at least 0; nothing for any other value.
std::optional<std::uint64_t> ToUnsigned(const nlohmann::json& value);

/// A text; empty for any other value.
std::string ToText(const nlohmann::json& value);

/// True only for the boolean true.
bool IsTrue(const nlohmann::json& value);
/// True only for the boolean false.
bool IsFalse(const nlohmann::json& value);

}  // namespace hardware
